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
    hex += {digits[byte >> 4], digits[byte & 15]};
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

/// The key in an index on one column, or why there is none. `form`: "d" descending; "3" in a file of Access 97; "g" in
/// one of Access 2010, texts in its order; "1" with texts of another language, "0" with those of the file's.
std::string keyOf(ColumnType type, std::string_view form, std::string_view stored) {
  const auto is = [&](char letter) { return form.find(letter) != std::string_view::npos; };
  TableDefinition table;
  Column& column = table.columns.emplace_back();
  column.type = type;
  column.language = is('1') ? 1031 : is('0') ? 0 : 1033;
  column.orderVersion = is('g') ? 1 : 0;
  Index index;
  index.name = "I";
  index.columns.push_back({0, !is('d')});
  const Version version = is('3') ? Version::jet3 : is('g') ? Version::ace14 : Version::jet4;
  const auto maker = IndexKeyMaker::create(version, 1033, table, index);
  if (!maker) {
    return maker.status().reason();
  }
  const ByteList bytes = bytesOf(stored);
  const StoredValue value{.null = false, .data = bytes};
  ByteList key;
  bool allNull = true;
  return maker->make({&value, 1}, key, allNull) == KeyOutcome::entry && !allNull ? hexOf(key) : "damaged";
}

std::string textKeyOf(std::string_view form, std::string_view text) {
  std::string stored;
  for (const char16_t unit : utf8ToUtf16(text)) {
    stored += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
  }
  return keyOf(ColumnType::text, form, stored);
}

TEST(IndexKey, OrdersTextsAsAccessDoes) {
  const struct {
    const char* form;
    const char* text;
    const char* key;  // as Access itself writes it
  } cases[] = {
      {"", "", "7F 01 00"},
      {"", "A b  ", "7F 4A 07 4C 01 00"},
      {"", "a-b", "7F 4A 4C 01 01 01 01 80 0B 06 82 00"},
      {"", "it's", "7F 59 6D 6B 01 01 01 01 80 0F 06 80 00"},
      {"", "r\u00e9sum\u00e9", "7F 69 51 6B 6F 60 51 01 02 0E 02 02 02 0E 00"},
      {"", "a-\u00e9-b", "7F 4A 51 4C 01 02 0E 01 01 01 80 0B 06 82 80 0F 06 82 00"},
      {"", "\u00df", "7F 6B 6B 01 00"},
      {"", "\u3042", "7F 7F 02 01 01 01 FF 02 80 FF 80 00"},
      {"", "\U0001F600", "7F B0 3F B6 FC 01 3F 3F 00"},
      // Combining marks: with a letter, with two marks, after another accent, before any letter.
      {"", "aa\u0301", "7F 4A 4A 01 02 0E 00"},
      {"", "a\u0301a", "7F 4A 4A 01 0E 00"},
      {"", "a\u0301\u0327", "7F 4A 01 28 00"},
      {"", "\u00e9\u0301", "7F 51 01 1A 00"},
      {"", "\u0301a\u0301", "7F 4A 01 0C 0E 00"},
      {"", "aa\u0301-", "7F 4A 4A 01 02 0E 01 01 01 80 0F 06 82 00"},
      // Descending: all bits of the text's part flipped, with a zero byte after it.
      {"d", "a\u0301", "80 B5 FE F1 FF 00"},
      {"g", "a\u0301", "7F 0E 02 01 0E 00"},
      {"dg", "a\u0301", "80 F1 FD FE F1 FF 00"},
      {"dg", "ab", "80 F1 FD F1 F6 FE FF 00"},
      {"0", "a", "7F 4A 01 00"},
      {"1", "a", "index I is in the text order of a language that is not known"},
  };
  for (const auto& [form, text, key] : cases) {
    EXPECT_EQ(textKeyOf(form, text), key) << form << text;
  }
  // General 97 takes the bytes of the code page.
  EXPECT_EQ(keyOf(ColumnType::text, "3", "Table1"), "7F 77 60 61 6D 66 57 00");
  const std::string longest(255, 'a');
  EXPECT_EQ(textKeyOf("", longest), textKeyOf("", longest + "b"));
}

