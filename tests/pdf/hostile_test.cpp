#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;
using tests::lines;

constexpr double infinity = std::numeric_limits<double>::infinity();

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

TEST(Hostile, ACoordinateThatIsNoneLeavesThePositionOfBefore) {
  for (const double none : {std::nan(""), infinity, -infinity}) {
    const std::function<void(VeltranoPDF&)> calls[] = {
        [&](VeltranoPDF& pdf) { pdf.PDFDrawLineHor(none, none, 5); },
        [&](VeltranoPDF& pdf) { pdf.PDFDrawLine(none, none, none, none); },
        [&](VeltranoPDF& pdf) { pdf.PDFDrawRectangle(none, 1, 5, none, "t"); },
        [&](VeltranoPDF& pdf) { pdf.PDFDrawEllipse(none, none, 5, 5, "t"); },
        [&](VeltranoPDF& pdf) { pdf.PDFCell("x", none, none, 5, 5, "t"); },
        [&](VeltranoPDF& pdf) { pdf.PDFTextOut("x", none, none); },
        [&](VeltranoPDF& pdf) { pdf.PDFLink(none, none, "x", "t"); },
    };
    int number = 0;
    for (const auto& call : calls) {
      SCOPED_TRACE(number++);
      Document document;
      document.pdf.PDFBeginDoc();
      document.pdf.PDFSetFont(FONT_COURIER, 10);
      document.pdf.PDFTextOut("Hello", 20, 30);  // 30 points wide
      call(document.pdf);
      EXPECT_EQ(document.pdf.PDFGetX(), 50);
      EXPECT_EQ(document.pdf.PDFGetY(), 40);
      document.pdf.PDFTextOut("behind");
      EXPECT_NE(document.finish().find("BT\r\n50.00 801.89 Td\r\n"), std::string::npos);
    }
  }
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
                          true,
                          Date{1},
                          Currency{5},
                          Value::List{},
                          Value::List{1, "b", Value::List{1}},
                          Value::Bytes{1},
                          Value::Doubles{1, 2}};
  std::mt19937 random(20261121);
  const auto any = [&](std::size_t count) { return static_cast<int>(random() % count); };
  const auto n = [&] { return numbers[any(std::size(numbers))]; };
  const auto value = [&] { return values[any(std::size(values))]; };
  using Call = std::function<void(VeltranoPDF&)>;
  const Call calls[] = {
      [&](VeltranoPDF& pdf) { pdf.PDFBeginDoc(); },
      [&](VeltranoPDF& pdf) { pdf.PDFNewPage(); },
      [&](VeltranoPDF& pdf) { pdf.PDFEndPage(); },
      [&](VeltranoPDF& pdf) { pdf.PDFEndDoc(); },
      [&](VeltranoPDF& pdf) { pdf.PDFFormatPage(value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFOrientation(any(4)); },
      [&](VeltranoPDF& pdf) { pdf.PDFPageHeight(n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetBookmark("b", any(5) - 1, n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFFiligran("mark"); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetZoomMode(value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetLineWidth(n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetDrawColor(value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetDrawMode(any(4)); },
      [&](VeltranoPDF& pdf) { pdf.PDFDrawRectangle(n(), n(), n(), n(), value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFDrawEllipse(n(), n(), n(), n(), value()); },
      [&](VeltranoPDF& pdf) {
        pdf.PDFDrawPolygon({value(), value(), Value::List{n(), n()}});
      },
      [&](VeltranoPDF& pdf) { pdf.PDFDrawLineHor(n(), n(), n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFTextOut("text", n(), n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFCell("some text", n(), n(), n(), n(), value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFLink(n(), n(), "here", "there"); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetUnit(any(4)); },
      [&](VeltranoPDF& pdf) {
        if (any(4) == 0) pdf.PDFInit();
      },
  };
  for (int round = 0; round < 40; ++round) {
    Document document;
    for (int call = 0; call < 200; ++call) calls[any(std::size(calls))](document.pdf);
    document.pdf.PDFInit();
    document.pdf.PDFBeginDoc();
    const std::string file = document.finish();
    EXPECT_TRUE(file.starts_with("%PDF-1.0\r\n") && file.ends_with("%%EOF\r\n"));
    EXPECT_EQ(file.find("nan"), std::string::npos);
    EXPECT_EQ(file.find("inf"), std::string::npos);
  }
}

}  // namespace
}  // namespace veltrano
