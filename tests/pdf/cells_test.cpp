#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "pdf/text/line_breaking.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::holds;

constexpr double infinity = std::numeric_limits<double>::infinity();

struct Breaking {
  std::string_view text;
  double available;  ///< every character is 10 wide
  std::vector<std::string_view> expected;
};

TEST(LineBreaking, Table) {
  const std::vector<Breaking> table = {
      {"aaa bbb", 50, {"aaa", "bbb"}},
      {"aa bb cc", 50, {"aa bb", "cc"}},
      {"aaaaa bb", 50, {"aaaaa", "bb"}},
      {"aaa  bbb", 50, {"aaa ", "bbb"}},
      {"  aaaa", 50, {" ", "aaaa"}},
      {"aaaaaaa bb", 50, {"aaaaaaa", "bb"}},  // a word is never cut
      {"aaaaaaa   b", 50, {"aaaaaaa  ", "b"}},
      {"a aaaaaaa", 50, {"a", "aaaaaaa"}},
      {"aaaaa   ", 50, {"aaaaa   "}},
      {"aaaaaaa ", 50, {"aaaaaaa "}},
      {"aa bb", 50 - 1e-9, {"aa bb"}},  // the width of the text, brought into millimetres and back
      {"", 50, {""}},
      {"a\r\n\r\nb c\r\n", 50, {"a", "", "b c", ""}},
      {"a\nb\rc", 50, {"a\nb\rc"}},
      {"ab c", 5, {"ab", "c"}},
      {"aaa bbb", 0, {"aaa bbb"}},
      {"aaa bbb", -7, {"aaa bbb"}},
      {"aaa bbb", std::nan(""), {"aaa bbb"}},
      {"aaa bbb", infinity, {"aaa bbb"}},
  };
  std::array<std::int32_t, 256> widths{};
  widths.fill(1000);
  for (const Breaking& row : table) {
    std::vector<std::string_view> found;
    for (const TextLine& line : breakText(row.text, {widths, 0.01, row.available})) {
      found.push_back(line.text);
    }
    EXPECT_EQ(found, row.expected) << row.text << ' ' << row.available;
  }
  const auto hanging = breakText("aaa  bbb", {widths, 0.01, 50});
  EXPECT_EQ(hanging[0].measured, 3U);
  EXPECT_FALSE(hanging[0].endsParagraph);
  EXPECT_TRUE(hanging[1].endsParagraph);
}

TEST(LineBreaking, EndsWhateverTheLength) {
  std::array<std::int32_t, 256> widths{};
  widths.fill(1);
  for (const std::size_t length : {65533, 65534, 70000}) {  // a break is searched only so far
    const std::string text = std::string(length, 'a') + " " + std::string(70000, 'b');
    EXPECT_EQ(breakText(text, {widths, 1, 60000}).size(), length == 65533 ? 2U : 1U);
  }
}

TEST(LineBreaking, JustifyingSpace) {
  EXPECT_DOUBLE_EQ(justifyingSpace("a b c", 30, 50), 10);
  EXPECT_EQ(justifyingSpace("abc", 30, 50), 0);
  EXPECT_EQ(justifyingSpace("a b", 60, 50), 0);
  EXPECT_EQ(justifyingSpace("a b", std::nan(""), 50), 0);
}

/// The content of a cell at (100, 200), Helvetica, in points.
std::string cell(std::string_view text, std::int32_t alignment, double width, double height,
                 std::int16_t size = 10) {
  return contentOf([&](VeltranoPDF& pdf) {
    pdf.PDFSetFont(FONT_ARIAL, size);
    pdf.PDFSetAlignement(alignment);
    pdf.PDFCell(text, 100, 200, width, height);
  });
}

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
      {"Quantity", ALIGN_LEFT, 46, 10, "106.00 628.89 Td\r\n/F8 10 Tf\r\n(Quantity) Tj"},
      {"1234567890", ALIGN_CENTER, 40, 10, "92.00 628.89 Td\r\n/F8 10 Tf\r\n(1234567890) Tj"},  // runs over
      {"a\r\nb", ALIGN_LEFT, 80, 10, "106.00 623.89 Td"},            // as close as the size, but not closer
      {"a\r\nb\r\nc\r\nd", ALIGN_LEFT, 80, 10, "106.00 603.89 Td"},  // from the top on, and further down
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(holds(cell(row.text, row.alignment, row.width, 20, row.size), row.place)) << row.text;
  }
}

