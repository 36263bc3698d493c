#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

TEST(Text, PositionBehindATextIsInMixedUnits) {
  VeltranoPDF pdf;
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFSetFont(FONT_ARIAL, 12);
  pdf.PDFTextOut("Hello", 10, 20);
  EXPECT_EQ(pdf.PDFGetX(), 37);  // 10 + 27.336 points
  EXPECT_EQ(pdf.PDFGetY(), 32);
  EXPECT_DOUBLE_EQ(pdf.PDFTextHeight(), 12 * 72 / 25.4);
  pdf.PDFTextOut("Hello", 50, 60);
  pdf.PDFDrawLineHor(1, 2, 3);
  EXPECT_EQ(pdf.PDFGetX(), 4);  // what moves the position later holds
  pdf.PDFTextOut("x", 50, 60);
  pdf.PDFTextOut("", 5, 6);
  EXPECT_EQ(pdf.PDFGetX(), 5);
}

TEST(Text, WithoutASizeIsWrittenAtTen) {
  VeltranoPDF pdf;
  pdf.PDFSetFont(FONT_ARIAL, 0);
  EXPECT_EQ(pdf.PDFTextHeight(), 0);
  pdf.PDFTextOut("Hello", 1, 1);
  EXPECT_EQ(pdf.PDFGetX(), 24);
  EXPECT_EQ(pdf.PDFGetY(), 11);
}

}  // namespace
}  // namespace veltrano
