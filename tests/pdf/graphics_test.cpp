#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using GraphicsState = PdfTest;

TEST(Colors, OfEveryForm) {
  const std::pair<std::string, Value::List> rows[] = {
      {"1.000 0.502 0.000",
       {"#FF8000", "#12fF8000", Value::Bytes{255, 128, 0, 9}}},  // the last six letters count
      {"0.000 0.000 1.000",
       {"#FFF", COLOR_BLEU, Value::List{70000, Opaque(), 255, 9}}},  // "00#FFF": "#F" is no pair
      {"1.000 0.000 0.000", {COLOR_ROUGE, 255.9, Value::List{255}}},
      {"1.000 1.000 0.000", {COLOR_JAUNE}},
      {"0.000 1.000 0.000", {Value::Bytes{0, 255}}},
      {"1.000 0.000 1.000", {Value::Doubles{255, 0, 255, 9}}},
      {"0.502 0.502 -0.200", Value::List(1, Value::List{"128", 127.5, -51})},
      {"1.000 1.000 1.000", {-1.5, -1}},
      {"0.000 0.000 0.000",
       {"FF8000", -0.5, 1e10, NAN, Null()}},  // fractions go towards zero; texts are reported, too
  };
  for (const auto& [numbers, colors] : rows) {
    for (const Value& color : colors) {
      const std::string content = contentOf([&](VeltranoPDF& pdf) {
        pdf.PDFSetTextColor(color);
        pdf.PDFTextOut("x", 1, 1);
        pdf.PDFSetDrawColor(color);
        pdf.PDFSetLineColor(color);
        pdf.PDFSetDrawMode(DRAW_DRAWBORDER);
        pdf.PDFDrawRectangle(0, 0, 1, 1);
      });
      EXPECT_TRUE(content.starts_with("q " + numbers + " rg \r\n")) << numbers << content;
      EXPECT_TRUE(holds(content, "\r\n" + numbers + " rg\r\n" + numbers + " RG\r\n"));
    }
  }
}

TEST(LineStyle, PatternsAreWholePointsOfTheUnitOfThen) {
  const std::string content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetUnit(UNIT_CM);
    pdf.PDFSetLineStyle(pPDF_DASHDOTDOT);
    pdf.PDFSetUnit(UNIT_PT);
    pdf.PDFDrawLineHor(1, 2, 3);
    pdf.PDFSetLineStyle(4);
    pdf.PDFDrawLineHor(1, 2, 3);
  });
  EXPECT_TRUE(content.starts_with("%DEBUT_LNH/%\r\n[226 113 56 113 56 113 ] 0 d\r\n1.00 ")) << content;
  EXPECT_TRUE(holds(content, "%DEBUT_LNH/%\r\n\r\n1.00 "));
}

TEST_F(GraphicsState, GettersAnswerAsHostsKnowThem) {
  pdf.PDFSetTextColor(COLOR_ROUGE);
  EXPECT_EQ(pdf.PDFGetTextColor() + pdf.PDFGetLineColor() + pdf.PDFGetDrawColor() + pdf.PDFGetFileName(), "");
  std::string names = pdf.PDFGetAlignement();
  for (const int alignment : {0, 1, 2, 9, 3}) {
    pdf.PDFSetAlignement(alignment);
    names.append(" ").append(pdf.PDFGetAlignement());
  }
  EXPECT_EQ(names, "Left Center Left Right Left Left");
}

TEST_F(GraphicsState, HandlerMayUseTheObjectAndReplaceItself) {
  std::string seen;
  pdf.onError = [&](std::string_view message) {
    seen = message;
    pdf.onError = nullptr;
    pdf.PDFSetUnit(99);
    pdf.PDFInit();
  };
  pdf.PDFFormatPage("none");
  EXPECT_EQ(seen, "Incorrect Page Code");
  EXPECT_EQ(pdf.PDFGetPageWidth(), 595.28);
}

