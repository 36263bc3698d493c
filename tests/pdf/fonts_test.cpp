#include <gtest/gtest.h>

#include <functional>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::holds;

struct Choice {
  std::int32_t font;
  std::int32_t style;
  const char* baseFont;
  const char* line;
};

// Resource numbers are the positions of the sorted files: Courier-Bold, -BoldOblique, -Oblique, Courier, the
// same of Helvetica, Symbol, Times-Bold, -BoldItalic, -Italic, -Roman, TimesItalic, TimesRoman, ZapfDingbats.
constexpr Choice choices[] = {
    {FONT_ARIAL, 0, "Helvetica", "/F8 9"},      {FONT_ARIAL, 1, "Helvetica-Oblique", "/F7 9"},
    {FONT_ARIAL, 2, "Helvetica-Bold", "/F5 9"}, {FONT_ARIAL, 21, "Helvetica-BoldOblique", "/F6 9"},
    {FONT_COURIER, 3, "Courier", "/F4 9"},      {FONT_COURIER, 312, "Courier-BoldOblique", "/F2 9"},
    {FONT_TIMES, 0, "Times-Roman", "/F13 9"},   {FONT_TIMES, 1, "TimesItalic", "/F14 9"},
    {FONT_TIMES, 23, "Times-Bold", "/F10 9"},   {FONT_TIMES, 12, "Times-BoldItalic", "/F11 9"},
    {FONT_SYMBOL, 0, "Symbol", "/F9 9"},        {FONT_ZAPFDINGBATS, 4567, "ZapfDingbats", "/F16 9"},
    {FONT_SYMBOL, 2, "Symbol-Bold", "/F0 9"},   {7, 12, "TimesRoman", "/F15 9"},
};

TEST(Fonts, SelectionAndResource) {
  const auto none = tests::contentOf([](VeltranoPDF& pdf) { pdf.PDFTextOut("x", 1, 1); });
  EXPECT_TRUE(holds(none, "\r\n/F1 10 Tf\r\n"));
  for (const Choice& choice : choices) {
    const auto content = tests::contentOf([&](VeltranoPDF& pdf) {
      pdf.PDFSetFont(choice.font, 9, choice.style);
      EXPECT_EQ(pdf.PDFGetStringWidth("a1!", {}, 10), pdf.PDFGetStringWidth("a1!", choice.baseFont, 10));
      pdf.PDFTextOut("x", 1, 1);
    });
    EXPECT_TRUE(holds(content, "\r\n" + std::string(choice.line) + " Tf\r\n")) << choice.baseFont;
  }
}

TEST(Fonts, Measuring) {
  VeltranoPDF pdf;
  pdf.PDFSetFont(FONT_ARIAL, 12);
  const struct {
    std::string_view text;
    const char* font;
    std::int16_t size;
    double width;
  } rows[] = {
      {"Hello", "", 12, 27.336},     // (722 + 556 + 222 + 222 + 556) * 12 / 1000
      {"\xC9t\xE9", "", 10, 15.01},  // 667 + 278 + 556
      {"Hello", "Courier", 10, 30},
      {"Hello", "", 0, 0},  // not the size of the current font
      {"", "", 12, 0},
      {{"\0\x1F", 2}, "", 12, 0},
      {"Hello", "Nowhere", 12, 0},
      {"Hello", "../Helvetica/x", 12, 0},
      {"Hello", "Helvetica", -10, -22.78},
  };
  for (const auto& row : rows) {
    EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth(row.text, row.font, row.size), row.width) << row.text << row.font;
  }
}

