#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/numbers/numbers.h"
#include "pdf/text/cell.h"
#include "pdf/text/line_breaking.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using Links = PdfTest;

TEST(LineBreaking, BreaksAtBlanksAndNeverWithinAWord) {
  FontMetrics metrics;
  metrics.widths.fill(1000);
  const auto broken = [&](std::string_view text, double available) {
    std::string lines;
    for (const TextLine& line : breakText(text, {metrics, 10, available}))
      lines.append(line.text).append("|");
    return lines;
  };
  for (const auto& [text, lines] : {std::pair("aaa bbb", "aaa|bbb|"),
                                    {"aa bb cc", "aa bb|cc|"},
                                    {"aaaaa bb", "aaaaa|bb|"},
                                    {"aaa  bbb", "aaa |bbb|"},
                                    {"  aaaa", " |aaaa|"},
                                    {"aaaaaaa bb", "aaaaaaa|bb|"},
                                    {"aaaaaaa   b", "aaaaaaa  |b|"},
                                    {"a aaaaaaa", "a|aaaaaaa|"},
                                    {"aaaaa   ", "aaaaa   |"},
                                    {"", "|"},
                                    {"a\r\n\r\nb c\r\n", "a||b c||"},
                                    {"a\nb\rc", "a\nb\rc|"}}) {
    EXPECT_EQ(broken(text, 50), lines);  // every character is 10 wide
    EXPECT_TRUE(std::string(text) + "|" == lines || !asOneLine(text, {metrics, 10, 50})) << text;
  }
  EXPECT_EQ(broken("aa bb", 50 - 1e-9), "aa bb|")
      << "the width of the text, brought into millimetres and back";
  EXPECT_EQ(broken("ab c", 5), "ab|c|");
  for (const double none : {0.0, std::nan(""), double{INFINITY}})
    EXPECT_EQ(broken("aaa bbb", none), "aaa bbb|");
  const auto hanging = breakText("aaa  bbb", {metrics, 10, 50});
  EXPECT_TRUE(hanging[0].counted == "aaa" && hanging[0].width == 30);
  EXPECT_TRUE(!hanging[0].endsParagraph && hanging[1].endsParagraph);
  EXPECT_EQ(breakText("aaaaaaa  ", {metrics, 10, 50})[0].counted, "aaaaaaa") << "blanks that do not fit";
  for (const std::size_t length : {65533, 65534, 70000}) {  // a break is searched only so far
    const std::string text = std::string(length, 'a') + " " + std::string(70000, 'b');
    EXPECT_EQ(breakText(text, {metrics, 1, 60000}).size(), length == 65533 ? 2U : 1U);
  }
}

TEST(Cells, HundredthsAreThoseOfTheText) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200000; ++i) {
    // Ties and their neighbours, and any numbers.
    const double tie = static_cast<double>(random() % 2000000) / 1000 - 1000 + 0.005;
    const double number =
        i % 3 == 0   ? tie
        : i % 3 == 1 ? std::nextafter(tie, random() % 2 == 0 ? -1e9 : 1e9)
                     : std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 90) - 70);
    ASSERT_EQ(hundredths(number), parseNumber(formatPdfNumber(number, 2))) << number;
  }
  EXPECT_TRUE(std::isnan(hundredths(std::nan(""))));
}

// Cells at (100, 200), 20 points high.
TEST(Cells, Offsets) {
  const struct {
    std::string_view text;
    int alignment;
    double width;
    std::int16_t size;
    const char* place;
  } rows[] = {
      {"Hello", ALIGN_CENTER, 80, 10, "128.00 628.89 Td"},     // (80 - 23) / 2
      {"\xC9t\xE9", ALIGN_RIGHT, 80, 10, "162.00 628.89 Td"},  // 667 + 278 + 556 is 15.01 at 10
      {"i", ALIGN_RIGHT, 10.495, 9, "106.00 629.19 Td"},       // 7.495 counts as 7.50, less 1.998
      {"Hello", ALIGN_RIGHT, 30, 10, "104.00 628.89 Td"},      // one line: a margin at each side, not three
      {"Hello", ALIGN_RIGHT, 40000, 10, "100.00 628.89 Td"},   // no offset beyond 16 bits
      {"1234567890", ALIGN_CENTER, 40, 10, "92.00 628.89 Td\r\n/F8 10 Tf\r\n(1234567890) Tj"},  // runs over
      {"a\r\nb", ALIGN_LEFT, 80, 10, "106.00 623.89 Td"},             // as close as the size, but not closer
      {"a\r\nb\r\nc\r\nd", ALIGN_LEFT, 80, 10, "106.00 603.89 Td"}};  // from the top on, and further down
  for (const auto& row : rows) {
    const std::string content = contentOf([&row](VeltranoPDF& pdf) {
      pdf.PDFSetFont(FONT_ARIAL, row.size);
      pdf.PDFSetAlignement(row.alignment);
      pdf.PDFCell(row.text, 100, 200, row.width, 20);
    });
    EXPECT_TRUE(holds(content, row.place)) << row.text;
  }
}

