#include <gtest/gtest.h>

#include <limits>

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
      {"Invalid Fort ", [](VeltranoPDF& pdf) { pdf.PDFSetFont(-1, 10); }},
      {"Incorrect Unit", [](VeltranoPDF& pdf) { pdf.PDFSetUnit(3); }},
      {"Incorrect Page Orientation", [](VeltranoPDF& pdf) { pdf.PDFOrientation(2); }},
      {"Incorrect Layout", [](VeltranoPDF& pdf) { pdf.PDFSetLayoutMode(4); }},
      {"Incorrect Layout", [](VeltranoPDF& pdf) { pdf.PDFSetLayoutMode(-1); }},
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

}  // namespace
}  // namespace veltrano
