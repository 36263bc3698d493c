#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::countOf;
using tests::Document;
using tests::fileOf;
using tests::holds;

std::string annotation(const std::string& rectangle, const std::string& target) {
  return "/Rect [" + rectangle + "] /Border [0 0 0] /A <</S /URI /URI (" + target + ")>>>>\r\n";
}

TEST(Links, WithoutATargetTheTextIsIt) {
  const std::string file = fileOf([](VeltranoPDF& pdf) {
    pdf.PDFSetFont(FONT_ARIAL, 12);
    pdf.PDFTextOut("Hello", 100, 200);
    pdf.PDFLink(0, 0, "Hello");  // at the current position: x 127.336, y 212
  });
  EXPECT_TRUE(holds(file, annotation("127.34 627.41 154.67 639.41", "Hello")));
}

TEST(Links, ShapesAreCoveredWholeInEveryUnit) {
  const std::string file = fileOf([](VeltranoPDF& pdf) {
    pdf.PDFSetUnit(UNIT_CM);
    pdf.PDFDrawRectangle(1, 2, 3.3, 4, "r");
    pdf.PDFCell("cell", 10, 20, 5.5, 1.5, "c");
  });
  EXPECT_TRUE(holds(
      file, annotation("28.35 671.81 121.89 785.20", "r")
                .append("<</Type /Annot /Subtype /Link " + annotation("283.46 232.44 439.37 274.96", "c"))));
  EXPECT_EQ(countOf(file, "(cell) Tj"), 1U);
  EXPECT_EQ(countOf(file, "(c) Tj"), 0U);
}

TEST(Links, OnlyATextLeadsSomewhere) {
  Document document;
  document.pdf.PDFBeginDoc();
  for (const Value& link : {Value(7), Value(Opaque{}), Value(Value::List{})}) {
    document.pdf.PDFDrawRectangle(1, 2, 3, 4, link);
    document.pdf.PDFDrawEllipse(1, 2, 3, 4, link);
    document.pdf.PDFCell("x", 1, 2, 3, 4, link);
    EXPECT_EQ(document.takeErrors(), std::vector<std::string>(3, "Unable to include this link"));
  }
  document.pdf.PDFDrawRectangle(1, 2, 3, 4, "");
  document.pdf.PDFDrawEllipse(1, 2, 3, 4, Value());
  document.pdf.PDFCell("x", 1, 2, 3, 4, Value());
  EXPECT_TRUE(document.errors.empty());
  EXPECT_FALSE(holds(document.finish(), "/Annot"));
}

TEST(Links, EachOnItsPageAndCountedIn16Bits) {
  const std::string file = fileOf([](VeltranoPDF& pdf) {
    pdf.PDFLink(1, 1, "first");
    pdf.PDFNewPage();
    for (int i = 0; i < 32767; ++i) pdf.PDFDrawRectangle(1, 1, 1, 1, "second");
    pdf.PDFLink(1, 1, "last");
  });
  EXPECT_EQ(countOf(file, "/Annots ["), 2U);
  EXPECT_EQ(countOf(file, "/URI (first)"), 1U);
  EXPECT_EQ(countOf(file, "/URI (second)"), 32765U);
  EXPECT_EQ(countOf(file, "/URI (last)"), 1U);
}

}  // namespace
}  // namespace veltrano