TEST(Cells, TheMarginsAreKeptFreeWhateverTheAlignmentAndUnit) {
  // "aa bb" is 30 points wide in Courier 10; the cell margin counts as points in every unit.
  const auto inCentimetres = [](std::int32_t alignment, int margin, double width) {
    return contentOf([=](VeltranoPDF& pdf) {
      pdf.PDFSetUnit(UNIT_CM);
      pdf.PDFSetFont(FONT_COURIER, 10);
      pdf.PDFSetCellMargin(margin);
      pdf.PDFSetAlignement(alignment);
      pdf.PDFCell("aa bb", 1, 1, width, 1);
    });
  };
  for (const std::int32_t alignment : {ALIGN_LEFT, ALIGN_CENTER, ALIGN_RIGHT, ALIGN_FJUSTIFY}) {
    for (const int margin : {0, 3, 5}) {
      const double enough = 30 + 2 * margin;
      EXPECT_TRUE(holds(inCentimetres(alignment, margin, enough * 2.54 / 72), "(aa bb) Tj")) << margin;
      EXPECT_TRUE(holds(inCentimetres(alignment, margin, (enough - 0.01) * 2.54 / 72), "(aa) Tj")) << margin;
    }
  }
  // 28.35 + 24, which is 56.69 - 3 - 30 in whole points.
  EXPECT_TRUE(holds(inCentimetres(ALIGN_RIGHT, 3, 2), "52.35 796.37 Td"));
}

TEST(Text, PositionAfterATextIsInMixedUnits) {
  VeltranoPDF pdf;
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFSetFont(FONT_ARIAL, 12);
  pdf.PDFTextOut("Hello", 10, 20);
  EXPECT_EQ(pdf.PDFGetX(), 37);  // 10 + 27.336 points
  EXPECT_EQ(pdf.PDFGetY(), 32);
  EXPECT_DOUBLE_EQ(pdf.PDFTextHeight(), 12 * 72 / 25.4);
  pdf.PDFSetFont(FONT_ARIAL, 0);
  EXPECT_EQ(pdf.PDFTextHeight(), 0);
  pdf.PDFTextOut("Hello", 1, 1);
  EXPECT_EQ(pdf.PDFGetX(), 24) << "without a size it is written at 10";
}

std::string annotation(const std::string& rectangle, const std::string& target) {
  return "/Rect [" + rectangle + "] /Border [0 0 0] /A <</S /URI /URI (" + target + ")>>>>\r\n";
}

TEST_F(Links, CoverTheTextOrTheWholeShapeInEveryUnit) {
  const std::string file = fileOf([](VeltranoPDF& doc) {
    doc.PDFSetFont(FONT_ARIAL, 12);
    doc.PDFTextOut("Hello", 100, 200);
    doc.PDFLink(0, 0, "Hello");  // leads to itself, at the current position: x 127.336, y 212
    doc.PDFSetUnit(UNIT_CM);
    doc.PDFDrawRectangle(1, 2, 3.3, 4, "r");
    doc.PDFCell("cell", 10, 20, 5.5, 1.5, "c");
  });
  EXPECT_TRUE(holds(file, annotation("127.34 627.41 154.67 639.41", "Hello")));
  EXPECT_TRUE(holds(
      file, annotation("28.35 671.81 121.89 785.20", "r")
                .append("<</Type /Annot /Subtype /Link " + annotation("283.46 232.44 439.37 274.96", "c"))));
  EXPECT_EQ(countOf(file, "(cell) Tj"), 1U);
  EXPECT_EQ(countOf(file, "(c) Tj"), 0U);
}

TEST_F(Links, OnlyATextLeadsSomewhere) {
  pdf.PDFBeginDoc();
  for (const Value& link : {Value(7), Value(Opaque{}), Value(Value::List{}), Value(""), Value()}) {
    pdf.PDFDrawRectangle(1, 2, 3, 4, link);
    pdf.PDFDrawEllipse(1, 2, 3, 4, link);
    pdf.PDFCell("x", 1, 2, 3, 4, link);
    const std::string message = link.isText() || link.isEmpty() ? "" : "Unable to include this link|";
    EXPECT_EQ(takeErrors(), message + message + message);
  }
  EXPECT_FALSE(holds(finish(), "/Annot"));
}

TEST_F(Links, EachOnItsPageAndCountedIn16Bits) {
  const std::string file = fileOf([](VeltranoPDF& doc) {
    doc.PDFLink(1, 1, "first");
    doc.PDFNewPage();
    for (int i = 0; i < 32768; ++i) doc.PDFDrawRectangle(1, 1, 1, 1, i < 32767 ? "second" : "last");
  });
  for (const auto& [part, count] :
       {std::pair("/Annots [", 2U), {"/URI (first)", 1U}, {"/URI (second)", 32765U}, {"/URI (last)", 1U}})
    EXPECT_EQ(countOf(file, part), count) << part;
}

}  // namespace
}  // namespace veltrano::tests
