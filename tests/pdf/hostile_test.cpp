#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;
using tests::lines;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Hostile, NumberThatIsNoneTakesOnlyItsOwnLine) {
  const auto drawn = [](double x) {
    return contentOf([x](VeltranoPDF& pdf) { pdf.PDFDrawLine(x, 0, 5, 5); });
  };
  const std::string expected = lines({"%DEBUT_LN/%", "5.00 836.89 l", "0 G", "0.57 w S", "%FIN_LN/%"});
  EXPECT_EQ(drawn(std::nan("")), expected);
  EXPECT_EQ(drawn(-infinity), expected);
  EXPECT_EQ(drawn(1e308 * 10), expected);
}

TEST(Hostile, PageWithoutHeightTakesTheOtherLines) {
  const auto content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFPageHeight(std::nan(""));
    pdf.PDFDrawLineHor(10, 20, 100);
    pdf.PDFDrawRectangle(10, 20, 5, 5);
    pdf.PDFDrawEllipse(10, 20, 5, 5);
  });
  EXPECT_EQ(content, lines({"%DEBUT_LNH/%", "[] 0 d", "0 G", "0.57 w S", "%FIN_LNH/%", "%DEBUT_RECT/%", "0 G",
                            "[] 0 d", "0.57 w S", "%FIN_RECT/%", "0 G", "[] 0 d", "0 G", "0.57 w ", "s"}));
}

TEST(Hostile, PageWithoutSizeIsStillAPage) {
  Document document;
  document.pdf.PDFBeginDoc();
  document.pdf.PDFPageHeight(infinity);
  document.pdf.PDFPageWidth(std::nan(""));
  EXPECT_NE(document.finish().find("/MediaBox [ 0 0 595.28 841.89]\r\n"), std::string::npos);
}

TEST(Hostile, TextsGoInAsTheyAre) {
  Document document;
  const std::string text = std::string("a\0b\r\n)\xFF", 7) + std::string(1 << 20, 'x');
  document.pdf.PDFTitle(text);
  document.pdf.PDFBeginDoc();
  document.pdf.PDFSetBookmark(text);
  document.pdf.PDFSetBookmark(text);
  const std::string file = document.finish();
  EXPECT_NE(file.find("/Title (" + text + ")\r\n/ModDate"), std::string::npos);
  EXPECT_NE(file.find("<</Title (" + text + ")\r\n/Parent"), std::string::npos);
  EXPECT_TRUE(file.ends_with("%%EOF\r\n"));
}

/// Any order of calls with any numbers leads to nothing worse than an odd document.
TEST(Hostile, CallsInEveryOrder) {
  const double numbers[] = {0, -1, 1, 2.5, 1e6, -1e300, 1e308, std::nan(""), infinity, 32767.5};
  const Value values[] = {{},
                          Null(),
                          Opaque(),
                          5,
                          -70000,
                          1e300,
                          "#12x",
                          "text",
                          Value::List{},
                          Value::List{1, "b", Null(), Value::List{1}},
                          true,
                          Value::Bytes{1},
                          Value::Doubles{1, 2},
                          Date{1},
                          Currency{5}};
  std::mt19937 random(20261121);
  const auto any = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  const auto number = [&] { return numbers[any(std::size(numbers))]; };
  const auto value = [&] { return values[any(std::size(values))]; };
  for (int round = 0; round < 40; ++round) {
    Document document;
    VeltranoPDF& pdf = document.pdf;
    for (int call = 0; call < 200; ++call) {
      switch (any(22)) {
        case 0:
          pdf.PDFBeginDoc();
          break;
        case 1:
          pdf.PDFNewPage();
          break;
        case 2:
          pdf.PDFEndPage();
          break;
        case 3:
          pdf.PDFEndDoc();
          break;
        case 4:
          if (any(4) == 0) pdf.PDFInit();
          break;
        case 5:
          pdf.PDFFormatPage(value());
          break;
        case 6:
          pdf.PDFOrientation(any(4));
          break;
        case 7:
          pdf.PDFPageHeight(number());
          break;
        case 8:
          pdf.PDFSetBookmark("b", any(5) - 1, number());
          break;
        case 9:
          pdf.PDFFiligran("mark");
          break;
        case 10:
          pdf.PDFSetZoomMode(value());
          break;
        case 11:
          pdf.PDFSetLineWidth(number());
          break;
        case 12:
          pdf.PDFSetDrawColor(value());
          break;
        case 13:
          pdf.PDFSetDrawMode(any(4));
          break;
        case 14:
          pdf.PDFDrawRectangle(number(), number(), number(), number(), value());
          break;
        case 15:
          pdf.PDFDrawEllipse(number(), number(), number(), number(), value());
          break;
        case 16:
          pdf.PDFDrawPolygon({value(), value(), Value::List{number(), number()}});
          break;
        case 17:
          pdf.PDFDrawLineHor(number(), number(), number());
          break;
        case 18:
          pdf.PDFTextOut("text", number(), number());
          break;
        case 19:
          pdf.PDFCell("some text", number(), number(), number(), number(), value());
          break;
        case 20:
          pdf.PDFLink(number(), number(), "here", "there");
          break;
        default:
          pdf.PDFSetUnit(any(4));
          break;
      }
    }
    pdf.PDFInit();
    pdf.PDFBeginDoc();
    const std::string file = document.finish();
    EXPECT_TRUE(file.starts_with("%PDF-1.0\r\n") && file.ends_with("%%EOF\r\n"));
    EXPECT_EQ(file.find("nan"), std::string::npos);
    EXPECT_EQ(file.find("inf"), std::string::npos);
  }
}

}  // namespace
}  // namespace veltrano
