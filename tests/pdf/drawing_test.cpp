#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;
using tests::lines;

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
}

TEST(Drawing, StraightLinesLeaveTheirColorAsTheFillColor) {
  const std::string content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetDrawMode(DRAW_DRAW);
    pdf.PDFSetLineColor(COLOR_ROUGE);
    pdf.PDFDrawLine(0, 0, 1, 1);
    pdf.PDFDrawRectangle(0, 0, 1, 1);
    pdf.PDFDrawLineVer(0, 0, 1);
    pdf.PDFDrawRectangle(0, 0, 1, 1);
  });
  const auto first = content.find("%DEBUT_RECT/%\r\n0 g\r\n");
  EXPECT_NE(first, std::string::npos) << "a free line does not";
  EXPECT_NE(content.find("%DEBUT_RECT/%\r\n1.000 0.000 0.000 rg\r\n", first + 1), std::string::npos);
}

TEST(Drawing, ShapesPaintAndCloseByTheDrawMode) {
  const Value::List points{Value::List{0, 0}, Value::Doubles{10, 0}, Value::List{"10", 20.5}};
  const std::string outline = lines({"0.00 841.89 m", "10.00 841.89 l", "10.00 821.39 l"});
  const struct {
    int mode;
    std::string colors;
    std::string rectangle;
    std::string ellipse;
    std::string polygon;
  } rows[] = {{DRAW_NORMAL, "0 G\r\n", "s\r\n", "s\r\n", "s\r\n"},
              {DRAW_DRAW, "0 g\r\n", "f\r\n", "h f\r\n", "h f\r\n"},
              {DRAW_DRAWBORDER, "0 g\r\n0 G\r\n", "B\r\n", "B\r\n", "h\r\nB\r\n"}};
  for (const auto& row : rows) {
    const std::string content = contentOf([&](VeltranoPDF& pdf) {
      pdf.PDFSetDrawMode(row.mode);
      pdf.PDFDrawRectangle(10, 20, 50, 30);
      pdf.PDFDrawEllipse(0, 0, 20);  // as high as wide
      // Points that are none are left out.
      pdf.PDFDrawPolygon({Value::List{1}, 5, "x", Value::List{Null(), 1}, points[0], points[1], points[2]});
    });
    EXPECT_TRUE(content.starts_with(lines({"%DEBUT_RECT/%"}) + row.colors +
                                    "[] 0 d\r\n10.00 821.89 50.00 -30.00 re " + row.rectangle +
                                    lines({"0.57 w S", "%FIN_RECT/%"}) + row.colors +
                                    lines({"[] 0 d", "0 G", "0.57 w ", "20.00 831.89 m"})))
        << content;
    const std::string polygon = lines({"%DEBUT_POLY/%", "[] 0 d"}) + row.colors + lines({"0.57 w "}) +
                                outline + row.polygon + lines({"%FIN_POLY/%"});
    EXPECT_TRUE(content.ends_with("20.00 831.89 c\r\n" + row.ellipse + polygon)) << content;
  }
  const auto nested = contentOf([&](VeltranoPDF& pdf) { pdf.PDFDrawPolygon({points}); });
  EXPECT_NE(nested.find(outline), std::string::npos) << "one array of points";
}

// The expected lines were worked out with decimal arithmetic, apart from this code.
TEST(Drawing, WholePageInMillimetres) {
  const auto content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetUnit(UNIT_MM);
    pdf.PDFSetLineWidth(0.5);
    pdf.PDFSetLineColor("#FF0000");
    pdf.PDFSetLineStyle(pPDF_DASH);
    pdf.PDFDrawLineHor(10, 20, 100);
    pdf.PDFSetLineStyle(pPDF_DASHDOT);
    pdf.PDFDrawLineVer(15, 25, 40);
    pdf.PDFDrawLine(20, 30, 60, 55);
    pdf.PDFSetLineStyle(pPDF_SOLID);
    pdf.PDFDrawRectangle(70, 30, 40, 25);
    pdf.PDFSetDrawMode(DRAW_DRAW);
    pdf.PDFDrawRectangle(120, 30, 40, 25);
    pdf.PDFSetDrawMode(DRAW_DRAWBORDER);
    pdf.PDFSetDrawColor(Value::List{255, 128, 0});
    pdf.PDFDrawRectangle(70, 60, 40, 25);
    pdf.PDFDrawEllipse(120, 60, 40, 25);
    pdf.PDFDrawPolygon({Value::List{30, 80}, Value::List{60, 110}, Value::List{25, 120}});
  });
  EXPECT_EQ(content, tests::golden("drawing_page.txt"));
}

}  // namespace
}  // namespace veltrano
