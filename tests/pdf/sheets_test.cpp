#include "pdf/sheets/sheets.h"

#include <set>

#include "pdf_testing.h"

namespace veltrano::sheets {
namespace {

constexpr auto noTick = [](double) {};

std::string made(const std::string& title, const std::vector<std::vector<std::string>>& rows) {
  const tests::TemporaryFolder folder;
  Book book(595, 842);
  book.pdf.PDFFileName(folder / "a.pdf");
  EXPECT_TRUE(makeTableSheets(book, title, rows, true, noTick));
  return readWholeFile(folder / "a.pdf").value_or("");
}

TEST(Sheets, HoldEveryCell) {
  // Columns, and the length of a cell: one sheet, and several beside each other.
  for (const auto& [columns, length] :
       {std::pair<std::size_t, std::size_t>{1, 1}, {12, 8}, {300, 8}, {40, 60}}) {
    std::vector<std::vector<std::string>> rows(50);
    for (std::size_t row = 0; row < rows.size(); ++row)
      for (std::size_t column = 0; column < (row == 7 ? columns / 2 : columns); ++column)
        rows[row].push_back(std::to_string(row) + "_" + std::to_string(column) + "_" +
                            std::string(length, 'x'));
    const std::string file = made("title", rows);
    std::set<std::string> drawn;
    for (std::size_t at = file.find('('); at != std::string::npos; at = file.find('(', at + 1))
      drawn.insert(file.substr(at + 1, file.find_first_of("x)", at) - at - 1));
    for (const auto& row : rows)
      for (const std::string& cell : row) ASSERT_TRUE(drawn.contains(cell.substr(0, cell.find('x')))) << cell;
  }
}

TEST(Sheets, KeepLongHeadsAndShortenLongTitles) {
  const std::string words = "word word word word ";
  std::string head;
  for (int i = 0; i < 300; ++i) head += words;
  const std::string file = made(std::string(5000, 'T') + "\n", {{head + "END", "b"}, {"1", "2"}});
  EXPECT_EQ(tests::countOf(file, "END) Tj"), 1U) << "on the first page in full";
  EXPECT_LT(tests::countOf(file, "(TTTT"), 20U);
  EXPECT_EQ(tests::countOf(file, "TTT...) Tj"), 1 + tests::countOf(file, "/Type /Page\r\n"));
}

}  // namespace
}  // namespace veltrano::sheets
