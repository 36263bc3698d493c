#include <gtest/gtest.h>

#include <limits>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;
using tests::lines;
using Errors = std::vector<std::string>;

/// The fill colour operator that `color` becomes, as a filled rectangle writes it.
std::string fillOperator(const Value& color) {
  const std::string content = contentOf([&](VeltranoPDF& pdf) {
    pdf.PDFSetDrawColor(color);
    pdf.PDFSetDrawMode(DRAW_DRAW);
    pdf.PDFDrawRectangle(0, 0, 1, 1);
  });
  const std::size_t start = std::string_view("%DEBUT_RECT/%\r\n").size();
  return content.substr(start, content.find("\r\n", start) - start);
}

TEST(Colors, OfEveryForm) {
  const struct {
    Value given;
    const char* expected;
  } rows[] = {
      {"#FF8000", "1.000 0.502 0.000 rg"},
      {"#FFF", "0.000 0.000 1.000 rg"},       // "00#FFF": the pair "#F" is none
      {"#12FF8000", "1.000 0.502 0.000 rg"},  // the last six count
      {COLOR_ROUGE, "1.000 0.000 0.000 rg"},
      {COLOR_JAUNE, "1.000 1.000 0.000 rg"},
      {255.9, "1.000 0.000 0.000 rg"},
      {-1, "1.000 1.000 1.000 rg"},
      {1e10, "0.000 0.000 0.000 rg"},
      {std::numeric_limits<double>::quiet_NaN(), "0.000 0.000 0.000 rg"},
      {Null(), "0.000 0.000 0.000 rg"},
      {Value::List{0, 0, 255}, "0.000 0.000 1.000 rg"},
      {Value::List{"128", 127.5, -51}, "0.502 0.502 -0.200 rg"},
      {Value::List{70000, Opaque(), 255}, "0.000 0.000 1.000 rg"},
      {Value::Doubles{255, 0, 255}, "1.000 0.000 1.000 rg"},
  };
  int number = 0;
  for (const auto& row : rows) EXPECT_EQ(fillOperator(row.given), row.expected) << "row " << number++;
}

TEST(Colors, MisspelledTextIsReportedByItsSetterAndBlack) {
  Document document;
  document.pdf.PDFSetTextColor("FF0000");
  EXPECT_EQ(document.takeErrors(), Errors{"Invalid Text Color"});
  document.pdf.PDFSetLineColor("");
  EXPECT_EQ(document.takeErrors(), Errors{"Invalid Line Color"});
  document.pdf.PDFSetDrawColor("255");
  EXPECT_EQ(document.takeErrors(), Errors{"Invalide Draw Color"});
  EXPECT_EQ(fillOperator("255"), "0.000 0.000 0.000 rg");
  EXPECT_EQ(document.pdf.PDFGetTextColor() + document.pdf.PDFGetLineColor() + document.pdf.PDFGetDrawColor(),
            "");
}

TEST(LineStyle, PatternsAreWholePointsOfTheUnitOfThen) {
  const struct {
    int unit;
    int style;
    const char* expected;
  } rows[] = {
      {UNIT_MM, pPDF_SOLID, "[] 0 d"},
      {UNIT_MM, pPDF_DASH, "[45 22 ] 0 d"},
      {UNIT_MM, pPDF_DASHDOT, "[22 19 5 19 ] 0 d"},
      {UNIT_CM, pPDF_DASHDOTDOT, "[226 113 56 113 56 113 ] 0 d"},
      {UNIT_PT, pPDF_DASH, "[16 8 ] 0 d"},
      {UNIT_PT, 4, ""},
  };
  for (const auto& row : rows) {
    const std::string content = contentOf([&](VeltranoPDF& pdf) {
      pdf.PDFSetUnit(row.unit);
      pdf.PDFSetLineStyle(row.style);
      pdf.PDFSetUnit(UNIT_PT);
      pdf.PDFDrawLineHor(1, 2, 3);
    });
    EXPECT_TRUE(content.starts_with(lines({"%DEBUT_LNH/%", row.expected, "1.00 839.89 m"}))) << content;
  }
}

TEST(GraphicsState, ReportsWhatItRefuses) {
  Document document;
  document.pdf.PDFSetLineStyle(4);
  document.pdf.PDFSetDrawMode(3);
  std::string names = document.pdf.PDFGetAlignement();
  for (const int alignment :
       std::initializer_list<int>{ALIGN_CENTER, ALIGN_LEFT, ALIGN_RIGHT, 9, ALIGN_FJUSTIFY}) {
    document.pdf.PDFSetAlignement(alignment);
    names.append(" ").append(document.pdf.PDFGetAlignement());
  }
  EXPECT_EQ(names, "Left Center Left Right Left Left");
  EXPECT_EQ(document.takeErrors(),
            (Errors{"Incorrect Line Style", "Incorrect Draw line", "Invalid Alignment Code"}));
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

}  // namespace
}  // namespace veltrano
