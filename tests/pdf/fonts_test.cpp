#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "base/files/output.h"
#include "base/os/host.h"
#include "pdf/fonts/afm_file.h"
#include "pdf/fonts/metrics_folder.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using Fonts = PdfTest;

std::string afm(const std::string& characters) {
  return "StartCharMetrics 3\n" + characters + "\nEndCharMetrics\n";
}
std::string afmWithWidth(int width) {
  return afm("C 65 ; WX " + std::to_string(width));
}

TEST(Afm, ReadsByThePositionsOfTheFields) {
  const struct {
    const char* what;
    std::string afm;
    std::array<std::int32_t, 3> widths;  ///< of "A", "B" and "C", codes 65 to 67
  } rows[] = {
      {"plain", afm("C 65 ; WX 1 ;\nC 66 ; WX 2 ;\nC 67 ; WX 4 ;"), {1, 2, 4}},
      {"CR LF", "StartCharMetrics\r\nC 65 ; WX 12\r\nC 66 ; WX 2\r\nEndCharMetrics\r\n", {12, 2, 0}},
      {"CR alone", "StartCharMetrics\rC 65 ; WX 1\rC 66 ; WX 2\rEndCharMetrics\r", {1, 2, 0}},
      {"an unencoded character", afm("C 65 ; WX 1\nC -1 ; WX 9\nC 66 ; WX 2"), {1, 0, 0}},
      {"neither keywords nor blanks nor fractions count", afm("  x   65  ;   y   7.9  ; N"), {7, 0, 0}},
      {"no end: the last code stays 0", "StartCharMetrics\nC 65 ; WX 1\nC 66 ; WX 2\n", {0, 0, 0}},
      {"the end before the start", "Comment -1 ;\n" + afm("C 65 ; WX 1"), {0, 0, 0}},
      {"outside the first and last code", afm("C 66 ; W 2\nC 67 ; W 4\nC 65 ; W 1\nC 66 ; W 2"), {0, 2, 0}},
      {"malformed", afm("C 65 ; W 1\n\n;;;\nC x ; W 9\nC 66 ; W x\nC 66\nC ; W 5\nC 67 ; W 4"), {1, 0, 4}},
      {"out of range", afm("C 65 ; W 99999999999\nC 66 ; W 2\nC 99999999999 ; W 3\nC 300 ; W 3"), {0, 2, 0}},
      {"a second start", afm("C 65 ; W 1\nStartCharMetrics\nC 66 ; W 2\nC 67 ; W 4"), {1, 2, 4}}};
  for (const auto& row : rows) {
    const auto metrics = parseAfm(row.afm, true);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(metrics->widths[65 + i], row.widths[i]) << row.what;
  }
  const auto header = parseAfm(
      "xDescender -9\r\nDescender -207\r\nUnderlinePosition x\r\nUnderlineThickness 55.5\r\n"
      "StartCharMetrics\r\nUnderlinePosition -7\r\nEndCharMetrics\r\n",
      true);
  EXPECT_TRUE(header->descender == -207 && header->underlineThickness == 55.5);
  EXPECT_EQ(header->underlinePosition, -100) << "the usual one";
  // A sum stays within 32 bits.
  EXPECT_EQ(parseAfm(afm("C 65 ; WX 2000000000\nC 66 ; WX 7"), true)->sum("AAB"), 2000000007);
  EXPECT_EQ(parseAfm(afmWithWidth(1000), true)->sum(std::string(3'000'000, 'A')), 2147483000);
}

TEST(Afm, AFileCutOffAnywhereMeasuresNothingOrTheSame) {
  const auto text = readWholeFile(libraryFolder() / "Helvetica.afm").value();
  const auto whole = parseAfm(text, true);
  const std::size_t last = text.find("EndCharMetrics");
  for (std::size_t length = 0; length <= text.size(); length += 7) {
    const auto cut = parseAfm(text.substr(0, length), true), begun = parseAfm(text.substr(0, length), false);
    EXPECT_EQ(cut->sum("A"), length < last + 14 ? 0 : 667) << length;
    EXPECT_TRUE(!begun || begun->widths == whole->widths) << length;
  }
}

