#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;

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

TEST(Text, PositionTakesTheMetricsOfItsTime) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  const auto write = [&](const char* width) {
    replaceFile(document.folder / "Helvetica.afm",
                std::string("StartCharMetrics\nC 65 ; WX ") + width + "\nEndCharMetrics");
  };
  write("1000");
  pdf.PDFLoadAfm(document.folder.path());
  pdf.PDFSetFont(FONT_ARIAL, 10);
  // Only an old file is known well enough to be looked at later.
  std::this_thread::sleep_for(std::chrono::milliseconds(2100));
  EXPECT_EQ(pdf.PDFGetStringWidth("A", {}, 10), 10);
  pdf.PDFTextOut("A", 5, 5);
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  write("2000");
  EXPECT_EQ(pdf.PDFGetX(), 15);
  pdf.PDFTextOut("A", 5, 5);
  EXPECT_EQ(pdf.PDFGetX(), 25);
  pdf.PDFTextOut("A", 5, 5);
  std::filesystem::remove(document.folder / "Helvetica.afm");
  EXPECT_EQ(pdf.PDFGetStringWidth("A", {}, 10), 0);
}

}  // namespace
}  // namespace veltrano
