#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

TEST(Drawing, MovesTheCurrentPosition) {
  VeltranoPDF pdf;
  const auto position = [&] { return std::pair<int, int>(pdf.PDFGetX(), pdf.PDFGetY()); };
  pdf.PDFDrawLineHor(10, 20, 100);
  EXPECT_EQ(position(), std::pair(110, 20));
  pdf.PDFDrawLineVer(10, 20, 100);
  EXPECT_EQ(position(), std::pair(10, 120));
  pdf.PDFDrawLine(10, 20, 5, 30);
  EXPECT_EQ(position(), std::pair(10, 30));
  pdf.PDFDrawRectangle(3, 4, 50, 60);
  EXPECT_EQ(position(), std::pair(3, 64));
  pdf.PDFDrawEllipse(30, 40, 50, 60);
  EXPECT_EQ(position(), std::pair(3, 64));
  pdf.PDFDrawEllipse(30, 40, 50, 60, "t");
  EXPECT_EQ(position(), std::pair(35, 80)) << "where its link has left it, 10 being the font size";
  pdf.PDFCell("x", 7, 8, 9, 10);
  EXPECT_EQ(position(), std::pair(7, 18));
}

TEST(Drawing, StraightLinesLeaveTheirColorAsTheFillColor) {
  const auto fillAfter = [](void (*draw)(VeltranoPDF&)) {
    const std::string content = tests::contentOf([&](VeltranoPDF& pdf) {
      pdf.PDFSetDrawMode(DRAW_DRAW);
      pdf.PDFSetDrawColor(COLOR_VERT);
      draw(pdf);
      pdf.PDFDrawRectangle(0, 0, 1, 1);
    });
    const std::string_view opening = "%DEBUT_RECT/%\r\n";
    return content.substr(content.find(opening) + opening.size(), 20);
  };
  EXPECT_TRUE(fillAfter([](VeltranoPDF& pdf) { pdf.PDFDrawLineHor(0, 0, 1); }).starts_with("0 g\r\n"));
  EXPECT_EQ(fillAfter([](VeltranoPDF& pdf) {
              pdf.PDFSetLineColor(COLOR_ROUGE);
              pdf.PDFDrawLineVer(0, 0, 1);
            }),
            "1.000 0.000 0.000 rg");
  EXPECT_EQ(fillAfter([](VeltranoPDF& pdf) { pdf.PDFDrawLine(0, 0, 1, 1); }), "0.000 1.000 0.000 rg");
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