TEST(MetricsFolder, ShippedFontsMeasureByTheCodesOfWindows1252) {
  // Widths as the makers of the fonts publish them.
  constexpr std::tuple<const char*, unsigned char, std::int32_t> table[] = {
      {"Helvetica", 0xE9, 556}, {"Helvetica", 0x27, 191},  {"Helvetica", 0xAD, 333}, {"Helvetica", 0x9C, 944},
      {"Helvetica", 0x81, 350}, {"TimesItalic", 'a', 500}, {"Symbol", 'a', 631},     {"Symbol", 0x80, 0}};
  MetricsFolder metrics;
  metrics.setPath(libraryFolder());
  for (const auto& [font, code, width] : table)
    EXPECT_EQ(metrics.read(font)->widths[code], width) << font << ' ' << int{code};
  for (const char* font : {"Helvetica", "Courier-Oblique", "Times-Bold", "TimesItalic"})
    for (std::size_t code = 32; code < 256; ++code)
      EXPECT_GT(metrics.read(font)->widths[code], 0) << font << ' ' << code;
}

TEST(MetricsFolder, SeesEachEditAtOnce) {
  const TemporaryFolder folder, other;
  MetricsFolder metrics;
  metrics.setPath(folder.path());
  const auto file = folder / "Font.afm";
  const auto width = [&] { return metrics.read("Font")->widths['A']; };
  EXPECT_EQ(width(), 0);
  for (int edit = 100; edit < 140; ++edit) {  // of one size and within one step of the file system's times
    replaceFile(file, afmWithWidth(edit));
    ASSERT_EQ(width(), edit);
    OutputFile::create(file)->write(afmWithWidth(edit + 500));
    ASSERT_EQ(width(), edit + 500);
  }
  const auto held = metrics.look("Font");
  EXPECT_EQ(metrics.read("Font"), held) << "read again, but not parsed again";
  replaceFile(file, afmWithWidth(7));
  EXPECT_EQ(metrics.look("Font")->widths['A'], 7) << "of another size";
  EXPECT_EQ(held->widths['A'], 639) << "what is held does not change";
  std::filesystem::remove(file);
  EXPECT_EQ(width(), 0);
  replaceFile(other / "Font.afm", std::string(40000, 'x') + "\n" + afmWithWidth(2));  // a long header
  metrics.setPath(other.path());
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(metrics.read("No font " + std::to_string(i))->widths['A'], 0);
  EXPECT_EQ(metrics.read(std::string("Font\0x", 6))->widths['A'], 0);
  EXPECT_EQ(width(), 2);
}

TEST_F(Fonts, SelectionAndResource) {
  // Resource numbers are the positions of the sorted metrics files.
  constexpr std::tuple<std::int32_t, std::int32_t, const char*, const char*> choices[] = {
      {FONT_ARIAL, 0, "Helvetica", "/F8 9"},      {FONT_ARIAL, 1, "Helvetica-Oblique", "/F7 9"},
      {FONT_ARIAL, 2, "Helvetica-Bold", "/F5 9"}, {FONT_ARIAL, 21, "Helvetica-BoldOblique", "/F6 9"},
      {FONT_COURIER, 3, "Courier", "/F4 9"},      {FONT_COURIER, 312, "Courier-BoldOblique", "/F2 9"},
      {FONT_TIMES, 0, "Times-Roman", "/F13 9"},   {FONT_TIMES, 1, "TimesItalic", "/F14 9"},
      {FONT_TIMES, 23, "Times-Bold", "/F10 9"},   {FONT_TIMES, 12, "Times-BoldItalic", "/F11 9"},
      {FONT_SYMBOL, 0, "Symbol", "/F9 9"},        {FONT_ZAPFDINGBATS, 4567, "ZapfDingbats", "/F16 9"},
      {FONT_SYMBOL, 2, "Symbol-Bold", "/F0 9"},   {7, 12, "TimesRoman", "/F15 9"}};
  EXPECT_TRUE(holds(contentOf([](auto& doc) { doc.PDFTextOut("x", 1, 1); }), "\r\n/F1 10 Tf\r\n"));
  for (const auto& [font, style, baseFont, operands] : choices) {
    const auto content = contentOf([&, f = font, s = style, name = baseFont](VeltranoPDF& doc) {
      doc.PDFSetFont(f, 9, s);
      EXPECT_EQ(doc.PDFGetStringWidth("a1!", {}, 10), doc.PDFGetStringWidth("a1!", name, 10));
      doc.PDFTextOut("x", 1, 1);
    });
    EXPECT_TRUE(holds(content, "\r\n" + std::string(operands) + " Tf\r\n")) << baseFont;
  }
}

