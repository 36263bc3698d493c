#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using Hostile = PdfTest;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST_F(Hostile, PageWithoutSizeTakesTheLinesThatNeedNone) {
  const std::string file = fileOf([](auto& doc) {
    doc.PDFPageHeight(std::nan(""));
    doc.PDFPageWidth(infinity);
    doc.PDFDrawLineHor(10, 20, 100);
    doc.PDFDrawEllipse(10, 20, 5, 5);
    doc.PDFTextOut("x", 1, 1);
  });
  EXPECT_EQ(pageContent(file, 1), lines({"%DEBUT_LNH/%", "[] 0 d", "0 G", "0.57 w S", "%FIN_LNH/%", "0 G",
                                         "[] 0 d", "0 G", "0.57 w ", "s", "q 0 g ", "%DEBUT_TEXT/%", "BT",
                                         "/F1 10 Tf", "(x) Tj", "ET", "Q", "%FIN_TEXT/%"}));
  EXPECT_TRUE(holds(file, "/MediaBox [ 0 0 595.28 841.89]\r\n")) << "it is still a page";
}

TEST_F(Hostile, ACoordinateThatIsNoneLeavesThePositionOfBefore) {
  for (const double none : {std::nan(""), infinity, -infinity}) {
    const Draw calls[] = {[=](auto& doc) { doc.PDFDrawLineHor(none, none, 5); },
                          [=](auto& doc) { doc.PDFDrawLine(none, none, none, none); },
                          [=](auto& doc) { doc.PDFDrawRectangle(none, 1, 5, none, "t"); },
                          [=](auto& doc) { doc.PDFDrawEllipse(none, none, 5, 5, "t"); },
                          [=](auto& doc) { doc.PDFCell("x", none, none, 5, 5, "t"); },
                          [=](auto& doc) { doc.PDFLink(none, none, "x", "t"); }};
    for (const auto& call : calls) {
      const std::string content = contentOf([&](auto& doc) {
        doc.PDFSetFont(FONT_COURIER, 10);
        doc.PDFTextOut("Hello", 20, 30);  // 30 points wide
        call(doc);
        doc.PDFTextOut("after");
      });
      EXPECT_TRUE(holds(content, "BT\r\n50.00 801.89 Td\r\n"));
    }
  }
}

/// Any order of calls with any numbers leads to nothing worse than an odd document.
TEST_F(Hostile, CallsInEveryOrder) {
  const double numbers[] = {0, -1, 1, 2.5, 1e6, -1e300, 1e308, std::nan(""), infinity, 32767.5};
  const Value nested = Value::List{1, "b", Value::List{1}}, bytes = Value::Bytes{1}, none = Null(),
              object = Opaque();
  const Value values[] = {{}, none, object, 5, -70000, 1e300, "#12x", "text", nested, "#F0F0", true, bytes};
  const std::string longText = std::string(2000, 'x') + " some\r\ntext";
  std::mt19937 random(20261121);
  const auto any = [&](std::size_t count) { return static_cast<int>(random() % count); };
  const auto n = [&] { return numbers[any(std::size(numbers))]; };
  const auto value = [&] { return values[any(std::size(values))]; };
  const Draw calls[] = {[](auto& doc) { doc.PDFBeginDoc(); },
                        [](auto& doc) { doc.PDFNewPage(); },
                        [](auto& doc) { doc.PDFEndDoc(); },
                        [&](auto& doc) { doc.PDFFormatPage(value()); },
                        [&](auto& doc) { doc.PDFOrientation(any(4)); },
                        [&](auto& doc) { doc.PDFSetUnit(any(4)); },
                        [&](auto& doc) { doc.PDFPageHeight(n()); },
                        [&](auto& doc) { doc.PDFSetBookmark("b", any(5) - 1, n()); },
                        [&](auto& doc) { doc.PDFSetZoomMode(value()); },
                        [&](auto& doc) { doc.PDFSetLineWidth(n()); },
                        [&](auto& doc) { doc.PDFSetRotation(n()); },
                        [&](auto& doc) { doc.PDFSetDrawColor(value()); },
                        [&](auto& doc) { doc.PDFDrawRectangle(n(), n(), n(), n(), value()); },
                        [&](auto& doc) { doc.PDFDrawEllipse(n(), n(), n(), n(), value()); },
                        [&](auto& doc) {
                          doc.PDFDrawPolygon({value(), value(), nested});
                        },
                        [&](auto& doc) { doc.PDFDrawLineHor(n(), n(), n()); },
                        [&](auto& doc) { doc.PDFTextOut("text", n(), n()); },
                        [&](auto& doc) { doc.PDFSetAlignement(any(4)); },
                        [&](auto& doc) { doc.PDFCell(longText, n(), n(), n(), n(), value()); },
                        [&](auto& doc) { doc.PDFLink(n(), n(), "here", "there"); }};
  for (int round = 0; round < 40; ++round) {
    pdf.PDFBeginDoc();
    for (int call = 0; call < 200; ++call) calls[any(std::size(calls))](pdf);
    const std::string file = finish();
    EXPECT_TRUE(file.starts_with("%PDF-1.0\r\n") && file.ends_with("%%EOF\r\n"));
    EXPECT_EQ(countOf(file, "nan") + countOf(file, "inf"), 0U);
  }
}

}  // namespace
}  // namespace veltrano::tests
