#include <set>
#include <tuple>

#include "database/access/pages/long_value.h"
#include "database/access/pages/row.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/header_mask.h"
#include "database/access/storage/space/usage_map.h"
#include "database/access/storage/text_codec.h"
#include "harness.h"

namespace veltrano::access {
namespace {

TEST(Header, MaskIsTheKnownKeyStream) {
  const ByteList known = {0xB5, 0x6F, 0x03, 0x62, 0x61, 0x08, 0xC2, 0x55, 0xEB, 0xA9, 0x67, 0x72};
  for (const auto& [version, size] : {std::pair(Version::jet3, 126), std::pair(Version::jet4, 128)}) {
    ByteList page(4096);
    maskHeader(page, version);
    EXPECT_TRUE(std::equal(known.begin(), known.end(), page.begin() + 0x18));
    const auto covered = std::count_if(page.begin(), page.end(), [](std::uint8_t byte) { return byte != 0; });
    EXPECT_LE(covered, size);
    EXPECT_EQ(page[0x17], 0);
    EXPECT_EQ(page[0x18U + static_cast<unsigned>(size)], 0);
  }
}

TEST(StoredText, IsDecoded) {
  const std::tuple<const char*, ByteList, const char*> cases[] = {
      {"empty", {}, ""},
      {"UTF-16", {0x41, 0, 0xE9, 0, 0xAC, 0x20}, "A\u00e9\u20ac"},
      {"surrogates", {0x3D, 0xD8, 0x00, 0xDE}, "\U0001F600"},
      {"lone surrogates", {0x3D, 0xD8, 0x40, 0, 0x00, 0xDE}, "\xED\xA0\xBD@\xED\xB8\x80"},
      {"odd byte at the end", {0x41, 0, 0x42}, "A"},
      {"compressed, nothing", {0xFF, 0xFE}, ""},
      {"compressed Latin-1, not 1252", {0xFF, 0xFE, 0x41, 0xE9, 0x80}, "A\u00e9\xC2\x80"},
      {"two modes", {0xFF, 0xFE, 0x41, 0, 0xAC, 0x20, 0, 0x42}, "A\u20acB"},
      {"ends in two-byte mode", {0xFF, 0xFE, 0x41, 0, 0xAC, 0x20}, "A\u20ac"},
      {"half a unit", {0xFF, 0xFE, 0x41, 0, 0xAC}, "A"},
  };
  for (const auto& [label, stored, utf8] : cases) {
    std::string text;
    storedTextToUtf8(stored, text);
    EXPECT_EQ(text, utf8) << label;
  }
}

TEST(CodePages, AreThoseThatTheSystemKnows) {
  const std::tuple<std::uint16_t, std::string, std::optional<std::string>> cases[] = {
      {1252, "\x80\x81", "\u20ac\xC2\x81"},
      {1250, "\xB3", "\u0142"},
      {1251, "\xE6", "\u0436"},
      {1253, "\xE1", "\u03b1"},
      {932, "a\x83\x41\\", "a\u30a2\\"},
      {932, "\x83", "\ufffd"},
      {7, "a", {}},
      {0, "", {}},
  };
  for (const auto& [codePage, bytes, utf8] : cases) {
    EXPECT_EQ(codePageToUtf8(codePage, bytesOf(bytes)), utf8) << codePage;
    EXPECT_EQ(isKnownCodePage(codePage), utf8.has_value()) << codePage;
  }
}

TEST(StoredText, IsCompressedWhereThatIsAllowed) {
  const std::string longest(1024, 'a');
  const std::vector<std::tuple<std::string, bool, ByteList>> cases = {
      {"abc", true, {0xFF, 0xFE, 'a', 'b', 'c'}},
      {"abc", false, {'a', 0, 'b', 0, 'c', 0}},
      {"ab", true, {'a', 0, 'b', 0}},
      {"ab\xC3\xBF", true, {0xFF, 0xFE, 'a', 'b', 0xFF}},
      {"ab\xC4\x80", true, {'a', 0, 'b', 0, 0, 1}},
      {std::string("a\0b", 3), true, {'a', 0, 0, 0, 'b', 0}},
      {longest, true, bytesOf("\xFF\xFE" + longest)}};
  for (const auto& [text, compress, expected] : cases) {
    ByteList stored;
    encodeStoredText(text, compress, stored);
    EXPECT_EQ(stored, expected) << text;
  }
  ByteList stored;
  encodeStoredText(longest + "a", true, stored);
  EXPECT_EQ(stored.size(), 2050U) << "too long to be compressed";
}

Column columnAt(ColumnType type, std::uint16_t number, std::uint16_t place, std::uint16_t length,
                bool fixed) {
  Column made;
  made.type = type;
  made.number = number;
  (fixed ? made.fixedOffset : made.variableIndex) = place;
  made.length = length;
  made.fixed = fixed;
  return made;
}

// The bytes of a cell, or nothing for a null.
std::optional<ByteList> cellOf(const RowView& row, const Column& column) {
  const auto cell = row.cell(column);
  return cell ? std::optional(ByteList(cell->begin(), cell->end())) : std::nullopt;
}

// The row "Tables" in the catalog of an Access 97 file.
TEST(Row, OfAccess97IsRead) {
  ByteList row = {0x11, 0x01, 0, 0, 0x0F, 0, 0, 0, 0x0F, 3, 0};
  const ByteList date = {0x2D, 0xFB, 0x39, 0xBE, 0x53, 0xA6, 0xE3, 0x40};
  const auto append = [&row](const ByteList& more) { row.insert(row.end(), more.begin(), more.end()); };
  append(date);
  append(date);
  append({0, 0, 0, 0x80});
  append(bytesOf("Tables"));
  append({2, 3});
  append(ByteList(10, 0x27));
  append({0x25, 0x1F, 0x0B, 0xFF, 0, 0});
  ASSERT_EQ(row.size(), 55U);
  const RowView view(row, Version::jet3, true);
  ASSERT_TRUE(view.valid());
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::longInteger, 0, 0, 4, true)), ByteList({1, 0, 0, 0x0F}));
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::text, 2, 0, 255, false)), bytesOf("Tables"));
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::integer, 3, 8, 2, true)), ByteList({3, 0}));
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::dateTime, 5, 18, 8, true)), date);
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::binary, 6, 1, 255, false)), ByteList({2, 3}));
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::memo, 8, 2, 0, false)), std::nullopt);
}

