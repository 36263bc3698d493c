#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "pdf/line_breaking.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::contentOf;
using tests::lines;

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
      {"aaaaaaa bb", 50, {"aaaaa", "aa bb"}},
      {"a aaaaaaa", 50, {"a", "aaaaa", "aa"}},
      {"aaaaa   ", 50, {"aaaaa   "}},
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

TEST(LineBreaking, ALongLineIsSearchedForABreakOnlySoFar) {
  std::array<std::int32_t, 256> widths{};
  widths.fill(1);
  const std::string text = std::string(70000, 'a') + " " + std::string(70000, 'b');
  EXPECT_EQ(breakText(text, {widths, 1, 69000}).size(), 1U);
  EXPECT_EQ(breakText(text, {widths, 1, 60000})[0].text.size(), 60000U);
}

TEST(LineBreaking, JustifyingSpace) {
  EXPECT_DOUBLE_EQ(justifyingSpace("a b c", 30, 50), 10);
  EXPECT_EQ(justifyingSpace("abc", 30, 50), 0);
  EXPECT_EQ(justifyingSpace("a b", 60, 50), 0);
  EXPECT_EQ(justifyingSpace("a b", std::nan(""), 50), 0);
}

/// The content of a cell at (100, 200), Helvetica, in points.
std::string cell(std::string_view text, std::int32_t alignment, std::int32_t border, double width,
                 double height, bool fill = false, std::int16_t size = 10) {
  return contentOf([&](VeltranoPDF& pdf) {
    pdf.PDFSetFont(FONT_ARIAL, size);
    pdf.PDFSetAlignement(alignment);
    pdf.PDFSetBorder(border);
    pdf.PDFSetFill(fill);
    pdf.PDFCell(text, 100, 200, width, height);
  });
}

TEST(Cells, Operators) {
  // 80 - 3 - 22.78 is 54.22; the baseline is 3 below the middle of the cell.
  EXPECT_EQ(cell("Hello", ALIGN_RIGHT, BORDER_ALL, 80, 20),
            lines({"%DEBUT_CELL/%", "0 g", "100.00 621.89 80.00 20.00 re S\r", "q 0 g ", "BT",
                   "154.00 628.89 Td", "/F8 10 Tf", "(Hello) Tj", "ET", "Q", "%FIN_CELL/%"}));
  EXPECT_EQ(cell("Hello", ALIGN_FJUSTIFY, BORDER_NONE, 80, 20),
            lines({"%DEBUT_CELL/%", "0 g", "0.00 Tw", "q 0 g ", "BT", "106.00 628.89 Td", "/F8 10 Tf",
                   "(Hello) Tj", "ET", "Q", "0 Tw", "%FIN_CELL/%"}));
}

TEST(Cells, Offsets) {
  EXPECT_NE(cell("Hello", ALIGN_LEFT, 0, 80, 20).find("\r\n106.00 628.89 Td"), std::string::npos);
  EXPECT_NE(cell("Hello", ALIGN_CENTER, 0, 80, 20).find("\r\n128.00 628.89 Td"),
            std::string::npos);  // (80 - 23) / 2
  // "Été" is 667 + 278 + 556 wide, 15.01 at 10.
  EXPECT_NE(cell("\xC9t\xE9", ALIGN_RIGHT, 0, 80, 20).find("\r\n162.00 628.89 Td"), std::string::npos);
  // 7.495 is 7.50 by its decimal digits, though its double lies below: less 1.998 that is nearer to 6 than 5.
  EXPECT_NE(cell("i", ALIGN_RIGHT, 0, 10.495, 20, false, 9).find("\r\n106.00 629.19 Td"), std::string::npos);
  // Beyond 16 bits there is no offset.
  EXPECT_NE(cell("Hello", ALIGN_RIGHT, 0, 40000, 20).find("\r\n100.00 628.89 Td"), std::string::npos);
}

TEST(Cells, EdgesMeetAtTheirCorners) {
  EXPECT_NE(
      cell("", ALIGN_LEFT, 2345, 80, 20)
          .find(lines({"0 g", "0.57 w 100.00 642.17 m 100.00 621.61 l S",
                       "0.57 w 99.72 641.89 m 180.28 641.89 l S", "0.57 w 180.00 642.17 m 180.00 621.61 l S",
                       "0.57 w 99.72 621.89 m 180.28 621.89 l S", "q 0 g "})),
      std::string::npos);
  EXPECT_NE(
      cell("", ALIGN_LEFT, BORDER_TOP, 80, 20).find("\r\n0.57 w 100.00 641.89 m 180.00 641.89 l S\r\nq 0 g"),
      std::string::npos);
}

TEST(Cells, LinesStackWithinTheCell) {
  // Two lines in 20 points: as close as their size, but not closer. More begin at the top and go on below.
  for (const auto& [text, last] :
       {std::pair{"a\r\nb", "623.89 Td"}, std::pair{"a\r\nb\r\nc\r\nd", "603.89 Td"}}) {
    const std::string content = cell(text, ALIGN_LEFT, 0, 80, 20);
    EXPECT_NE(content.find("633.89 Td"), std::string::npos);
    EXPECT_NE(content.find(last), std::string::npos);
  }
}

TEST(Cells, JustifiedLinesReachBothMargins) {
  // "aaa aaa" is 36.14 wide; from 6 to 3 before the right edge there are 41, and one blank to widen by 4.86.
  const std::string content = cell("aaa aaa aaa", ALIGN_FJUSTIFY, 0, 50, 40);
  const auto first = content.find("4.86 Tw\r\nq 0 g \r\nBT\r\n106.00 ");
  EXPECT_NE(first, std::string::npos) << content;
  EXPECT_NE(content.find("0.00 Tw\r\nq 0 g \r\nBT\r\n106.00 ", first), std::string::npos) << content;
}

TEST(Cells, UseUpBorderAndUnderlineAndLeaveAlignment) {
  const auto content = contentOf([](VeltranoPDF& pdf) {
    pdf.PDFSetFont(FONT_ARIAL, 10, 3);
    pdf.PDFSetBorder(BORDER_ALL);
    pdf.PDFCell("Hello", 100, 200, 80, 20);
    EXPECT_EQ(pdf.PDFGetX(), 100);
    EXPECT_EQ(pdf.PDFGetY(), 220);
    pdf.PDFCell("Hello", 100, 300, 80, 20);
  });
  EXPECT_NE(content.find("ET\r\n106.00 627.64 22.78 0.50 re f\r\nQ\r\n"), std::string::npos) << content;
  EXPECT_EQ(content.find("re f"), content.rfind("re f"));
  EXPECT_EQ(content.find("re S"), content.rfind("re S"));
}

TEST(Cells, AnyNumbersEnd) {
  const std::string text(100000, 'x');
  for (const double number : {0.0, -5.0, 1e-9, 1e300, infinity, -infinity, std::nan("")}) {
    for (const std::int32_t alignment : {ALIGN_LEFT, ALIGN_CENTER, ALIGN_RIGHT, ALIGN_FJUSTIFY}) {
      const auto narrow = cell(text + " " + text, alignment, 2345, number, number, true);
      EXPECT_TRUE(narrow.ends_with("%FIN_CELL/%\r\n"));
      EXPECT_LT(narrow.size(), 300000U) << number;
    }
  }
}

}  // namespace
}  // namespace veltrano
