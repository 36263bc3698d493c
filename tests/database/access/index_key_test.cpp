#include "database/access/index/key.h"

#include <gtest/gtest.h>

#include "base/text/code_page.h"
#include "base/text/lower_case.h"

namespace veltrano::access {
namespace {

std::vector<std::uint8_t> bytesOf(std::string_view hex) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 3) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
  }
  return bytes;
}

std::string hexOf(const std::vector<std::uint8_t>& bytes) {
  std::string hex;
  for (const std::uint8_t byte : bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    hex += hex.empty() ? "" : " ";
    hex += digits[byte >> 4];
    hex += digits[byte & 15];
  }
  return hex;
}

std::vector<std::uint8_t> utf16Bytes(std::string_view utf8) {
  std::vector<std::uint8_t> bytes;
  for (const char16_t unit : utf8ToUtf16(utf8)) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

/// An index over columns of these types, all in one direction, and its keys.
struct TestIndex {
  TableDefinition table;
  Index index;
  Version version = Version::jet4;

  void add(ColumnType type, bool ascending, std::uint8_t orderVersion = 0) {
    Column column;
    column.type = type;
    column.number = static_cast<std::uint16_t>(table.columns.size());
    column.language = 1033;
    column.orderVersion = orderVersion;
    table.columns.push_back(column);
    index.columns.push_back({column.number, ascending});
  }
  [[nodiscard]] Result<IndexKeyMaker> maker() const {
    return IndexKeyMaker::create(version, 1033, table, index);
  }
};

std::string keyOf(ColumnType type, bool ascending, const std::vector<std::uint8_t>& stored,
                  Version version = Version::jet4, std::uint8_t orderVersion = 0) {
  TestIndex test;
  test.version = version;
  test.add(type, ascending, orderVersion);
  std::vector<std::uint8_t> key;
  bool allNull = true;
  const StoredValue value{.null = false, .data = stored};
  EXPECT_EQ(test.maker()->make({&value, 1}, key, allNull), KeyOutcome::entry);
  EXPECT_FALSE(allNull);
  return hexOf(key);
}

TEST(IndexKey, OrdersTextsAsAccessDoes) {
  const struct {
    const char* text;
    const char* key;  // General Legacy, ascending, as Access itself writes it
  } cases[] = {
      {"", "7F 01 00"},
      {"a", "7F 4A 01 00"},
      {"A", "7F 4A 01 00"},
      {"a b", "7F 4A 07 4C 01 00"},
      {"a b  ", "7F 4A 07 4C 01 00"},
      {"a-b", "7F 4A 4C 01 01 01 01 80 0B 06 82 00"},
      {"-ab", "7F 4A 4C 01 01 01 01 80 07 06 82 00"},
      {"it's", "7F 59 6D 6B 01 01 01 01 80 0F 06 80 00"},
      {"\u00e9", "7F 51 01 0E 00"},
      {"r\u00e9sum\u00e9", "7F 69 51 6B 6F 60 51 01 02 0E 02 02 02 0E 00"},
      {"a-\u00e9-b", "7F 4A 51 4C 01 02 0E 01 01 01 80 0B 06 82 80 0F 06 82 00"},
      {"\u00df", "7F 6B 6B 01 00"},
      {"\u3042", "7F 7F 02 01 01 01 FF 02 80 FF 80 00"},
      {"\U0001F600", "7F B0 3F B6 FC 01 3F 3F 00"},
      {"\U00010000", "7F B0 02 B4 F8 01 3F 3F 00"},
      // Combining marks: with a letter, with two marks, after another accent, before any letter.
      {"a\u0301", "7F 4A 01 0E 00"},
      {"aa\u0301", "7F 4A 4A 01 02 0E 00"},
      {"a\u0301a", "7F 4A 4A 01 0E 00"},
      {"a\u0301\u0327", "7F 4A 01 28 00"},
      {"\u00e9\u0301", "7F 51 01 1A 00"},
      {"\u0301a", "7F 4A 01 0C 00"},
      {"\u0301a\u0301", "7F 4A 01 0C 0E 00"},
      {"aa\u0301-", "7F 4A 4A 01 02 0E 01 01 01 80 0F 06 82 00"},
  };
  for (const auto& [text, key] : cases) {
    EXPECT_EQ(keyOf(ColumnType::text, true, utf16Bytes(text)), key) << text;
  }
  // Descending: all bits of the text's part flipped, with a zero byte after it.
  EXPECT_EQ(keyOf(ColumnType::text, false, utf16Bytes("ab")), "80 B5 B3 FE FF 00");
  EXPECT_EQ(keyOf(ColumnType::text, false, utf16Bytes("a\u0301")), "80 B5 FE F1 FF 00");
  // General, the order of Access 2010.
  EXPECT_EQ(keyOf(ColumnType::text, true, utf16Bytes("a\u0301"), Version::ace14, 1), "7F 0E 02 01 0E 00");
  EXPECT_EQ(keyOf(ColumnType::text, false, utf16Bytes("a\u0301"), Version::ace14, 1), "80 F1 FD FE F1 FF 00");
  EXPECT_EQ(keyOf(ColumnType::text, false, utf16Bytes("ab"), Version::ace14, 1), "80 F1 FD F1 F6 FE FF 00");
  // General 97 takes the bytes of the code page.
  EXPECT_EQ(keyOf(ColumnType::text, true, {'T', 'a', 'b', 'l', 'e', '1'}, Version::jet3),
            "7F 77 60 61 6D 66 57 00");
  // Only the first 255 characters count.
  const std::string longText(255, 'a');
  EXPECT_EQ(keyOf(ColumnType::memo, true, utf16Bytes(longText)),
            keyOf(ColumnType::memo, true, utf16Bytes(longText + "b")));
}

TEST(IndexKey, StartsAlikeInAnyCase) {
  for (const TextOrder order : {TextOrder::generalLegacy, TextOrder::general}) {
    for (const bool ascending : {true, false}) {
      for (unsigned upper = 0; upper < 0x10000; ++upper) {
        const std::vector<std::uint8_t> text = {static_cast<std::uint8_t>(upper),
                                                static_cast<std::uint8_t>(upper >> 8), 'x', 0};
        std::vector<std::uint8_t> key;
        appendTextKey(key, text, order, ascending);
        const std::u16string lower = {lowerCase(static_cast<char16_t>(upper)), u'x'};
        const auto starts = keyStartsInAnyCase(lower, order, ascending);
        ASSERT_TRUE(std::ranges::any_of(starts, [&key](const auto& start) {
          return start.size() <= key.size() && std::equal(start.begin(), start.end(), key.begin());
        })) << upper;
      }
    }
    EXPECT_EQ(keyStartsInAnyCase(u"the capitals of these: i, \u00e9, \u0436  ", order, true).size(), 1U);
    EXPECT_EQ(keyStartsInAnyCase(u"ask for a book", order, true).size(), 4U);
    EXPECT_TRUE(keyStartsInAnyCase(u"kkkkk", order, true).empty());
  }
}

TEST(IndexKey, OrdersEveryType) {
  const struct {
    ColumnType type;
    const char* stored;
    const char* ascending;
    const char* descending;
  } cases[] = {
      {ColumnType::boolean, "01", "7F 00", "80 FF"},
      {ColumnType::boolean, "00", "7F FF", "80 00"},
      {ColumnType::byte, "C8", "7F C8", "80 37"},
      {ColumnType::integer, "FF FF", "7F 7F FF", "80 80 00"},
      {ColumnType::longInteger, "01 00 00 00", "7F 80 00 00 01", "80 7F FF FF FE"},
      {ColumnType::currency, "00 00 00 00 00 00 00 80", "7F 00 00 00 00 00 00 00 00",
       "80 FF FF FF FF FF FF FF FF"},
      {ColumnType::single, "00 00 80 3F", "7F BF 80 00 00", "80 40 7F FF FF"},
      {ColumnType::single, "00 00 00 80", "7F 80 00 00 00", "80 7F FF FF FF"},  // minus zero is zero
      {ColumnType::real, "00 00 00 00 00 00 00 80", "7F 80 00 00 00 00 00 00 00",
       "80 7F FF FF FF FF FF FF FF"},
      {ColumnType::real, "00 00 00 00 00 00 F0 BF", "7F 40 0F FF FF FF FF FF FF",
       "80 BF F0 00 00 00 00 00 00"},
      {ColumnType::dateTime, "00 00 00 00 00 00 00 00", "7F 80 00 00 00 00 00 00 00",
       "80 7F FF FF FF FF FF FF FF"},
      {ColumnType::binary, "", "7F", "80"},
      {ColumnType::binary, "01 02", "7F 01 02 00 00 00 00 00 00 02", "80 FE FD FF FF FF FF FF FF FD"},
      {ColumnType::binary, "01 02 03 04 05 06 07 08", "7F 01 02 03 04 05 06 07 08 08",
       "80 FE FD FC FB FA F9 F8 F7 F7"},
      {ColumnType::binary, "01 02 03 04 05 06 07 08 09",
       "7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01",
       "80 FE FD FC FB FA F9 F8 F7 09 F6 FF FF FF FF FF FF FF FE"},
      {ColumnType::guid, "33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF",
       "7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08",
       "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7"},
  };
  for (const auto& c : cases) {
    const auto stored = bytesOf(c.stored);
    EXPECT_EQ(keyOf(c.type, true, stored), c.ascending);
    EXPECT_EQ(keyOf(c.type, false, stored), c.descending);
  }
}

TEST(IndexKey, KeepsTheOldDecimalOrderInJetFiles) {
  const std::vector<std::uint8_t> one = bytesOf("00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00");
  std::vector<std::uint8_t> minusOne = one;
  minusOne[0] = 0x80;
  const std::string plain = " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01";
  const std::string flipped = " FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FE";
  EXPECT_EQ(keyOf(ColumnType::numeric, true, one), "7F FF" + plain);
  EXPECT_EQ(keyOf(ColumnType::numeric, true, minusOne), "7F 00" + flipped);
  EXPECT_EQ(keyOf(ColumnType::numeric, false, one), "80 FF" + flipped);  // the sign byte stays: the old fault
  EXPECT_EQ(keyOf(ColumnType::numeric, false, minusOne), "80 00" + plain);
  EXPECT_EQ(keyOf(ColumnType::numeric, false, one, Version::ace14), "80 00" + flipped);
  EXPECT_EQ(keyOf(ColumnType::numeric, false, minusOne, Version::ace14), "80 FF" + plain);
}

TEST(IndexKey, TreatsNullsByTheIndexRules) {
  const std::vector<std::uint8_t> seven = {7, 0};
  const StoredValue null;
  const StoredValue value{.null = false, .data = seven};
  const struct {
    bool ignoreNulls, required;
    StoredValue first, second;
    KeyOutcome outcome;
    const char* key;
    bool allNull;
  } cases[] = {
      {false, false, null, null, KeyOutcome::entry, "00 FF", true},
      {false, false, value, null, KeyOutcome::entry, "7F 80 07 FF", false},
      {true, false, null, null, KeyOutcome::leftOut, "00 FF", true},
      {true, false, null, value, KeyOutcome::entry, "00 80 7F F8", false},
      {false, true, value, null, KeyOutcome::refused, "7F 80 07", false},
  };
  for (const auto& c : cases) {
    TestIndex test;
    test.add(ColumnType::integer, true);
    test.add(ColumnType::integer, false);
    test.index.ignoreNulls = c.ignoreNulls;
    test.index.required = c.required;
    std::vector<std::uint8_t> key;
    bool allNull = false;
    const StoredValue values[] = {c.first, c.second};
    EXPECT_EQ(test.maker()->make(values, key, allNull), c.outcome) << c.key;
    EXPECT_EQ(hexOf(key), c.key);
    EXPECT_EQ(allNull, c.allNull) << c.key;
  }
}

TEST(IndexKey, RefusesWhatItCannotOrder) {
  TestIndex german;
  german.add(ColumnType::text, true);
  german.table.columns[0].language = 1031;
  EXPECT_FALSE(german.maker());
  EXPECT_NE(german.maker().status().reason().find("language"), std::string::npos);

  TestIndex byDefault;
  byDefault.add(ColumnType::text, true);
  byDefault.table.columns[0].language = 0;
  EXPECT_TRUE(byDefault.maker());

  TestIndex object;
  object.add(ColumnType::ole, true);
  EXPECT_FALSE(object.maker());

  TestIndex damaged;
  damaged.add(ColumnType::real, true);
  const std::vector<std::uint8_t> tooShort = {1, 2, 3};
  const StoredValue value{.null = false, .data = tooShort};
  std::vector<std::uint8_t> key;
  bool allNull = false;
  EXPECT_EQ(damaged.maker()->make({&value, 1}, key, allNull), KeyOutcome::damaged);
}

}  // namespace
}  // namespace veltrano::access
