#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;
using tests::lines;

TEST(Text, UnderlineSpansOneTextAtTheFontsOwnPlace) {
  const auto content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetFont(FONT_ARIAL, 12, 3);
    pdf.PDFSetFont(FONT_ARIAL, 12, 0);  // does not take the underline back
    pdf.PDFTextOut("Hello", 100, 200);
    pdf.PDFTextOut("Hello", 100, 300);
  });
  // 100 thousandths of 12 below the baseline is the middle of a bar of 50 thousandths.
  EXPECT_NE(content.find("ET\r\n100.00 640.39 27.34 0.60 re f\r\nQ\r\n%FIN_TEXT/%\r\n"), std::string::npos)
      << content;
  EXPECT_EQ(content.find("re f"), content.rfind("re f"));
}

TEST(Text, RotationTurnsAboutTheStart) {
  const auto content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetFont(FONT_ARIAL, 12, 3);
    pdf.PDFSetRotation(90);
    pdf.PDFTextOut("Hello", 100, 200);
    pdf.PDFSetRotation(-30);
    pdf.PDFTextOut("Hello", 100, 200);
    pdf.PDFSetRotation(0);
    pdf.PDFTextOut("Hello", 100, 200);
  });
  EXPECT_NE(content.find("BT\r\n0.000 1.000 -1.000 0.000 100.00 641.89 Tm\r\n"), std::string::npos);
  EXPECT_NE(content.find("q 0.000 1.000 -1.000 0.000 100.00 641.89 cm 0.00 -1.50 27.34 0.60 re f Q\r\n"),
            std::string::npos);
  EXPECT_NE(content.find("BT\r\n0.866 -0.500 0.500 0.866 100.00 641.89 Tm\r\n"), std::string::npos);
  EXPECT_NE(content.find("BT\r\n100.00 641.89 Td\r\n"), std::string::npos);
}

TEST(Text, Escapes) {
  constexpr std::pair<const char*, const char*> table[] = {
      {"a\\b", "(a\\\\\\\\b) Tj"}, {"(a)", "(\\(a\\)) Tj"}, {"\\(", "(\\\\\\\\\\() Tj"}, {"", "() Tj"}};
  for (const auto& [text, line] : table) {
    const auto content = contentOf([&](VeltranoPDF& pdf) {
      pdf.PDFTextOut(text, 1, 1);
      pdf.PDFCell(text, 1, 1, 100, 10);
    });
    const auto first = content.find(std::string("\r\n") + line);
    EXPECT_NE(first, std::string::npos) << content;
    EXPECT_NE(content.find(std::string("\r\n") + line, first + 1), std::string::npos) << content;
  }
}

TEST(Text, PositionBehindATextIsInMixedUnits) {
  const auto content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetUnit(UNIT_MM);
    pdf.PDFSetFont(FONT_ARIAL, 12);
    pdf.PDFTextOut("Hello", 10, 20);
    EXPECT_EQ(pdf.PDFGetX(), 37);  // 10 + 27.336 points
    EXPECT_EQ(pdf.PDFGetY(), 32);
    EXPECT_DOUBLE_EQ(pdf.PDFTextHeight(), 12 * 72 / 25.4);
    pdf.PDFTextOut("there");
    pdf.PDFTextOut("left alone", 50, 60);
    pdf.PDFDrawLineHor(1, 2, 3);
    EXPECT_EQ(pdf.PDFGetX(), 4);  // what moves the position later holds
  });
  EXPECT_NE(content.find("BT\r\n105.83 751.18 Td\r\n/F8 12 Tf\r\n(there) Tj\r\n"), std::string::npos)
      << content;
}

TEST(Text, WithoutASizeIsWrittenAtTen) {
  VeltranoPDF pdf;
  pdf.PDFSetFont(FONT_ARIAL, 0);
  pdf.PDFSetUnit(UNIT_PT);
  EXPECT_EQ(pdf.PDFTextHeight(), 0);
  pdf.PDFTextOut("Hello", 1, 1);
  EXPECT_EQ(pdf.PDFTextHeight(), 10);
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

TEST(Text, NumbersThatAreNoneLeaveTheOtherLines) {
  const auto content = contentOf([](VeltranoPDF& pdf) { pdf.PDFTextOut("x", std::nan(""), 5); });
  EXPECT_EQ(content,
            lines({"q 0 g ", "%DEBUT_TEXT/%", "BT", "/F1 10 Tf", "(x) Tj", "ET", "Q", "%FIN_TEXT/%"}));
}

}  // namespace
}  // namespace veltrano