TEST_F(Fonts, Measuring) {
  pdf.PDFSetFont(FONT_ARIAL, 12);
  const std::tuple<std::string_view, const char*, std::int16_t, double> rows[] = {
      {"Hello", "", 12, 27.336},                                // (722 + 556 + 222 + 222 + 556) * 12 / 1000
      {"Hello", "Courier", 10, 30},       {"Hello", "", 0, 0},  // not the size of the current font
      {{"\0\x1F", 2}, "", 12, 0},         {"Hello", "../Helvetica/x", 12, 0},
      {"Hello", "Helvetica", -10, -22.78}};
  for (const auto& [text, font, size, width] : rows)
    EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth(text, font, size), width) << text << font;
}

TEST_F(Fonts, LoadingAFolder) {
  for (const char* name : {"Zebra.afm", "Alpha.AFM", "notes.txt", "Middle.afm.bak", "Zebra #2 (1)[{%}].afm"})
    replaceFile(folder / name, afmWithWidth(100));
  pdf.PDFSetFont(FONT_COURIER, 9);
  pdf.PDFLoadAfm(folder / "missing");
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 6) << "the previous folder stays";
  pdf.PDFLoadAfm(folder.path());
  EXPECT_DOUBLE_EQ(pdf.PDFGetStringWidth("A", "Zebra", 10), 1);
  EXPECT_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 0);
  pdf.PDFBeginDoc();
  pdf.PDFTextOut("x", 1, 1);
  const std::string file = finish();
  EXPECT_TRUE(holds(file, "\r\n/F0 9 Tf\r\n")) << "Courier is written over";
  // The table is only written over; the last four characters of a name go, whatever they are; and a blank or
  // a bracket would end the name in the file.
  const std::pair<int, const char*> names[] = {
      {1, "Alpha"}, {2, "Middle.afm"},     {3, "Zebra#20#232#20#281#29#5B#7B#25#7D#5D"},
      {4, "Zebra"}, {5, "Helvetica-Bold"}, {16, "ZapfDingbats"}};
  for (const auto& [number, name] : names)
    EXPECT_TRUE(holds(file, "/Name /F" + std::to_string(number) + "\r\n/BaseFont /" + name + "\r\n"));
  // The whole path counts: in such a folder each file is a font, but "a" is too short to give a name.
  std::filesystem::create_directory(folder / "fonts.afm");
  for (const char* name : {"fonts.afm/a", "fonts.afm/readme.txt"}) replaceFile(folder / name, "x");
  pdf.PDFLoadAfm(folder / "fonts.afm");
  begin();
  const std::string second = finish();
  EXPECT_TRUE(holds(second, "/BaseFont /Alpha\r\n") && holds(second, "/Name /F2\r\n/BaseFont /readme\r\n"));
}

TEST_F(Fonts, MetricsAreLookedAtWhenAFontIsSetOrLoadedAPageBeginsOrAWidthIsAskedFor) {
  const auto write = [&](int width) { replaceFile(folder / "Helvetica.afm", afmWithWidth(width)); };
  const auto widthDrawn = [&] {
    pdf.PDFTextOut("A", 5, 5);
    return pdf.PDFGetX() - 5;
  };
  write(800);
  pdf.PDFLoadAfm(folder.path());
  pdf.PDFSetFont(FONT_ARIAL, 10);
  pdf.PDFBeginDoc();
  const std::function<void()> moments[] = {[&] { pdf.PDFSetFont(FONT_ARIAL, 10); },
                                           [&] { pdf.PDFLoadAfm(folder.path()); }, [&] { pdf.PDFNewPage(); },
                                           [&] { pdf.PDFBeginDoc(); },
                                           [&] { EXPECT_EQ(pdf.PDFGetStringWidth("A", {}, 1), 2); }};
  for (const auto& moment : moments) {
    write(800);
    EXPECT_EQ(pdf.PDFGetStringWidth("A", {}, 10), 8);
    write(2000);
    EXPECT_EQ(widthDrawn(), 8) << "what is drawn uses the metrics in hand";
    EXPECT_EQ(pdf.PDFGetStringWidth("A", "Courier", 10), 0);
    EXPECT_EQ(widthDrawn(), 8) << "asking for another font does not check this one";
    moment();
    EXPECT_EQ(widthDrawn(), 20);
  }
}

}  // namespace
}  // namespace veltrano::tests
