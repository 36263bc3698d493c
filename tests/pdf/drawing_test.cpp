#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;
using tests::lines;
using tests::sameBytes;

TEST(Drawing, LinesInEachDirection) {
  EXPECT_EQ(contentOf([](VeltranoPDF& pdf) { pdf.PDFDrawLineHor(10, 20, 100); }),
            lines({"%DEBUT_LNH/%", "[] 0 d", "10.00 821.89 m", "110.00 821.89 l", "0 G", "0.57 w S",
                   "%FIN_LNH/%"}));
  EXPECT_EQ(
      contentOf([](VeltranoPDF& pdf) { pdf.PDFDrawLineVer(10, 20, 100); }),
      lines({"%DEBUT_LNV/%", "[] 0 d", "10.00 821.89 m", "10.00 721.89 l", "0 G", "0.57 w S", "%FIN_LNV/%"}));
  EXPECT_EQ(contentOf([](VeltranoPDF& pdf) { pdf.PDFDrawLine(10, 20, 5, 30.005); }),
            lines({"%DEBUT_LN/%", "10.00 821.89 m", "5.00 811.89 l", "0 G", "0.57 w S", "%FIN_LN/%"}));
}

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

TEST(Drawing, RectanglePaintsByTheDrawMode) {
  const struct {
    int mode;
    std::string colors;
    std::string painting;
  } rows[] = {{DRAW_NORMAL, lines({"0 G"}), "s"},
              {DRAW_DRAW, lines({"0 g"}), "f"},
              {DRAW_DRAWBORDER, lines({"0 g", "0 G"}), "B"}};
  for (const auto& row : rows) {
    EXPECT_EQ(
        contentOf([&](VeltranoPDF& pdf) {
          pdf.PDFSetDrawMode(row.mode);
          pdf.PDFDrawRectangle(10, 20, 50, 30);
        }),
        lines({"%DEBUT_RECT/%"}) + row.colors +
            lines({"[] 0 d", "10.00 821.89 50.00 -30.00 re " + row.painting, "0.57 w S", "%FIN_RECT/%"}));
  }
}

// A box of 200 by 100 points at (100, 41.89): its centre lies at (200, 750), the tangents end 55 and 27.5
// points away.
TEST(Drawing, EllipseTouchesTheMiddlesOfItsBox) {
  const std::string outline =
      lines({"300.00 750.00 m", "300.00 777.50 255.00 800.00 200.00 800.00 c",
             "145.00 800.00 100.00 777.50 100.00 750.00 c", "100.00 722.50 145.00 700.00 200.00 700.00 c",
             "255.00 700.00 300.00 722.50 300.00 750.00 c"});
  const struct {
    int mode;
    std::string colors;
    std::string painting;
  } rows[] = {{DRAW_NORMAL, lines({"0 G"}), "s"},
              {DRAW_DRAW, lines({"0 g"}), "h f"},
              {DRAW_DRAWBORDER, lines({"0 g", "0 G"}), "B"}};
  for (const auto& row : rows) {
    EXPECT_TRUE(
        sameBytes(contentOf([&](VeltranoPDF& pdf) {
                    pdf.PDFSetDrawMode(row.mode);
                    pdf.PDFDrawEllipse(100, 41.89, 200, 100);
                  }),
                  row.colors + lines({"[] 0 d", "0 G", "0.57 w "}) + outline + lines({row.painting})));
  }
  const auto circle = contentOf([](VeltranoPDF& pdf) { pdf.PDFDrawEllipse(0, 0, 20); });
  EXPECT_NE(circle.find("0.00 826.39 4.50 821.89 10.00 821.89 c\r\n"), std::string::npos)
      << "as high as wide";
}

TEST(Drawing, PolygonIsClosedInEveryMode) {
  const Value::List points{Value::List{0, 0}, Value::Doubles{10, 0}, Value::List{"10", 20.5}};
  const std::string outline = lines({"0.00 841.89 m", "10.00 841.89 l", "10.00 821.39 l"});
  const struct {
    int mode;
    std::string colors;
    std::string painting;
  } rows[] = {{DRAW_NORMAL, lines({"0 G"}), lines({"s"})},
              {DRAW_DRAW, lines({"0 g"}), lines({"h f"})},
              {DRAW_DRAWBORDER, lines({"0 g", "0 G"}), lines({"h", "B"})}};
  for (const auto& row : rows) {
    EXPECT_EQ(contentOf([&](VeltranoPDF& pdf) {
                pdf.PDFSetDrawMode(row.mode);
                pdf.PDFDrawPolygon(points);
              }),
              lines({"%DEBUT_POLY/%", "[] 0 d"}) + row.colors + lines({"0.57 w "}) + outline + row.painting +
                  lines({"%FIN_POLY/%"}));
  }
  const auto broken = contentOf([&](VeltranoPDF& pdf) {
    pdf.PDFDrawPolygon(
        {Value::List{1}, Value::List{}, 5, "x", Value::List{Null(), 1}, points[0], points[1], points[2]});
  });
  EXPECT_EQ(broken, contentOf([&](VeltranoPDF& pdf) { pdf.PDFDrawPolygon(points); }))
      << "points that are none are left out";
  EXPECT_EQ(broken, contentOf([&](VeltranoPDF& pdf) { pdf.PDFDrawPolygon({points}); }))
      << "one array of points";
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
  EXPECT_TRUE(sameBytes(content, tests::golden("drawing_page.txt")));
}

// 28.35 = 10 mm; the page from the top: 841.89 - 20 * 72 / 25.4 = 785.20.
TEST(Drawing, ScalesByTheUnit) {
  const auto content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetUnit(UNIT_MM);
    pdf.PDFDrawRectangle(10, 20, 50, 20);
  });
  EXPECT_NE(content.find("28.35 785.20 141.73 -56.69 re s\r\n1.61 w S\r\n"), std::string::npos) << content;
}

TEST(Drawing, LinkThatIsNoTextIsReported) {
  Document document;
  document.pdf.PDFBeginDoc();
  for (const Value& link : {Value(5), Value(Null()), Value(Opaque())}) {
    document.pdf.PDFDrawRectangle(1, 1, 1, 1, link);
    document.pdf.PDFDrawEllipse(1, 1, 1, 1, link);
    EXPECT_EQ(document.takeErrors(), std::vector<std::string>(2, "Unable to include this link"));
  }
  for (const Value& none : {Value(""), Value()}) {
    document.pdf.PDFDrawRectangle(1, 1, 1, 1, none);
    document.pdf.PDFDrawEllipse(1, 1, 1, 1, none);
  }
  EXPECT_TRUE(document.takeErrors().empty());
  EXPECT_EQ(document.finish().find("/Annots"), std::string::npos);
}

}  // namespace
}  // namespace veltrano
