#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::lines;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Hostile, PageWithoutSizeTakesTheLinesThatNeedNone) {
  const std::string file = tests::fileOf([](VeltranoPDF& pdf) {
    pdf.PDFPageHeight(std::nan(""));
    pdf.PDFPageWidth(infinity);
    pdf.PDFDrawLineHor(10, 20, 100);
    pdf.PDFDrawEllipse(10, 20, 5, 5);
    pdf.PDFTextOut("x", 1, 1);
  });
  EXPECT_EQ(
      tests::pageContent(file, 1),
      lines({"%DEBUT_LNH/%", "[] 0 d", "0 G", "0.57 w S", "%FIN_LNH/%", "0 G", "[] 0 d", "0 G", "0.57 w ",
             "s", "q 0 g ", "%DEBUT_TEXT/%", "BT", "/F1 10 Tf", "(x) Tj", "ET", "Q", "%FIN_TEXT/%"}));
  EXPECT_TRUE(tests::holds(file, "/MediaBox [ 0 0 595.28 841.89]\r\n")) << "it is still a page";
}

TEST(Hostile, ACoordinateThatIsNoneLeavesThePositionOfBefore) {
  for (const double none : {std::nan(""), infinity, -infinity}) {
    const std::function<void(VeltranoPDF&)> calls[] = {
        [=](VeltranoPDF& pdf) { pdf.PDFDrawLineHor(none, none, 5); },
        [=](VeltranoPDF& pdf) { pdf.PDFDrawLine(none, none, none, none); },
        [=](VeltranoPDF& pdf) { pdf.PDFDrawRectangle(none, 1, 5, none, "t"); },
        [=](VeltranoPDF& pdf) { pdf.PDFDrawEllipse(none, none, 5, 5, "t"); },
        [=](VeltranoPDF& pdf) { pdf.PDFCell("x", none, none, 5, 5, "t"); },
        [=](VeltranoPDF& pdf) { pdf.PDFLink(none, none, "x", "t"); },
    };
    for (const auto& call : calls) {
      const std::string content = tests::contentOf([&](VeltranoPDF& pdf) {
        pdf.PDFSetFont(FONT_COURIER, 10);
        pdf.PDFTextOut("Hello", 20, 30);  // 30 points wide
        call(pdf);
        pdf.PDFTextOut("after");
      });
      EXPECT_TRUE(tests::holds(content, "BT\r\n50.00 801.89 Td\r\n"));
    }
  }
}

TEST(Hostile, TextsGoInAsTheyAre) {
  const std::string text = std::string("a\0b\r\n)\xFF", 7) + std::string(1 << 20, 'x');
  Document document;
  document.pdf.PDFTitle(text);
  document.pdf.PDFBeginDoc();
  document.pdf.PDFSetBookmark(text);
  document.pdf.PDFSetBookmark(text);
  EXPECT_EQ(tests::countOf(document.finish(), "(" + text + ")\r\n/"), 3U);
}

/// Any order of calls with any numbers leads to nothing worse than an odd document.
TEST(Hostile, CallsInEveryOrder) {
  const double numbers[] = {0, -1, 1, 2.5, 1e6, -1e300, 1e308, std::nan(""), infinity, 32767.5};
  const Value values[] = {
      {},     Null(),  Opaque(),      5,       -70000, 1e300,           "#12x",
      "text", Date{1}, Value::List{}, "#F0F0", true,   Value::Bytes{1}, Value::List{1, "b", Value::List{1}}};
  const std::string longText = std::string(2000, 'x') + " some\r\ntext";
  std::mt19937 random(20261121);
  const auto any = [&](std::size_t count) { return static_cast<int>(random() % count); };
  const auto n = [&] { return numbers[any(std::size(numbers))]; };
  const auto value = [&] { return values[any(std::size(values))]; };
  using Call = std::function<void(VeltranoPDF&)>;
  const Call calls[] = {
      [](VeltranoPDF& pdf) { pdf.PDFBeginDoc(); },
      [](VeltranoPDF& pdf) { pdf.PDFNewPage(); },
      [](VeltranoPDF& pdf) { pdf.PDFEndPage(); },
      [](VeltranoPDF& pdf) { pdf.PDFEndDoc(); },
      [](VeltranoPDF& pdf) { pdf.PDFFiligran("mark"); },
      [&](VeltranoPDF& pdf) { pdf.PDFFormatPage(value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFOrientation(any(4)); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetUnit(any(4)); },
      [&](VeltranoPDF& pdf) { pdf.PDFPageHeight(n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetBookmark("b", any(5) - 1, n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetZoomMode(value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetLineWidth(n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetRotation(n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetDrawColor(value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetDrawMode(any(4)); },
      [&](VeltranoPDF& pdf) { pdf.PDFDrawRectangle(n(), n(), n(), n(), value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFDrawEllipse(n(), n(), n(), n(), value()); },
      [&](VeltranoPDF& pdf) {
        pdf.PDFDrawPolygon({value(), value(), Value::List{n(), n()}});
      },
      [&](VeltranoPDF& pdf) { pdf.PDFDrawLineHor(n(), n(), n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFTextOut("text", n(), n()); },
      [&](VeltranoPDF& pdf) { pdf.PDFSetAlignement(any(4)); },
      [&](VeltranoPDF& pdf) { pdf.PDFCell(longText, n(), n(), n(), n(), value()); },
      [&](VeltranoPDF& pdf) { pdf.PDFLink(n(), n(), "here", "there"); },
  };
  for (int round = 0; round < 40; ++round) {
    Document document;
    document.pdf.PDFBeginDoc();
    for (int call = 0; call < 200; ++call) calls[any(std::size(calls))](document.pdf);
    const std::string file = document.finish();
    EXPECT_TRUE(file.starts_with("%PDF-1.0\r\n") && file.ends_with("%%EOF\r\n"));
    EXPECT_EQ(file.find("nan"), std::string::npos);
    EXPECT_EQ(file.find("inf"), std::string::npos);
  }
}

}  // namespace
}  // namespace veltrano
