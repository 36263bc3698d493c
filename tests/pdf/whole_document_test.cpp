#include <gtest/gtest.h>

#include <regex>

#include "tests/pdf/pdf_testing.h"

// A document that uses nearly every member, against a file that tests/golden/pdf/whole_document.py works out
// apart from this code, with decimal arithmetic: every object, position, operator and number of it.

namespace veltrano::tests {
namespace {

using WholeDocument = PdfTest;

/// Lines and shapes in millimetres.
void drawShapes(VeltranoPDF& pdf) {
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
}

void writeTexts(VeltranoPDF& pdf) {
  pdf.PDFSetFont(FONT_ARIAL, 12, FONT_UNDERLINE);
  pdf.PDFTextOut("a\\(b)", 100, 200);
  pdf.PDFTextOut("next");
  pdf.PDFSetRotation(90);
  pdf.PDFSetFont(FONT_ARIAL, 12, FONT_UNDERLINE);
  pdf.PDFSetFont(FONT_ARIAL, 12, FONT_NORMAL);  // does not take the underline back
  pdf.PDFTextOut("up", 300, 300);
  pdf.PDFSetRotation(-30);
  pdf.PDFLink(300, 300, "here", "http://x/a(b)\\\r\nc");
  pdf.PDFSetRotation(0);
}

void writeCells(VeltranoPDF& pdf) {
  pdf.PDFSetDrawColor("#0000FF");
  pdf.PDFSetTextColor(COLOR_NOIR);  // a rectangle has left it white
  pdf.PDFSetFont(FONT_ARIAL, 0);    // becomes 10
  pdf.PDFSetAlignement(ALIGN_RIGHT);
  pdf.PDFSetBorder(BORDER_ALL);
  pdf.PDFCell("Hello", 100, 300, 80, 20);
  pdf.PDFSetAlignement(ALIGN_LEFT);
  pdf.PDFSetBorder(5432);
  pdf.PDFCell("\xC9t\xE9 (a)", 200, 300, 80, 20);
  pdf.PDFSetAlignement(ALIGN_FJUSTIFY);
  pdf.PDFCell("aaa aaa aaa", 300, 300, 50, 40);
  pdf.PDFSetAlignement(ALIGN_CENTER);
  pdf.PDFSetBorder(BORDER_ALL);
  pdf.PDFSetFill(true);
  pdf.PDFCell("one\r\ntwo", 400, 300, 60, 40, "c");
}

void drawLinks(VeltranoPDF& pdf, const std::filesystem::path& photo) {
  double width = 40, height = 0;
  pdf.PDFImage(photo, 500, 100, width, height, "i");
  pdf.PDFSetDrawMode(DRAW_NORMAL);
  pdf.PDFDrawRectangle(600, 100, 50, 20, "r");
  pdf.PDFSetDrawMode(DRAW_DRAW);
  pdf.PDFDrawEllipse(700, 100, 50, 0, "e");  // as high as wide
  const Value::List points{Value::List{10, 10}, Value::Doubles{20, 10}, Value::List{"15", 20.5}};
  // What is not a point is left out.
  pdf.PDFDrawPolygon({Value::List{1}, 5, "x", Value::List{Null(), 1}, points[0], points[1], points[2]});
  pdf.PDFSetDrawMode(DRAW_NORMAL);
  pdf.PDFDrawPolygon({points});
}

TEST_F(WholeDocument, IsAsItWasWorkedOut) {
  pdf.PDFProducer("p");
  pdf.PDFAuthor("a\xE9");
  pdf.PDFCreator("c");
  pdf.PDFKeywords("k");
  pdf.PDFSubject("s");
  pdf.PDFTitle("unescaped (");
  pdf.PDFSetZoomMode(150);
  pdf.PDFSetLayoutMode(LAYOUT_TWO);
  pdf.PDFUseThumbs(true);
  pdf.PDFUseOutlines(true);
  pdf.PDFSetViewerPreferences(12);
  pdf.PDFBeginDoc();
  EXPECT_TRUE(pdf.PDFSetBookmark("Drawing (", 0, 0).isEmpty());
  drawShapes(pdf);
  pdf.PDFEndPage();
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  pdf.PDFSetUnit(UNIT_PT);
  pdf.PDFNewPage();
  writeTexts(pdf);
  writeCells(pdf);
  const auto photo = folder / "photo.jpg";
  const std::string bytes = jpeg({frame(0xC0, 400, 300, 3)});
  ASSERT_TRUE(replaceFile(photo, bytes));
  drawLinks(pdf, photo);
  pdf.PDFSetBookmark("Below", 1, 100);
  pdf.PDFDrawLineHor(1, 45, 2);
  pdf.PDFSetBookmark("Last");  // at the current position
  pdf.PDFEndPage();
  pdf.PDFNewPage();
  pdf.PDFFormatPage(FORMAT_LETTER);  // reaches the page after it was begun, too
  EXPECT_EQ(pdf.PDFPageNumber(), 3);
  EXPECT_EQ(pdf.PDFNbPage(), 3);

  std::string file = finish();
  const std::regex now(R"(\(D:\d{4}[01]\d[0-3]\d[0-2]\d[0-5]\d[0-5]\d\))");
  file = std::regex_replace(file, now, "(D:YYYYMMDDHHmmSS)");
  if (const auto image = file.find(bytes); image != std::string::npos)
    file.replace(image, bytes.size(), "(the bytes of the file)");
  const std::string expected = readWholeFile(VELTRANO_GOLDEN_FOLDER "/whole_document.txt").value();
  EXPECT_EQ(file, expected);
}

}  // namespace
}  // namespace veltrano::tests