TEST(Cells, TheMarginsAreKeptFreeWhateverTheAlignmentAndUnit) {
  // "aa bb" is 30 points wide in Courier 10; the cell margin counts as points in every unit.
  for (const std::int32_t alignment : {ALIGN_LEFT, ALIGN_CENTER, ALIGN_RIGHT, ALIGN_FJUSTIFY}) {
    for (const int margin : {0, 3, 5}) {
      for (const double missing : {0.0, 0.01}) {
        const auto content = contentOf([&](VeltranoPDF& pdf) {
          pdf.PDFSetUnit(UNIT_CM);
          pdf.PDFSetFont(FONT_COURIER, 10);
          pdf.PDFSetCellMargin(margin);
          pdf.PDFSetAlignement(alignment);
          pdf.PDFCell("aa bb", 1, 1, (30 + 2 * margin - missing) * 2.54 / 72, 1);
        });
        EXPECT_TRUE(holds(content, missing == 0 ? "(aa bb) Tj" : "(aa) Tj")) << alignment << ' ' << margin;
      }
    }
  }
  const auto right = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetUnit(UNIT_CM);
    pdf.PDFSetFont(FONT_COURIER, 10);
    pdf.PDFSetAlignement(ALIGN_RIGHT);
    pdf.PDFCell("aa bb", 1, 1, 2, 1);
  });
  EXPECT_TRUE(holds(right, "52.35 796.37 Td")) << "28.35 + 24, which is 56.69 - 3 - 30 in whole points";
}

TEST(Cells, LaterFillsBeginBelowTheDescendersOfTheLineBefore) {
  const auto filled = [](double height, std::int16_t size) {
    return contentOf([=](VeltranoPDF& pdf) {
      pdf.PDFSetFont(FONT_ARIAL, size);
      pdf.PDFSetFill(true);
      pdf.PDFCell("a\r\nb\r\nc", 100, 200, 100, height);
    });
  };
  const auto close = filled(30, 10);  // 10 apart; baselines at 633.89, 623.89 and 613.89
  EXPECT_TRUE(holds(close, "125.00 621.39 50.00 9.50 re f\r\r\n"));
  EXPECT_TRUE(holds(close, "125.00 616.39 50.00 4.50 re f\r\r\n"));
  EXPECT_TRUE(holds(filled(60, 10), "125.00 599.89 50.00 18.00 re f\r\r\n"));
  EXPECT_EQ(tests::countOf(filled(20, 10), " re f"), 2U) << "nothing below the cell";
  EXPECT_EQ(tests::countOf(filled(30, -10), "125.00"), 2U) << "letters on their heads hang lower";
}

TEST(Cells, AnyNumbersEnd) {
  const std::string text(100000, 'x');
  for (const double number : {0.0, -5.0, 1e-9, 1e300, infinity, -infinity, std::nan("")}) {
    for (const std::int32_t alignment : {ALIGN_LEFT, ALIGN_CENTER, ALIGN_RIGHT, ALIGN_FJUSTIFY}) {
      const auto narrow = cell(text + " " + text, alignment, number, number);
      EXPECT_TRUE(narrow.ends_with("%FIN_CELL/%\r\n"));
      EXPECT_LT(narrow.size(), 300000U) << number;
    }
  }
}

}  // namespace
}  // namespace veltrano
