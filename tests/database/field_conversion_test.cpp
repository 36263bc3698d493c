#include "database/values/field_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <tuple>

#include "base/text/code_page.h"
#include "base/text/lower_case.h"
#include "base/text/wtf8.h"
#include "database/values/date_from_text.h"
#include "database/values/number_from_text.h"
#include "database/values/text_matcher.h"

namespace veltrano {
namespace {

constexpr auto int64Least = std::numeric_limits<std::int64_t>::min();
constexpr auto int64Most = std::numeric_limits<std::int64_t>::max();

/// What becomes of each of the texts, which have bars between them; "-" if it is refused.
template <typename Convert>
std::string each(std::string_view texts, Convert convert) {
  std::string all;
  for (std::size_t at = 0; at <= texts.size();) {
    const std::size_t end = std::min(texts.find('|', at), texts.size());
    const auto value = convert(std::string(texts.substr(at, end - at)));
    all += (at == 0 ? "" : "|") + (value ? toFieldText(*value).value_or("no text") : "-");
    at = end + 1;
  }
  return all;
}

TEST(FieldToText, WritesDates) {
  const std::pair<double, const char*> cases[] = {
      {0, "00:00:00"},
      {0.75, "18:00:00"},
      {1, "1899-12-31"},
      {36526.5, "2000-01-01 12:00:00"},
      {46347.586805555555, "2026-11-21 14:05:00"},
      {-657434, "0100-01-01"},
      {2958466, ""},
      {-657435, ""},
      {-1.25, "1899-12-29 06:00:00"},  // the fraction counts upwards
      {2.9999999, "1900-01-02"},       // less than half a second before midnight
      {2958465.9999999, "9999-12-31 23:59:59"},
      {std::numeric_limits<double>::quiet_NaN(), ""},
  };
  for (const auto& [days, expected] : cases) {
    std::string text = "left over";
    EXPECT_EQ(dateToText(Date{days}, text), *expected != '\0') << days;
    EXPECT_EQ(text, expected) << days;
  }
}

std::string textOf(const std::optional<Decimal>& decimal) {
  std::string text = "refused";
  if (decimal) {
    decimalToText(*decimal, text);
  }
  return text;
}

TEST(FieldToText, WritesScaledNumbersWithoutLosingDigits) {
  const std::pair<std::int64_t, const char*> amounts[] = {
      {0, "0"},         {1, "0.0001"},    {-1, "-0.0001"},
      {125000, "12.5"}, {-100000, "-10"}, {int64Least, "-922337203685477.5808"},
  };
  for (const auto& [amount, expected] : amounts) {
    std::string text;
    currencyToText(Currency{amount}, text);
    EXPECT_EQ(text, expected);
  }
  EXPECT_EQ(textOf(Decimal{false, {~0U, ~0U, ~0U, 0}, 4}), "7922816251426433759354395.0335");
  EXPECT_EQ(textOf(Decimal{true, {5, 0, 0, 0}, 2}), "-0.05");
  EXPECT_EQ(textOf(Decimal{true, {}, 3}), "0");
}

TEST(FieldToText, WritesBytesAndGuids) {
  std::string text;
  guidToText({0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF},
             text);
  EXPECT_EQ(text, "{00112233-4455-6677-8899-AABBCCDDEEFF}");
  const auto guid = toGuid("{guid {00112233-4455-6677-8899-aabbccddeeff}}");
  ASSERT_TRUE(guid);
  std::string again;
  guidToText(*guid, again);
  EXPECT_EQ(again, text);
  EXPECT_FALSE(toGuid("00112233-4455-6677-8899-AABBCCDDEEFG"));
  EXPECT_FALSE(toGuid("001122334-455-6677-8899-AABBCCDDEEFF"));

  Value::Bytes every(256);
  for (std::size_t i = 0; i < every.size(); ++i) {
    every[i] = static_cast<std::uint8_t>(i);
  }
  binaryToText(every, text);
  EXPECT_EQ(toBinary(text), every);
  EXPECT_FALSE(toBinary("\u3042"));
}

TEST(AssignedValue, BecomesWholeNumber) {
  const auto numbers = [](std::int64_t least, std::int64_t most, const std::vector<Value>& values) {
    std::string all;
    for (const Value& value : values) {
      const auto number = toInteger(value, least, most);
      all += number ? std::to_string(*number) + " " : "- ";
    }
    return all;
  };
  EXPECT_EQ(numbers(-10, 10, {2.5, 3.5, -2.5, Decimal{true, {25, 0, 0, 0}, 1}}), "2 4 -2 -2 ");
  EXPECT_EQ(numbers(0, 255, {" 12.5 ", "13.5", "256", "-0.4", "", "12 apples"}), "12 14 - 0 - - ");
  EXPECT_EQ(numbers(0, 255, {true, Currency{25000}, Date{1.5}, Value(), Null(), Value::List{}}),
            "255 2 2 0 - - ");
  EXPECT_EQ(numbers(-32768, 32767, {true, "1e3"}), "-1 1000 ");
  // Beyond what a double, and the 7 digits of a float's text, tell apart.
  EXPECT_EQ(numbers(int64Least, int64Most, {"9223372036854775807", "-9223372036854775808", 16777217.0F}),
            "9223372036854775807 -9223372036854775808 16777216 ");
  EXPECT_EQ(numbers(int64Least, int64Most, {"9223372036854775808", 1e300}), "- - ");
}

TEST(AssignedValue, BecomesScaledNumberExactly) {
  const auto currency = [](const Value& value) { return toCurrency(value); };
  EXPECT_EQ(each("922337203685477.5807|922337203685477.5808", currency), "922337203685477.5807|-");
  EXPECT_EQ(each("0.00005|0.00015|0.00005000001|-0.1", currency), "0|0.0002|0.0001|-0.1");
  EXPECT_EQ(each("9999.99995", currency), "10000") << "the carry makes a new digit";
  EXPECT_EQ(toCurrency(0.1), Currency{1000});
  EXPECT_EQ(toCurrency(0.1F), Currency{1000});
  const auto scaled = [](const Value& value) { return toDecimal(value, 18, 4); };
  EXPECT_EQ(each("99999999999999.9999|99999999999999.99995|abc", scaled), "99999999999999.9999|-|-");
  EXPECT_EQ(textOf(scaled(Decimal{false, {0xA88A6D72, 0x1B66B, 0, 0}, 4})), "48204848211.0834");
  EXPECT_EQ(each("-1.005|-1.015|1e-300|123", [](const Value& value) { return toDecimal(value, 4, 2); }),
            "-1|-1.02|0|-");
  EXPECT_EQ(textOf(toDecimal("9999999999999999999999999999", 28, 0)), "9999999999999999999999999999");
  EXPECT_EQ(textOf(toDecimal(0.1F, 28, 20)), "0.1");
  EXPECT_EQ(textOf(toDecimal(Decimal{true, {~0U, ~0U, 0, 0}, 6}, 28, 4)), "-18446744073709.5516");
}

TEST(AssignedValue, BecomesDecimalWithAllItsDigits) {
  const auto convert = [](const Value& value) { return toDecimal(value); };
  EXPECT_EQ(each("12345678901234.5678|-1.500|1.2e3|1e28|ten", convert), "12345678901234.5678|-1.5|1200|-|-");
  EXPECT_EQ(each("0.0000000000000000000000000001|0.00000000000000000000000000001", convert),
            "0.0000000000000000000000000001|-");
  EXPECT_EQ(textOf(toDecimal(Currency{int64Least})), "-922337203685477.5808");
  EXPECT_EQ(textOf(toDecimal(0.1F)), "0.1");
  EXPECT_EQ(textOf(toDecimal(Value())), "0");
}

// Without an order only the form in which dates are read back.
TEST(AssignedValue, BecomesDate) {
  const auto own = [](const std::string& text) { return dateFromText(text); };
  const auto month = [](const std::string& text) { return dateFromText(text, DateOrder::monthFirst); };
  const auto day = [](const std::string& text) { return dateFromText(text, DateOrder::dayFirst); };
  EXPECT_EQ(each("2026-11-21|2026-11-21T06:00|1899-12-29 18:00:00|06:00:00", own),
            "2026-11-21|2026-11-21 06:00:00|1899-12-29 18:00:00|06:00:00");
  EXPECT_EQ(each("11/21/2026|21.11.2026|2026/11/21|6:00 am", own), "-|-|-|-");
  EXPECT_EQ(each("11/21/2026|21/11/2026|21.11.2026|3/4/2026|4.3.2026|1/1/30", month),
            "2026-11-21|2026-11-21|2026-11-21|2026-03-04|2026-03-04|1930-01-01");
  EXPECT_EQ(each("6:00 am|12:00 am|2026-02-29|2026-11-21 24:00|13:00 pm", month), "06:00:00|00:00:00|-|-|-");
  EXPECT_EQ(each("3/4/2026|4.3.2026|12 PM|1/1/29|0099-12-31", day),
            "2026-04-03|2026-03-04|12:00:00|2029-01-01|-");
  EXPECT_EQ(toDate("2026-11-21"), Date{46347});
  EXPECT_EQ(toDate("1899-12-29 18:00:00"), Date{-1.75});
  EXPECT_EQ(each("11/21/2026|46347|yesterday|", [](const Value& value) { return toDate(value); }),
            "2026-11-21|2026-11-21|-|-");
  EXPECT_EQ(toDate(1.5), Date{1.5});
  EXPECT_EQ(toDate(2958466), std::nullopt);
  EXPECT_EQ(toDate(true), Date{-1});
  EXPECT_EQ(toDate(Date{2958465.5}), Date{2958465.5});
}

TEST(AssignedValue, IsReadByTheMarksOfALocale) {
  const auto marked = [](const char* point, const char* thousands) {
    return [=](const std::string& text) { return ownFormOfNumber(text, point, thousands); };
  };
  EXPECT_EQ(each("12,75|-1.234.567,5|1,5.5|", marked(",", ".")), "12.75|-1234567.5|-|-");
  EXPECT_EQ(each("12,75", marked(".", ",")), "1275");
  EXPECT_EQ(each("1.5|1,2,3", marked(",", "")), "-|-");
  EXPECT_EQ(each("1\u00a0234,5", marked(",", "\u00a0")), "1234.5");
}

TEST(AssignedValue, BecomesFlagFloatOrText) {
  EXPECT_EQ(toBoolean("TRUE"), true);
  EXPECT_EQ(toBoolean("false"), false);
  EXPECT_EQ(toBoolean("2"), true);
  EXPECT_EQ(toBoolean(0.0), false);
  EXPECT_EQ(toBoolean("maybe"), std::nullopt);
  EXPECT_EQ(toSingle("1e39"), std::nullopt);
  EXPECT_EQ(toSingle("-1.5"), -1.5F);
  EXPECT_EQ(toSingle(1.0F / 3), 1.0F / 3) << "not rounded to its text";
  EXPECT_EQ(toReal(0.1F), 0.1);
  EXPECT_EQ(toReal(16777215.0F), 16777215.0);
  EXPECT_EQ(toReal(1e20F), 1e20);
  EXPECT_EQ(toFieldText(0.1F), "0.1");
  EXPECT_EQ(toReal(true), -1.0);
  EXPECT_EQ(toReal(std::numeric_limits<double>::infinity()), std::nullopt);
  EXPECT_EQ(toFieldText(0.1), "0.1");
  EXPECT_EQ(toFieldText(true), "True");
  EXPECT_EQ(toFieldText(Date{46347}), "2026-11-21");
  EXPECT_EQ(toFieldText(Currency{15000}), "1.5");
  EXPECT_EQ(toFieldText(Opaque()), std::nullopt);
  EXPECT_EQ(utf16Length("h\u00e9\U0001F600"), 4U);
  EXPECT_EQ(utf16Length("\xED\xA0\xBD"), 1U) << "a lone surrogate";
}

TEST(TextMatcher, ComparesEveryStoredForm) {
  constexpr auto exact = CaseRule::exact;
  constexpr auto lowered = CaseRule::lowered;
  const std::tuple<const char*, CaseRule, const char*, bool> cases[] = {
      {"smith", lowered, "Smith", true},
      {"smith", exact, "Smith", false},
      {"Smith", exact, "Smith", true},
      {"SMITH", lowered, "smit", false},
      {"\u00c9T\u00c9", lowered, "\u00e9t\u00c9", true},
      {"\u0141\u00d3D\u0179", lowered, "\u0142\u00f3d\u017a", true},  // runs of every second character
      {"\u03a9\u0416", lowered, "\u03c9\u0436", true},
      {"\u00d7", lowered, "\u00f7", false},               // signs have no case
      {"x\xED\xB2\xA9", lowered, "X\xED\xB2\xA9", true},  // lone surrogates
      {"\xED\xB2\xA9", lowered, "\xED\xB2\xAA", false},
      {"", lowered, "", true},
      {"", exact, "x", false},
  };
  for (const auto& [text, rule, stored, matches] : cases) {
    const TextMatcher matcher(text, rule);
    EXPECT_EQ(matcher.matchesUtf8(stored), matches) << text;
    std::vector<std::uint8_t> wide;
    std::vector<std::uint8_t> narrow;
    for (const char16_t unit : wtf8ToUtf16(stored)) {
      wide.insert(wide.end(), {static_cast<std::uint8_t>(unit & 0xFF), static_cast<std::uint8_t>(unit >> 8)});
      narrow.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    }
    EXPECT_EQ(matcher.matchesUtf16(wide), matches) << text;
    if (std::string_view(stored).size() < 4) {  // the Latin-1 ones
      EXPECT_EQ(matcher.matchesLatin1(narrow), matches) << text;
    }
  }
  EXPECT_TRUE(sameName("Num\u00c9ro", "nUM\u00e9RO"));
}

}  // namespace
}  // namespace veltrano