TEST(Fonts, LoadingAFolder) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  const auto& folder = document.folder;
  const std::string metrics = "StartCharMetrics\nC 65 ; WX 100\nEndCharMetrics";
  for (const char* name :
       {"Zebra.afm", "Alpha.AFM", "notes.txt", "Middle.afm.bak", "Zebra #2 (1)[{%}].afm"}) {
    replaceFile(folder / name, metrics);
  }
  pdf.PDFSetFont(FONT_COURIER, 9);
  pdf.PDFLoadAfm(folder / "missing");
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 6);  // the folder of before stays
  pdf.PDFLoadAfm(folder.path());
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("A", "Zebra", 10), 1);
  EXPECT_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 0);
  pdf.PDFBeginDoc();
  pdf.PDFTextOut("x", 1, 1);
  const std::string file = document.finish();
  EXPECT_TRUE(holds(file, "\r\n/F0 9 Tf\r\n")) << "Courier is written over";
  // The table is only written over; the last four characters of a name go, whatever they are; and a blank or
  // a bracket would end the name in the file.
  const std::pair<int, const char*> names[] = {
      {1, "Alpha"}, {2, "Middle.afm"},     {3, "Zebra#20#232#20#281#29#5B#7B#25#7D#5D"},
      {4, "Zebra"}, {5, "Helvetica-Bold"}, {16, "ZapfDingbats"}};
  for (const auto& [number, name] : names) {
    EXPECT_TRUE(holds(file, "/Name /F" + std::to_string(number) + "\r\n/BaseFont /" + name + "\r\n"));
  }
}

TEST(Fonts, AFolderNamedLikeMetricsHoldsOnlyFonts) {
  const auto before = std::filesystem::current_path();
  Document document;
  const auto folder = document.folder / "fonts.afm";
  std::filesystem::create_directory(folder);
  for (const char* name : {"a", "readme.txt"}) replaceFile(folder / name, "x");
  std::filesystem::current_path(folder);
  for (const auto& given : {folder, std::filesystem::path(".")}) {  // the whole path counts
    VeltranoPDF pdf;
    pdf.PDFFileName(document.file());
    pdf.PDFLoadAfm(given);
    pdf.PDFBeginDoc();
    pdf.PDFEndDoc();
    const std::string file = readWholeFile(document.file()).value_or("");
    EXPECT_TRUE(holds(file, "/BaseFont /Courier-Bold\r\n"));  // "a" is too short to give a name
    EXPECT_TRUE(holds(file, "/Name /F2\r\n/BaseFont /readme\r\n"));
  }
  std::filesystem::current_path(before);
}

TEST(Fonts, MetricsAreLookedAtWhenAFontIsSetOrLoadedAPageBeginsOrAWidthIsAskedFor) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  const auto write = [&](const char* width) {
    replaceFile(document.folder / "Helvetica.afm",
                std::string("StartCharMetrics\nC 65 ; WX ") + width + "\nEndCharMetrics");
  };
  const auto widthDrawn = [&] {
    pdf.PDFTextOut("A", 5, 5);
    return pdf.PDFGetX() - 5;
  };
  write("800");
  pdf.PDFLoadAfm(document.folder.path());
  pdf.PDFSetFont(FONT_ARIAL, 10);
  pdf.PDFBeginDoc();
  const std::function<void()> moments[] = {
      [&] { pdf.PDFSetFont(FONT_ARIAL, 10); },
      [&] { pdf.PDFLoadAfm(document.folder.path()); },
      [&] { pdf.PDFNewPage(); },
      [&] { pdf.PDFBeginDoc(); },
      [&] { EXPECT_EQ(pdf.PDFGetStringWidth("A", {}, 1), 2); },
  };
  for (const auto& moment : moments) {
    write("800");
    EXPECT_EQ(pdf.PDFGetStringWidth("A", {}, 10), 8);
    write("2000");
    EXPECT_EQ(widthDrawn(), 8) << "what is drawn uses the metrics in hand";
    EXPECT_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 0);
    EXPECT_EQ(widthDrawn(), 8) << "another font's width is no look at this one";
    moment();
    EXPECT_EQ(widthDrawn(), 20);
  }
  std::filesystem::remove(document.folder / "Helvetica.afm");
  EXPECT_EQ(pdf.PDFGetStringWidth("A", {}, 10), 0);
}

}  // namespace
}  // namespace veltrano
