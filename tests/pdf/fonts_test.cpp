#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::Document;

/// The "/Fn size Tf" that a text gets.
std::string fontLine(const std::function<void(VeltranoPDF&)>& select) {
  const std::string content = contentOf([&](VeltranoPDF& pdf) {
    select(pdf);
    pdf.PDFTextOut("x", 1, 1);
  });
  const auto start = content.find("/F");
  return content.substr(start, content.find(" Tf") - start);
}

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
    {FONT_SYMBOL, 2, "Symbol-Bold", "/F0 9"},
};

TEST(Fonts, SelectionAndResource) {
  for (const Choice& choice : choices) {
    EXPECT_EQ(fontLine([&](VeltranoPDF& pdf) { pdf.PDFSetFont(choice.font, 9, choice.style); }), choice.line)
        << choice.baseFont;
    VeltranoPDF pdf;
    pdf.PDFSetFont(choice.font, 9, choice.style);
    EXPECT_EQ(pdf.PDFGetStringWidth("a1!", {}, 10), pdf.PDFGetStringWidth("a1!", choice.baseFont, 10));
  }
  EXPECT_EQ(fontLine([](VeltranoPDF&) {}), "/F1 10");
  EXPECT_EQ(fontLine([](VeltranoPDF& pdf) { pdf.PDFSetFont(FONT_ARIAL, -7); }), "/F8 -7");
}

TEST(Fonts, AnInvalidFontIsReportedAndReplaced) {
  for (const std::int32_t font : {-1, 5, 7, 1 << 30}) {
    Document document;
    document.pdf.PDFSetFont(font, 10, 12);
    EXPECT_EQ(document.takeErrors(), std::vector<std::string>{"Invalid Fort "});
    EXPECT_DOUBLE_EQ(document.pdf.PDFGetStringWidth("a", {}, 1000),
                     444);  // upright: the style is not looked at
  }
}

TEST(Fonts, Measuring) {
  VeltranoPDF pdf;
  pdf.PDFSetFont(FONT_ARIAL, 12);
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("Hello", {}, 12),
                   27.336);  // (722 + 556 + 222 + 222 + 556) * 12 / 1000
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("\xC9t\xE9", {}, 10), 15.01);  // 667 + 278 + 556
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("Hello", "Courier", 10), 30);
  EXPECT_EQ(pdf.PDFGetStringWidth("Hello"), 0);  // not the size of the current font
  EXPECT_EQ(pdf.PDFGetStringWidth("", {}, 12), 0);
  EXPECT_EQ(pdf.PDFGetStringWidth(std::string_view("\0\x1F", 2), {}, 12), 0);
  EXPECT_EQ(pdf.PDFGetStringWidth("Hello", "Nowhere", 12), 0);
  EXPECT_EQ(pdf.PDFGetStringWidth("Hello", "../Helvetica/x", 12), 0);
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
  pdf.PDFLoadAfm(folder / "missing");
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 6);  // the folder of before stays
  pdf.PDFLoadAfm(folder.path());
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("A", "Zebra", 10), 1);
  EXPECT_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 0);
  pdf.PDFBeginDoc();
  const std::string file = document.finish();
  const auto fontNamed = [&](const std::string& name, int number) {
    return file.find("/Name /F" + std::to_string(number) + "\r\n/BaseFont /" + name + "\r\n") !=
           std::string::npos;
  };
  EXPECT_TRUE(fontNamed("Alpha", 1));
  EXPECT_TRUE(fontNamed("Middle.afm", 2));  // the last four characters go, whatever they are
  // A blank or a bracket would end the name.
  EXPECT_TRUE(fontNamed("Zebra#20#232#20#281#29#5B#7B#25#7D#5D", 3));
  EXPECT_TRUE(fontNamed("Zebra", 4));
  EXPECT_TRUE(fontNamed("Helvetica-Bold", 5));  // the table is only written over
  EXPECT_TRUE(fontNamed("ZapfDingbats", 16));
}

TEST(Fonts, AFolderNamedLikeMetricsHoldsOnlyFonts) {
  Document document;
  std::filesystem::create_directory(document.folder / "fonts.afm");
  for (const char* name : {"fonts.afm/a", "fonts.afm/readme.txt"}) replaceFile(document.folder / name, "x");
  document.pdf.PDFLoadAfm(document.folder / "fonts.afm");
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  EXPECT_NE(file.find("/BaseFont /Courier-Bold\r\n"), std::string::npos);  // "a" is too short to give a name
  EXPECT_NE(file.find("/Name /F2\r\n/BaseFont /readme\r\n"), std::string::npos);
}

}  // namespace
}  // namespace veltrano
