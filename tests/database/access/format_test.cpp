#include <set>
#include <tuple>

#include "database/access/pages/long_value.h"
#include "database/access/pages/row.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/space/usage_map.h"
#include "database/access/storage/text_codec.h"
#include "encrypted_files.h"
#include "harness.h"

namespace veltrano::access {
namespace {

TEST(StoredText, IsDecoded) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"4100 E900 AC20", "A\u00e9\u20ac"},
      {"3DD8 00DE", "\U0001F600"},
      {"3DD8 4000 00DE", "\xED\xA0\xBD@\xED\xB8\x80"},  // lone surrogates
      {"4100 42", "A"},                                 // an odd byte at the end
      {"FFFE", ""},                                     // compressed, nothing
      {"FFFE 41E980", "A\u00e9\xC2\x80"},               // Latin-1, not 1252
      {"FFFE 41 00 AC20 00 42", "A\u20acB"},            // two modes
      {"FFFE 41 00 AC20", "A\u20ac"},
      {"FFFE 41 00 AC", "A"},
  };
  for (const auto& [stored, utf8] : cases) {
    std::string text;
    storedTextToUtf8(bytesOf(unhex(stored)), text);
    EXPECT_EQ(text, utf8) << stored;
  }
}

TEST(StoredText, IsCompressedWhereThatIsAllowed) {
  const std::string longest(1024, 'a');
  const std::tuple<std::string, bool, std::string> cases[] = {
      {"abc", true, unhex("FFFE616263")},
      {"abc", false, unhex("610062006300")},
      {"ab", true, unhex("61006200")},
      {"ab\xC3\xBF", true, unhex("FFFE6162FF")},
      {"ab\xC4\x80", true, unhex("610062000001")},
      {std::string("a\0b", 3), true, unhex("610000006200")},
      {longest, true, "\xFF\xFE" + longest}};
  for (const auto& [text, compress, expected] : cases) {
    ByteList stored;
    encodeStoredText(text, compress, stored);
    EXPECT_EQ(stored, bytesOf(expected)) << text;
  }
  ByteList stored;
  encodeStoredText(longest + "a", true, stored);
  EXPECT_EQ(stored.size(), 2050U) << "too long to be compressed";
}

// Columns with their cells; "null" for one.
struct CellCase {
  ColumnType type;
  std::uint16_t number;
  std::uint16_t place;  ///< its offset if it is fixed, or its index among the variable ones
  bool fixed;
  std::string cell;
};

Column columnOf(const CellCase& at) {
  Column made;
  made.type = at.type;
  made.number = at.number;
  (at.fixed ? made.fixedOffset : made.variableIndex) = at.place;
  made.length = at.fixed ? static_cast<std::uint16_t>(at.cell.size()) : 255;
  made.fixed = at.fixed;
  return made;
}

void expectCells(const ByteList& row, const std::vector<CellCase>& cases) {
  const RowView view(row, Version::jet3, true);
  ASSERT_TRUE(view.valid());
  for (const CellCase& one : cases) {
    const auto cell = view.cell(columnOf(one));
    EXPECT_EQ(cell ? std::string(cell->begin(), cell->end()) : "null", one.cell) << one.number;
    for (std::size_t size = 0; size < row.size(); ++size) {
      const RowView cut(Bytes(row).first(size), Version::jet3, true);
      (void)(cut.valid() && cut.cell(columnOf(one)));  // must only stay inside
    }
  }
}

// The row "Tables" in the catalog of an Access 97 file.
TEST(Row, OfAccess97IsRead) {
  const std::string date = unhex("2DFB39BE53A6E340");
  expectCells(bytesOf(unhex("11010000 0F0000000F0300") + date + date + unhex("00000080") + "Tables\x02\x03" +
                      std::string(10, 0x27) + unhex("251F0BFF0000")),
              {{ColumnType::longInteger, 0, 0, true, unhex("0100000F")},
               {ColumnType::text, 2, 0, false, "Tables"},
               {ColumnType::integer, 3, 8, true, unhex("0300")},
               {ColumnType::dateTime, 5, 18, true, date},
               {ColumnType::binary, 6, 1, false, "\x02\x03"},
               {ColumnType::memo, 8, 2, false, "null"},
               // A column that was added after the row was written.
               {ColumnType::text, 15, 7, false, "null"}});
  // 300 and 5 bytes: the second offset and the end (306) are beyond 255, so the jump table says "from entry 1 on".
  const std::string longest(300, 'x');
  expectCells(bytesOf("\x02" + longest + "yyyyy" + unhex("322D01010203")),
              {{ColumnType::text, 0, 0, false, longest}, {ColumnType::text, 1, 1, false, "yyyyy"}});
}

using LongValue = DatabaseTest;

TEST_F(LongValue, InTheRowEndsWithItsCell) {
  make({});
  ByteList cell;
  makeInlineCell(bytesOf("abc"), cell);
  ByteList buffer;
  for (const std::uint32_t stated : {2U, 3U, 4U, 0x3FFFFFFFU}) {
    store32(cell.data(), stated | 0x80000000U);
    const auto value = readLongValue(pager(), cell, buffer);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->size(), std::min(stated, 3U)) << stated;
  }
  EXPECT_FALSE(readLongValue(pager(), Bytes(cell).first(11), buffer));
}

using UsageMapTest = DatabaseTest;

// The edges of what the inline window and one bitmap page hold, and random pages between.
TEST_F(UsageMapTest, HoldsAnySetOfPages) {
  make({plainTable()});
  const auto definition = findTable(pager(), "Plain");
  const Transaction transaction(pager());
  UsageMap map(pager(), definition->ownedPages);
  std::set<PageNumber> expected;
  RandomWork work(3);
  std::vector<PageNumber> pages = {20, 531, 21, 19, 530, 0, 32735, 32736, 65471, 65472, 524287};
  for (int i = 0; i < 100; ++i) {
    pages.push_back(static_cast<PageNumber>(work.number(524288)));
  }
  for (std::size_t i = 0; i < pages.size(); ++i) {
    ASSERT_TRUE(map.add(pages[i]));
    expected.insert(pages[i]);
    if (i % 5 == 4) {
      ASSERT_TRUE(map.remove(pages[i - 2]));
      expected.erase(pages[i - 2]);
    }
    std::set<PageNumber> forwards;
    for (auto page = map.next(0); page; page = map.next(*page + 1)) {
      forwards.insert(*page);
    }
    std::set<PageNumber> backwards;
    for (auto page = map.previous(524288); page; page = *page == 0 ? std::nullopt : map.previous(*page - 1)) {
      backwards.insert(*page);
    }
    ASSERT_TRUE(forwards == expected && backwards == expected) << "after page " << pages[i];
    ASSERT_EQ(map.contains(pages[i]), expected.contains(pages[i]));
  }
  EXPECT_FALSE(map.add(17 * 32736)) << "beyond what a file may hold";
}

}  // namespace
}  // namespace veltrano::access
