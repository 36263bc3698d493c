#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;

TEST(Colors, OfEveryForm) {
  const std::pair<Value, const char*> rows[] = {
      {"#FF8000", "1.000 0.502 0.000"},
      {"#FFF", "0.000 0.000 1.000"},       // "00#FFF": the pair "#F" is none
      {"#12fF8000", "1.000 0.502 0.000"},  // the last six count
      {"FF8000", "0.000 0.000 0.000"},     // reported, too
      {COLOR_ROUGE, "1.000 0.000 0.000"},
      {COLOR_JAUNE, "1.000 1.000 0.000"},
      {COLOR_BLEU, "0.000 0.000 1.000"},
      {255.9, "1.000 0.000 0.000"},
      {-0.5, "0.000 0.000 0.000"},  // fractions go towards zero
      {-1.5, "1.000 1.000 1.000"},
      {-1, "1.000 1.000 1.000"},
      {1e10, "0.000 0.000 0.000"},
      {std::numeric_limits<double>::quiet_NaN(), "0.000 0.000 0.000"},
      {Null(), "0.000 0.000 0.000"},
      {Value::List{"128", 127.5, -51}, "0.502 0.502 -0.200"},
      {Value::List{70000, Opaque(), 255, 9}, "0.000 0.000 1.000"},
      {Value::List{255}, "1.000 0.000 0.000"},
      {Value::Doubles{255, 0, 255, 9}, "1.000 0.000 1.000"},
      {Value::Bytes{255, 128, 0, 9}, "1.000 0.502 0.000"},
      {Value::Bytes{0, 255}, "0.000 1.000 0.000"},
  };
  for (const auto& [color, numbers] : rows) {
    const std::string content = contentOf([&, given = color](VeltranoPDF& pdf) {
      pdf.PDFSetTextColor(given);
      pdf.PDFTextOut("x", 1, 1);
      pdf.PDFSetDrawColor(given);
      pdf.PDFSetLineColor(given);
      pdf.PDFSetDrawMode(DRAW_DRAWBORDER);
      pdf.PDFDrawRectangle(0, 0, 1, 1);
    });
    const std::string all(numbers);
    EXPECT_TRUE(content.starts_with("q " + all + " rg \r\n")) << content;
    EXPECT_TRUE(tests::holds(content, "\r\n" + all + " rg\r\n" + all + " RG\r\n"));
  }
}

TEST(LineStyle, PatternsAreWholePointsOfTheUnitOfThen) {
  const std::pair<int, const char*> rows[] = {{pPDF_DASH, "[453 226 ] 0 d"},
                                              {pPDF_DASHDOT, "[226 198 56 198 ] 0 d"},
                                              {pPDF_DASHDOTDOT, "[226 113 56 113 56 113 ] 0 d"},
                                              {4, ""}};
  for (const auto& [style, expected] : rows) {
    const std::string content = contentOf([given = style](VeltranoPDF& pdf) {
      pdf.PDFSetUnit(UNIT_CM);
      pdf.PDFSetLineStyle(given);
      pdf.PDFSetUnit(UNIT_PT);
      pdf.PDFDrawLineHor(1, 2, 3);
    });
    EXPECT_TRUE(content.starts_with("%DEBUT_LNH/%\r\n" + std::string(expected) + "\r\n1.00 ")) << content;
  }
}

TEST(GraphicsState, GettersAnswerAsHostsKnowThem) {
  VeltranoPDF pdf;
  pdf.PDFSetTextColor(COLOR_ROUGE);
  EXPECT_EQ(pdf.PDFGetTextColor() + pdf.PDFGetLineColor() + pdf.PDFGetDrawColor() + pdf.PDFGetFileName(), "");
  std::string names = pdf.PDFGetAlignement();
  for (const int alignment : {0, 1, 2, 9, 3}) {
    pdf.PDFSetAlignement(alignment);
    names.append(" ").append(pdf.PDFGetAlignement());
  }
  EXPECT_EQ(names, "Left Center Left Right Left Left");
}