TEST(IndexKey, StartsAlikeInAnyCase) {
  for (const TextOrder order : {TextOrder::generalLegacy, TextOrder::general}) {
    for (unsigned upper = 0; upper < 0x20000; ++upper) {
      const bool ascending = upper < 0x10000;
      const auto unit = static_cast<char16_t>(upper);
      const ByteList text = {static_cast<std::uint8_t>(unit), static_cast<std::uint8_t>(unit >> 8), 'x', 0};
      ByteList key;
      appendTextKey(key, text, order, ascending);
      const auto starts = keyStartsInAnyCase(std::u16string{lowerCase(unit), u'x'}, order, ascending);
      ASSERT_TRUE(std::ranges::any_of(starts, [&key](const auto& start) {
        return start.size() <= key.size() && std::equal(start.begin(), start.end(), key.begin());
      })) << upper;
    }
    EXPECT_EQ(keyStartsInAnyCase(u"the capitals of these: i, \u00e9, \u0436  ", order, true).size(), 1U);
    EXPECT_EQ(keyStartsInAnyCase(u"ask for a book", order, true).size(), 4U);
    EXPECT_TRUE(keyStartsInAnyCase(u"kkkkk", order, true).empty());
  }
}

TEST(IndexKey, OrdersEveryType) {
  const char* const noOrder = "index I is on a column that has no index order";
  const struct {
    ColumnType type;
    const char* stored;
    const char* ascending;
    const char* descending = nullptr;  // if it is not the same with all bits flipped
  } cases[] = {
      {ColumnType::boolean, "01", "7F 00"},
      {ColumnType::byte, "C8", "7F C8"},
      {ColumnType::integer, "FFFF", "7F 7F FF"},
      {ColumnType::longInteger, "01000000", "7F 80 00 00 01"},
      {ColumnType::currency, "0000000000000080", "7F 00 00 00 00 00 00 00 00"},
      {ColumnType::single, "0000803F", "7F BF 80 00 00"},
      {ColumnType::single, "00000080", "7F 80 00 00 00"},  // minus zero is zero
      {ColumnType::real, "0000000000000080", "7F 80 00 00 00 00 00 00 00"},
      {ColumnType::real, "000000000000F0BF", "7F 40 0F FF FF FF FF FF FF"},
      {ColumnType::real, "000000", "damaged", "damaged"},
      {ColumnType::dateTime, "0000000000000000", "7F 80 00 00 00 00 00 00 00"},
      {ColumnType::binary, "0102", "7F 01 02 00 00 00 00 00 00 02"},
      {ColumnType::binary, "0102030405060708", "7F 01 02 03 04 05 06 07 08 08"},
      // The mark that a block goes on stays.
      {ColumnType::binary, "010203040506070809", "7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01",
       "80 FE FD FC FB FA F9 F8 F7 09 F6 FF FF FF FF FF FF FF FE"},
      {ColumnType::guid, "33221100554477668899AABBCCDDEEFF",
       "7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08",
       "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7"},
      {ColumnType::ole, "00", noOrder, noOrder},
  };
  for (const auto& [type, stored, ascending, descending] : cases) {
    EXPECT_EQ(keyOf(type, "", unhex(stored)), ascending);
    EXPECT_EQ(keyOf(type, "d", unhex(stored)), descending != nullptr ? descending : flipped(ascending));
  }
}

TEST(IndexKey, KeepsTheOldDecimalOrderInJetFiles) {
  const std::string digits = " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01";
  for (const auto& [form, one, minusOne] : {std::tuple("", "7F FF", "7F 00"),
                                            {"d", "80 FF", "80 00"},  // the sign byte stays: the old fault
                                            {"dg", "80 00", "80 FF"}}) {
    const bool up = *form == '\0';
    const std::string stored = unhex("00000000000000000000000001000000");
    EXPECT_EQ(keyOf(ColumnType::numeric, form, '\0' + stored),
              one + (up ? digits : " " + flipped(digits.substr(1))));
    EXPECT_EQ(keyOf(ColumnType::numeric, form, '\x80' + stored),
              minusOne + (up ? " " + flipped(digits.substr(1)) : digits));
  }
}

TEST(IndexKey, TreatsNullsByTheIndexRules) {
  const ByteList seven = {7, 0};
  const StoredValue null;
  const StoredValue value{.null = false, .data = seven};
  TableDefinition table;
  table.columns.resize(1);
  table.columns[0].type = ColumnType::integer;
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
    Index index;
    index.columns = {{0, true}, {0, false}};
    index.ignoreNulls = c.ignoreNulls;
    index.required = c.required;
    ByteList key;
    bool allNull = false;
    const StoredValue values[] = {c.first, c.second};
    EXPECT_EQ(IndexKeyMaker::create(Version::jet4, 1033, table, index)->make(values, key, allNull),
              c.outcome);
    EXPECT_EQ(hexOf(key), c.key);
    EXPECT_EQ(allNull, c.allNull) << c.key;
  }
}

}  // namespace
}  // namespace veltrano::access
