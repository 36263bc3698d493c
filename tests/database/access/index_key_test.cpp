#include "database/access/index/key.h"

#include "base/text/code_page.h"
#include "base/text/lower_case.h"
#include "encrypted_files.h"
#include "harness.h"

namespace veltrano::access {
namespace {

std::string hexOf(const ByteList& bytes) {
  std::string hex;
  for (const std::uint8_t byte : bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    hex += hex.empty() ? "" : " ";
    hex += digits[byte >> 4];
    hex += digits[byte & 15];
  }
  return hex;
}

std::string flipped(std::string_view hex) {
  ByteList bytes = bytesOf(unhex(hex));
  for (std::uint8_t& byte : bytes) {
    byte ^= 0xFF;
  }
  return hexOf(bytes);
}

ByteList utf16Bytes(std::string_view utf8) {
  ByteList bytes;
  for (const char16_t unit : utf8ToUtf16(utf8)) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

/// An index over columns of these types, and its keys.
struct TestIndex {
  TableDefinition table;
  Index index;
  Version version = Version::jet4;

  void append(ColumnType type, bool ascending = true, std::uint8_t orderVersion = 0) {
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

std::string keyOf(ColumnType type, bool ascending, const ByteList& stored, Version version = Version::jet4,
                  std::uint8_t orderVersion = 0) {
  TestIndex test;
  test.version = version;
  test.append(type, ascending, orderVersion);
  ByteList key;
  bool allNull = true;
  const StoredValue value{.null = false, .data = stored};
  EXPECT_EQ(test.maker()->make({&value, 1}, key, allNull), KeyOutcome::entry);
  EXPECT_FALSE(allNull);
  return hexOf(key);
}
std::string textKeyOf(bool ascending, std::string_view text, Version version = Version::jet4,
                      std::uint8_t orderVersion = 0) {
  return keyOf(ColumnType::text, ascending, utf16Bytes(text), version, orderVersion);
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
    EXPECT_EQ(textKeyOf(true, text), key) << text;
  }
  // Descending: all bits of the text's part flipped, with a zero byte after it.
  EXPECT_EQ(textKeyOf(false, "ab"), "80 B5 B3 FE FF 00");
  EXPECT_EQ(textKeyOf(false, "a\u0301"), "80 B5 FE F1 FF 00");
  // General, the order of Access 2010.
  EXPECT_EQ(textKeyOf(true, "a\u0301", Version::ace14, 1), "7F 0E 02 01 0E 00");
  EXPECT_EQ(textKeyOf(false, "a\u0301", Version::ace14, 1), "80 F1 FD FE F1 FF 00");
  EXPECT_EQ(textKeyOf(false, "ab", Version::ace14, 1), "80 F1 FD F1 F6 FE FF 00");
  // General 97 takes the bytes of the code page.
  EXPECT_EQ(keyOf(ColumnType::text, true, {'T', 'a', 'b', 'l', 'e', '1'}, Version::jet3),
            "7F 77 60 61 6D 66 57 00");
  const std::string longest(255, 'a');
  EXPECT_EQ(textKeyOf(true, longest), textKeyOf(true, longest + "b"));
}

TEST(IndexKey, StartsAlikeInAnyCase) {
  for (const TextOrder order : {TextOrder::generalLegacy, TextOrder::general}) {
    for (const bool ascending : {true, false}) {
      for (unsigned upper = 0; upper < 0x10000; ++upper) {
        const ByteList text = {static_cast<std::uint8_t>(upper), static_cast<std::uint8_t>(upper >> 8), 'x',
                               0};
        ByteList key;
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
    const char* ascending;  // the descending one has all bits flipped
  } cases[] = {
      {ColumnType::boolean, "01", "7F 00"},
      {ColumnType::boolean, "00", "7F FF"},
      {ColumnType::byte, "C8", "7F C8"},
      {ColumnType::integer, "FF FF", "7F 7F FF"},
      {ColumnType::longInteger, "01 00 00 00", "7F 80 00 00 01"},
      {ColumnType::currency, "00 00 00 00 00 00 00 80", "7F 00 00 00 00 00 00 00 00"},
      {ColumnType::single, "00 00 80 3F", "7F BF 80 00 00"},
      {ColumnType::single, "00 00 00 80", "7F 80 00 00 00"},  // minus zero is zero
      {ColumnType::real, "00 00 00 00 00 00 00 80", "7F 80 00 00 00 00 00 00 00"},
      {ColumnType::real, "00 00 00 00 00 00 F0 BF", "7F 40 0F FF FF FF FF FF FF"},
      {ColumnType::dateTime, "00 00 00 00 00 00 00 00", "7F 80 00 00 00 00 00 00 00"},
      {ColumnType::binary, "", "7F"},
      {ColumnType::binary, "01 02", "7F 01 02 00 00 00 00 00 00 02"},
      {ColumnType::binary, "01 02 03 04 05 06 07 08", "7F 01 02 03 04 05 06 07 08 08"},
  };
  for (const auto& [type, stored, ascending] : cases) {
    EXPECT_EQ(keyOf(type, true, bytesOf(unhex(stored))), ascending);
    EXPECT_EQ(keyOf(type, false, bytesOf(unhex(stored))), flipped(ascending));
  }
  // The mark that a block goes on stays.
  const ByteList nine = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_EQ(keyOf(ColumnType::binary, true, nine),
            "7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01");
  EXPECT_EQ(keyOf(ColumnType::binary, false, nine),
            "80 FE FD FC FB FA F9 F8 F7 09 F6 FF FF FF FF FF FF FF FE");
  const ByteList guid = bytesOf(unhex("33221100554477668899AABBCCDDEEFF"));
  EXPECT_EQ(keyOf(ColumnType::guid, true, guid), "7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08");
  EXPECT_EQ(keyOf(ColumnType::guid, false, guid), "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7");
}

TEST(IndexKey, KeepsTheOldDecimalOrderInJetFiles) {
  const ByteList one = bytesOf(unhex("0000000000000000000000000001000000"));
  ByteList minusOne = one;
  minusOne[0] = 0x80;
  const std::string plain = " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01";
  const std::string inverse = " FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FE";
  EXPECT_EQ(keyOf(ColumnType::numeric, true, one), "7F FF" + plain);
  EXPECT_EQ(keyOf(ColumnType::numeric, true, minusOne), "7F 00" + inverse);
  EXPECT_EQ(keyOf(ColumnType::numeric, false, one), "80 FF" + inverse);  // the sign byte stays: the old fault
  EXPECT_EQ(keyOf(ColumnType::numeric, false, minusOne), "80 00" + plain);
  EXPECT_EQ(keyOf(ColumnType::numeric, false, one, Version::ace14), "80 00" + inverse);
  EXPECT_EQ(keyOf(ColumnType::numeric, false, minusOne, Version::ace14), "80 FF" + plain);
}

TEST(IndexKey, TreatsNullsByTheIndexRules) {
  const ByteList seven = {7, 0};
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
    test.append(ColumnType::integer, true);
    test.append(ColumnType::integer, false);
    test.index.ignoreNulls = c.ignoreNulls;
    test.index.required = c.required;
    ByteList key;
    bool allNull = false;
    const StoredValue values[] = {c.first, c.second};
    EXPECT_EQ(test.maker()->make(values, key, allNull), c.outcome) << c.key;
    EXPECT_EQ(hexOf(key), c.key);
    EXPECT_EQ(allNull, c.allNull) << c.key;
  }
}

TEST(IndexKey, RefusesWhatItCannotOrder) {
  TestIndex german;
  german.append(ColumnType::text);
  german.table.columns[0].language = 1031;
  EXPECT_NE(german.maker().status().reason().find("language"), std::string::npos);
  german.table.columns[0].language = 0;
  EXPECT_TRUE(german.maker()) << "the file's default";

  TestIndex object;
  object.append(ColumnType::ole);
  EXPECT_FALSE(object.maker());

  TestIndex damaged;
  damaged.append(ColumnType::real);
  const ByteList tooShort = {1, 2, 3};
  const StoredValue value{.null = false, .data = tooShort};
  ByteList key;
  bool allNull = false;
  EXPECT_EQ(damaged.maker()->make({&value, 1}, key, allNull), KeyOutcome::damaged);
}

}  // namespace
}  // namespace veltrano::access