TEST(Drawing, MovesTheCurrentPosition) {
  const std::tuple<Draw, int, int> rows[] = {
      {[](auto& pdf) { pdf.PDFDrawLineHor(10, 20, 100); }, 110, 20},
      {[](auto& pdf) { pdf.PDFDrawLineVer(10, 20, 100); }, 10, 120},
      {[](auto& pdf) { pdf.PDFDrawLine(10, 20, 5, 30); }, 10, 30},
      {[](auto& pdf) { pdf.PDFDrawRectangle(3, 4, 50, 60); }, 3, 64},
      {[](auto& pdf) { pdf.PDFDrawEllipse(30, 40, 50, 60); }, 3, 64},
      // Where its link has left it, 10 being the font size.
      {[](auto& pdf) { pdf.PDFDrawEllipse(30, 40, 50, 60, "t"); }, 35, 80},
      {[](auto& pdf) { pdf.PDFCell("x", 7, 8, 9, 10); }, 7, 18}};
  VeltranoPDF pdf;
  for (const auto& [draw, x, y] : rows) {
    draw(pdf);
    EXPECT_EQ(pdf.PDFGetX(), x);
    EXPECT_EQ(pdf.PDFGetY(), y);
  }
}

TEST(Drawing, OnlyTheTwoStraightLinesLeaveTheirColorAsTheFillColor) {
  const std::string content = contentOf([](auto& pdf) {
    pdf.PDFSetDrawMode(DRAW_DRAW);
    pdf.PDFSetDrawColor(COLOR_VERT);
    pdf.PDFDrawLine(0, 0, 1, 1);
    pdf.PDFDrawRectangle(0, 0, 1, 1);
    pdf.PDFDrawLineHor(0, 0, 1);
    pdf.PDFDrawRectangle(0, 0, 1, 1);
    pdf.PDFSetLineColor(COLOR_ROUGE);
    pdf.PDFDrawLineVer(0, 0, 1);
    pdf.PDFDrawRectangle(0, 0, 1, 1);
  });
  std::string fills;
  const std::string opening = "%DEBUT_RECT/%\r\n";
  for (auto at = content.find(opening); at != std::string::npos; at = content.find(opening, at + 1))
    fills += content.substr(at + opening.size(), 4);
  EXPECT_EQ(fills, "0.000 g\r1.00") << "green, black, red";
}

TEST(Drawing, PolygonTakesThePointsThatAreOnes) {
  const Value one = Value::List{10, 20}, other = Value::Doubles{30, 40}, none = Value::List{"x"};
  const std::pair<Value::List, std::size_t> rows[] = {
      {{one, none, other}, 2},          {{Value::List{none, one, other}}, 2},  // one array
      {{Value::List{Value(), one}}, 1}, {{none, Value(), 1e308}, 0},          {{Value::List{}}, 0}, {{}, 0}};
  for (const auto& [points, usable] : rows) {
    const std::string content = contentOf([&, given = points](VeltranoPDF& pdf) {
      pdf.PDFSetDrawMode(DRAW_DRAWBORDER);
      pdf.PDFDrawPolygon(given);
    });
    EXPECT_EQ(content.ends_with("h\r\nB\r\n%FIN_POLY/%\r\n"), usable > 0) << content;
    EXPECT_EQ(content.ends_with(" w \r\n%FIN_POLY/%\r\n"), usable == 0) << "no operator without a path";
    EXPECT_EQ(countOf(content, " m\r\n") + countOf(content, " l\r\n"), usable);
  }
}

TEST(Drawing, PageWithoutSizeTakesTheLinesThatNeedNone) {
  const std::string file = fileOf([](auto& doc) {
    doc.PDFPageHeight(std::nan(""));
    doc.PDFPageWidth(INFINITY);
    doc.PDFDrawLineHor(10, 20, 100);
    doc.PDFDrawEllipse(10, 20, 5, 5);
    doc.PDFTextOut("x", 1, 1);
  });
  EXPECT_EQ(pageContent(file, 1), lines({"%DEBUT_LNH/%", "[] 0 d", "0 G", "0.57 w S", "%FIN_LNH/%", "0 G",
                                         "[] 0 d", "0 G", "0.57 w ", "s", "q 0 g ", "%DEBUT_TEXT/%", "BT",
                                         "/F1 10 Tf", "(x) Tj", "ET", "Q", "%FIN_TEXT/%"}));
  EXPECT_TRUE(holds(file, "/MediaBox [ 0 0 595.28 841.89]\r\n")) << "it is still a page";
}

TEST(Drawing, ACoordinateThatIsNoneLeavesThePositionOfBefore) {
  for (const double none : {NAN, INFINITY, -INFINITY}) {
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

}  // namespace
}  // namespace veltrano::tests