TEST(GraphicsState, EveryRefusalHasItsMessage) {
  const std::pair<const char*, void (*)(VeltranoPDF&)> rows[] = {
      {"Invalid Text Color", [](VeltranoPDF& pdf) { pdf.PDFSetTextColor("FF0000"); }},
      {"Invalid Line Color", [](VeltranoPDF& pdf) { pdf.PDFSetLineColor(""); }},
      {"Invalide Draw Color", [](VeltranoPDF& pdf) { pdf.PDFSetDrawColor("255"); }},
      {"Incorrect Line Style", [](VeltranoPDF& pdf) { pdf.PDFSetLineStyle(4); }},
      {"Incorrect Draw line", [](VeltranoPDF& pdf) { pdf.PDFSetDrawMode(3); }},
      {"Invalid Alignment Code", [](VeltranoPDF& pdf) { pdf.PDFSetAlignement(4); }},
      {"Invalid Fort ", [](VeltranoPDF& pdf) { pdf.PDFSetFont(5, 10); }},
      {"Incorrect Page Orientation", [](VeltranoPDF& pdf) { pdf.PDFOrientation(2); }},
  };
  Document document;
  for (const auto& [message, call] : rows) {
    call(document.pdf);
    EXPECT_EQ(document.takeErrors(), std::vector<std::string>{message});
  }
}

TEST(GraphicsState, HandlerMayUseTheObjectAndReplaceItself) {
  Document document;
  std::string seen;
  document.pdf.onError = [&](std::string_view message) {
    seen = message;
    document.pdf.onError = nullptr;
    document.pdf.PDFSetUnit(99);
    document.pdf.PDFInit();
  };
  document.pdf.PDFFormatPage("none");
  EXPECT_EQ(seen, "Incorrect Page Code");
  EXPECT_EQ(document.pdf.PDFGetPageWidth(), 595.28);
}

TEST(Drawing, MovesTheCurrentPosition) {
  const std::tuple<void (*)(VeltranoPDF&), int, int> rows[] = {
      {[](VeltranoPDF& pdf) { pdf.PDFDrawLineHor(10, 20, 100); }, 110, 20},
      {[](VeltranoPDF& pdf) { pdf.PDFDrawLineVer(10, 20, 100); }, 10, 120},
      {[](VeltranoPDF& pdf) { pdf.PDFDrawLine(10, 20, 5, 30); }, 10, 30},
      {[](VeltranoPDF& pdf) { pdf.PDFDrawRectangle(3, 4, 50, 60); }, 3, 64},
      {[](VeltranoPDF& pdf) { pdf.PDFDrawEllipse(30, 40, 50, 60); }, 3, 64},
      // Where its link has left it, 10 being the font size.
      {[](VeltranoPDF& pdf) { pdf.PDFDrawEllipse(30, 40, 50, 60, "t"); }, 35, 80},
      {[](VeltranoPDF& pdf) { pdf.PDFCell("x", 7, 8, 9, 10); }, 7, 18},
  };
  VeltranoPDF pdf;
  for (const auto& [draw, x, y] : rows) {
    draw(pdf);
    EXPECT_EQ(pdf.PDFGetX(), x);
    EXPECT_EQ(pdf.PDFGetY(), y);
  }
}

TEST(Drawing, OnlyTheTwoStraightLinesLeaveTheirColorAsTheFillColor) {
  const std::string content = contentOf([](VeltranoPDF& pdf) {
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
  std::size_t at = 0;
  for (const char* fill : {"0.000 1.000 0.000 rg", "0 g", "1.000 0.000 0.000 rg"}) {
    at = content.find("%DEBUT_RECT/%\r\n" + std::string(fill) + "\r\n", at + 1);
    EXPECT_NE(at, std::string::npos) << fill;
  }
}

TEST(Drawing, PolygonTakesThePointsThatAreOnes) {
  const Value one = Value::List{10, 20};
  const Value other = Value::Doubles{30, 40};
  const Value none = Value::List{"x"};
  const std::pair<Value::List, int> rows[] = {
      {{one, none, other}, 2},
      {{Value::List{none, one, other}}, 2},  // one array, its first point malformed
      {{Value::List{Value(), one}}, 1},
      {{one}, 1},
      {{none, Value(), 1e308}, 0},
      {{Value::List{}}, 0},
      {{}, 0},
  };
  for (const auto& [points, usable] : rows) {
    const std::string content = tests::contentOf([&, given = points](VeltranoPDF& pdf) {
      pdf.PDFSetDrawMode(DRAW_DRAWBORDER);
      pdf.PDFDrawPolygon(given);
    });
    const auto painted = content.ends_with("h\r\nB\r\n%FIN_POLY/%\r\n");
    EXPECT_EQ(painted, usable > 0) << content;
    EXPECT_EQ(content.ends_with(" w \r\n%FIN_POLY/%\r\n"), usable == 0) << "no operator without a path";
    EXPECT_EQ(tests::countOf(content, " m\r\n") + tests::countOf(content, " l\r\n"),
              static_cast<std::size_t>(usable));
  }
}

}  // namespace
}  // namespace veltrano