// 300 and 5 bytes: the second offset and the end (306) are beyond 255, so the jump table says "from entry 1
// on".
TEST(Row, OfAccess97WithJumpTableIsRead) {
  ByteList row = {2};
  row.insert(row.end(), 300, 'x');
  row.insert(row.end(), 5, 'y');
  for (const int byte : {306 - 256, 301 - 256, 1, 1, 2, 3}) {
    row.push_back(static_cast<std::uint8_t>(byte));
  }
  const RowView view(row, Version::jet3, true);
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::text, 0, 0, 0, false)), ByteList(300, 'x'));
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::text, 1, 1, 0, false)), ByteList(5, 'y'));
}

TEST(Row, IsBuiltAndReadBack) {
  TableDefinition table;
  table.maxColumns = 3;
  table.variableColumns = 1;
  table.columns = {columnAt(ColumnType::longInteger, 0, 0, 4, true),
                   columnAt(ColumnType::text, 1, 0, 10, false), columnAt(ColumnType::boolean, 2, 0, 1, true)};
  ByteList row;
  buildRow(table.rowLayout(), {{false, {5, 0, 0, 0}}, {false, {'a', 0, 'b', 0}}, {false, {1}}}, row);
  EXPECT_EQ(row, ByteList({3, 0, 5, 0, 0, 0, 'a', 0, 'b', 0, 10, 0, 6, 0, 1, 0, 7}));
  const RowView view(row, Version::jet4, true);
  EXPECT_EQ(cellOf(view, table.columns[1]), ByteList({'a', 0, 'b', 0}));
  EXPECT_EQ(cellOf(view, table.columns[2]), ByteList({1}));
  // A column that was added after the row was written.
  EXPECT_EQ(cellOf(view, columnAt(ColumnType::text, 3, 1, 10, false)), std::nullopt);
  for (std::size_t size = 0; size < row.size(); ++size) {
    const RowView cut(Bytes(row).first(size), Version::jet4, true);
    for (const Column& one : table.columns) {
      if (cut.valid()) {
        (void)cut.cell(one);  // must only stay inside
      }
    }
  }
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
    std::set<PageNumber> found;
    for (auto page = map.next(0); page; page = map.next(*page + 1)) {
      found.insert(*page);
    }
    ASSERT_EQ(found, expected) << "after page " << pages[i];
    std::set<PageNumber> backwards;
    for (auto page = map.previous(524288); page; page = *page == 0 ? std::nullopt : map.previous(*page - 1)) {
      backwards.insert(*page);
    }
    ASSERT_EQ(backwards, expected);
    ASSERT_EQ(map.contains(pages[i]), expected.contains(pages[i]));
  }
  EXPECT_FALSE(map.add(17 * 32736)) << "beyond what a file may hold";
}

}  // namespace
}  // namespace veltrano::access
