#include "pdf/fonts/afm_file.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "base/os/files.h"
#include "base/os/host.h"
#include "pdf/fonts/metrics_folder.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using tests::TemporaryFolder;

std::int32_t widthOf(std::string_view afm, std::string_view text) {
  return parseAfm(afm, true)->sum(text);
}

struct Reading {
  const char* what;
  std::string_view afm;
  std::int32_t a;  ///< width of "A", code 65
  std::int32_t b;
  std::int32_t c;
};

constexpr Reading readings[] = {
    {"plain", "StartCharMetrics 3\nC 65 ; WX 1 ;\nC 66 ; WX 2 ;\nC 67 ; WX 4 ;\nEndCharMetrics\n", 1, 2, 4},
    {"CR LF", "StartCharMetrics\r\nC 65 ; WX 12\r\nC 66 ; WX 2\r\nEndCharMetrics\r\n", 12, 2, 0},
    {"CR alone", "StartCharMetrics\rC 65 ; WX 1\rC 66 ; WX 2\rEndCharMetrics\r", 1, 2, 0},
    {"an unencoded character ends it",
     "StartCharMetrics\nC 65 ; WX 1\nC -1 ; WX 9\nC 66 ; WX 2\nEndCharMetrics", 1, 0, 0},
    {"the keywords do not count", "StartCharMetrics\nx 65 ; y 1 ;\nEndCharMetrics", 1, 0, 0},
    {"blanks around fields and words", "StartCharMetrics\n  C   65  ;   WX   7  ; N\nEndCharMetrics", 7, 0,
     0},
    {"fractions are cut off", "StartCharMetrics\nC 65 ; WX 1.9\nC 66 ; WX -1.9\nEndCharMetrics", 1, -1, 0},
    {"no end: the last code stays 0", "StartCharMetrics\nC 65 ; WX 1\nC 66 ; WX 2\n", 0, 0, 0},
    {"no start", "C 65 ; WX 1\nEndCharMetrics\n", 0, 0, 0},
    {"the end before the start", "EndCharMetrics\nStartCharMetrics\nC 65 ; WX 1\nEndCharMetrics", 0, 0, 0},
    {"a minus one before the start", "Comment -1 ;\nStartCharMetrics\nC 65 ; WX 1\nEndCharMetrics", 0, 0, 0},
    {"above the last code", "StartCharMetrics\nC 67 ; WX 4\nC 65 ; WX 1\nEndCharMetrics", 0, 0, 0},
    {"below the first code", "StartCharMetrics\nC 66 ; WX 2\nC 65 ; WX 1\nC 67 ; WX 4\nEndCharMetrics", 0, 2,
     4},
    {"malformed lines leave the others alone",
     "StartCharMetrics\nC 65 ; WX 1\n\n;;;\nC x ; WX 9\nC 66 ; WX x\nC 66\nC ; WX 5\nC 67 ; WX "
     "4\nEndCharMetrics",
     1, 0, 4},
    {"codes and widths out of range",
     "StartCharMetrics\nC 65 ; WX 99999999999\nC 66 ; WX 2\nC 99999999999 ; WX 3\nC 300 ; WX "
     "3\nEndCharMetrics",
     0, 2, 0},
    {"a short line long before the next",
     "StartCharMetrics\nC 65 ; WX 1\n                                                                      "
     "                                                                                                      "
     "                                                                                                      "
     "                                                                  C 66 ; WX 2\nEndCharMetrics",
     1, 2, 0},
    {"the line after a second start is taken as it is",
     "StartCharMetrics\nC 65 ; WX 1\nStartCharMetrics\nC 66 ; WX 2\nC 67 ; WX 4\nEndCharMetrics", 1, 2, 4},
};

TEST(Afm, ReadsByThePositionsOfTheFields) {
  for (const Reading& reading : readings) {
    EXPECT_EQ(widthOf(reading.afm, "A"), reading.a) << reading.what;
    EXPECT_EQ(widthOf(reading.afm, "B"), reading.b) << reading.what;
    EXPECT_EQ(widthOf(reading.afm, "C"), reading.c) << reading.what;
  }
}

TEST(Afm, AFileCutOffAnywhereMeasuresNothingOrTheSame) {
  const auto text = readWholeFile(libraryFolder() / "Helvetica.afm").value();
  const auto whole = parseAfm(text, true);
  const std::size_t end = text.find("EndCharMetrics");
  for (std::size_t length = 0; length <= text.size(); length += 7) {
    const auto cut = parseAfm(text.substr(0, length), true);
    EXPECT_EQ(cut->sum("A"), length < end + 14 ? 0 : 667) << length;
    const auto start = parseAfm(text.substr(0, length), false);
    EXPECT_TRUE(!start || start->widths == whole->widths) << length;
  }
}

TEST(Afm, SumStaysWithin32Bits) {
  const auto metrics = parseAfm("StartCharMetrics\nC 65 ; WX 2000000000\nC 66 ; WX 7\nEndCharMetrics", true);
  EXPECT_EQ(metrics->sum("AAB"), 2000000007);
  EXPECT_EQ(
      parseAfm("StartCharMetrics\nC 65 ; WX 1000\nEndCharMetrics", true)->sum(std::string(3'000'000, 'A')),
      2147483000);
}

TEST(Afm, HeaderGivesUnderlineAndDescender) {
  const auto metrics = parseAfm(
      "xDescender -9\r\nDescender -207\r\nUnderlinePosition x\r\nUnderlineThickness 55.5\r\n"
      "StartCharMetrics\r\nUnderlinePosition -7\r\nEndCharMetrics\r\n",
      true);
  EXPECT_EQ(metrics->descender, -207);
  EXPECT_EQ(metrics->underlinePosition, -100) << "the usual one";
  EXPECT_EQ(metrics->underlineThickness, 55.5);
}

TEST(ShippedMetrics, MeasureByTheCodesOfWindows1252) {
  // Widths as the makers of the fonts publish them.
  constexpr std::tuple<const char*, unsigned char, std::int32_t> table[] = {
      {"Helvetica", 0xE9, 556},   {"Helvetica", 0x27, 191},  {"Helvetica", 0xAD, 333},
      {"Helvetica", 0x9C, 944},   {"TimesItalic", 'a', 500}, {"TimesRoman", 'a', 444},
      {"Courier", 0xFF, 600},     {"Helvetica", 0x81, 350},  {"Symbol", 'a', 631},
      {"ZapfDingbats", '!', 974}, {"Symbol", 0x80, 0},
  };
  MetricsFolder metrics;
  metrics.setPath(libraryFolder());
  for (const auto& [font, code, width] : table) {
    EXPECT_EQ(metrics.read(font)->widths[code], width) << font << ' ' << int{code};
  }
  for (const char* font : {"Helvetica", "Courier-Oblique", "Times-Bold", "TimesItalic"}) {
    for (std::size_t code = 32; code < 256; ++code) {
      EXPECT_GT(metrics.read(font)->widths[code], 0) << font << ' ' << code;
    }
  }
}

std::string afmWithWidth(int width) {
  return "StartCharMetrics\nC 65 ; WX " + std::to_string(width) + "\nEndCharMetrics\n";
}

TEST(MetricsFolderTest, SeesEachEditAtOnce) {
  const TemporaryFolder folder;
  MetricsFolder metrics;
  metrics.setPath(folder.path());
  const auto file = folder / "Font.afm";
  const auto width = [&] { return metrics.read("Font")->widths['A']; };
  EXPECT_EQ(width(), 0);
  for (int edit = 100; edit < 140; ++edit) {  // of one size and within one step of the file system's times
    replaceFile(file, afmWithWidth(edit));
    ASSERT_EQ(width(), edit);
    auto inPlace = OutputFile::create(file);
    inPlace->write(afmWithWidth(edit + 500));
    inPlace.reset();
    ASSERT_EQ(width(), edit + 500);
  }
  const auto held = metrics.look("Font");
  EXPECT_EQ(metrics.read("Font"), held) << "read again, but not parsed again";
  replaceFile(file, afmWithWidth(7));
  EXPECT_EQ(metrics.look("Font")->widths['A'], 7) << "of another size";
  EXPECT_EQ(held->widths['A'], 639) << "what is held does not change";
  std::filesystem::remove(file);
  EXPECT_EQ(width(), 0);
}

TEST(MetricsFolderTest, OtherFoldersAndMadeUpNames) {
  const TemporaryFolder one;
  const TemporaryFolder two;
  replaceFile(one / "Font.afm", afmWithWidth(1));
  replaceFile(two / "Font.afm", std::string(40000, 'x') + "\n" + afmWithWidth(2));  // a long header
  MetricsFolder metrics;
  metrics.setPath(one.path());
  EXPECT_EQ(metrics.read("Font")->widths['A'], 1);
  metrics.setPath(two.path());
  EXPECT_EQ(metrics.read("Font")->widths['A'], 2);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(metrics.read("No font " + std::to_string(i))->widths['A'], 0);
  }
  EXPECT_EQ(metrics.read(std::string("Font\0x", 6))->widths['A'], 0);
  EXPECT_EQ(metrics.read("Font")->widths['A'], 2);
}

}  // namespace
}  // namespace veltrano
