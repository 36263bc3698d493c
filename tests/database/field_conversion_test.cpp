#include "database/values/field_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>

#include "base/text/code_page.h"
#include "base/text/lower_case.h"
#include "base/text/wtf8.h"
#include "database/values/date_from_text.h"
#include "database/values/number_from_text.h"
#include "database/values/text_matcher.h"
#include "tests/split.h"

namespace veltrano {
namespace {

constexpr auto int64Least = std::numeric_limits<std::int64_t>::min();
constexpr auto int64Most = std::numeric_limits<std::int64_t>::max();

/// What becomes of each of the values, as texts with bars between them; "-" if it is refused.
template <typename Convert>
std::string eachValue(const std::vector<Value>& values, Convert convert) {
  std::string all;
  for (const Value& value : values) {
    const auto made = convert(value);
    all += (&value == values.data() ? "" : "|") + (made ? toFieldText(*made).value_or("no text") : "-");
  }
  return all;
}

/// The same of texts with bars between them.
template <typename Convert>
std::string each(std::string_view texts, Convert convert) {
  const auto all = tests::split(texts, '|');
  return eachValue({all.begin(), all.end()}, convert);
}

TEST(FieldToText, LosesNothing) {
  const auto text = [](const Value& value) { return toFieldText(value); };
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(
      eachValue({Date{0}, Date{0.75}, Date{1}, Date{36526.5}, Date{46347.586805555555}, Date{-657434}}, text),
      "00:00:00|18:00:00|1899-12-31|2000-01-01 12:00:00|2026-11-21 14:05:00|0100-01-01");
  EXPECT_EQ(eachValue({Date{2958466}, Date{-657435}, Date{nan}}, text), "-|-|-");
  EXPECT_EQ(eachValue({Date{-1.25}, Date{2.9999999}, Date{2958465.9999999}}, text),
            "1899-12-29 06:00:00|1900-01-02|9999-12-31 23:59:59")
      << "the fraction counts upwards, and is rounded to seconds";
  EXPECT_EQ(eachValue({Currency{0}, Currency{1}, Currency{-1}, Currency{125000}, Currency{int64Least}}, text),
            "0|0.0001|-0.0001|12.5|-922337203685477.5808");
  EXPECT_EQ(
      eachValue({Decimal{false, {~0U, ~0U, ~0U, 0}, 4}, Decimal{true, {5, 0, 0, 0}, 2}, Decimal{true, {}, 3}},
                text),
      "7922816251426433759354395.0335|-0.05|0");
  EXPECT_EQ(eachValue({0.1F, 0.1, true, Opaque()}, text), "0.1|0.1|True|-");
  std::string found;
  const auto guid = toGuid("{guid {00112233-4455-6677-8899-aabbccddeeff}}");
  ASSERT_TRUE(guid);
  guidToText(*guid, found);
  EXPECT_EQ(found, "{00112233-4455-6677-8899-AABBCCDDEEFF}");
  EXPECT_FALSE(toGuid("00112233-4455-6677-8899-AABBCCDDEEFG") ||
               toGuid("001122334-455-6677-8899-AABBCCDDEEFF"));
  Value::Bytes every(256);
  std::iota(every.begin(), every.end(), std::uint8_t{0});
  binaryToText(every, found);
  EXPECT_EQ(toBinary(found), every);
  EXPECT_FALSE(toBinary("\u3042"));
}

TEST(AssignedValue, BecomesWholeNumber) {
  const auto within = [](std::int64_t least, std::int64_t most) {
    return [=](const Value& value) { return toInteger(value, least, most); };
  };
  EXPECT_EQ(eachValue({2.5, 3.5, -2.5, Decimal{true, {25, 0, 0, 0}, 1}}, within(-10, 10)), "2|4|-2|-2");
  EXPECT_EQ(each(" 12.5 |13.5|256|-0.4||12 apples", within(0, 255)), "12|14|-|0|-|-");
  EXPECT_EQ(eachValue({true, Currency{25000}, Date{1.5}, Value(), Null(), Value::List{}}, within(0, 255)),
            "255|2|2|0|-|-");
  EXPECT_EQ(eachValue({true, "1e3"}, within(-32768, 32767)), "-1|1000");
  // Beyond what a double, and the 7 digits of a float's text, tell apart.
  const auto any = within(int64Least, int64Most);
  EXPECT_EQ(eachValue({"9223372036854775807", "-9223372036854775808", 16777217.0F}, any),
            "9223372036854775807|-9223372036854775808|16777216");
  EXPECT_EQ(eachValue({"9223372036854775808", 1e300}, any), "-|-");
}

TEST(AssignedValue, BecomesScaledNumberExactly) {
  const auto currency = [](const Value& value) { return toCurrency(value); };
  EXPECT_EQ(each("922337203685477.5807|922337203685477.5808", currency), "922337203685477.5807|-");
  EXPECT_EQ(each("0.00005|0.00015|0.00005000001|-0.1", currency), "0|0.0002|0.0001|-0.1");
  EXPECT_EQ(each("9999.99995", currency), "10000") << "the carry makes a new digit";
  EXPECT_EQ(eachValue({0.1, 0.1F}, currency), "0.1|0.1");
  const auto decimal = [](int precision, int scale) {
    return [=](const Value& value) { return toDecimal(value, precision, scale); };
  };
  EXPECT_EQ(eachValue({"99999999999999.9999", "99999999999999.99995", "abc",
                       Decimal{false, {0xA88A6D72, 0x1B66B, 0, 0}, 4}},
                      decimal(18, 4)),
            "99999999999999.9999|-|-|48204848211.0834");
  EXPECT_EQ(each("-1.005|-1.015|1e-300|123", decimal(4, 2)), "-1|-1.02|0|-");
  EXPECT_EQ(each("9999999999999999999999999999", decimal(28, 0)), "9999999999999999999999999999");
  EXPECT_EQ(eachValue({0.1F}, decimal(28, 20)), "0.1");
  EXPECT_EQ(eachValue({Decimal{true, {~0U, ~0U, 0, 0}, 6}}, decimal(28, 4)), "-18446744073709.5516");
  const auto allDigits = [](const Value& value) { return toDecimal(value); };
  EXPECT_EQ(each("12345678901234.5678|-1.500|1.2e3|1e28|ten", allDigits),
            "12345678901234.5678|-1.5|1200|-|-");
  EXPECT_EQ(each("0.0000000000000000000000000001|0.00000000000000000000000000001", allDigits),
            "0.0000000000000000000000000001|-");
  EXPECT_EQ(eachValue({Currency{int64Least}, 0.1F, Value()}, allDigits), "-922337203685477.5808|0.1|0");
}

// Without an order only the form in which dates are read back.
TEST(AssignedValue, BecomesDate) {
  const auto inOrder = [](std::optional<DateOrder> order) {
    return [=](const Value& text) {
      return order ? dateFromText(*text.as<std::string>(), *order) : dateFromText(*text.as<std::string>());
    };
  };
  const auto own = inOrder({});
  const auto month = inOrder(DateOrder::monthFirst);
  const auto day = inOrder(DateOrder::dayFirst);
  const auto date = [](const Value& value) { return toDate(value); };
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
  EXPECT_EQ(each("11/21/2026|46347|yesterday|", date), "2026-11-21|2026-11-21|-|-");
  EXPECT_EQ(eachValue({1.5, 2958466, true, Date{2958465.5}}, date),
            "1899-12-31 12:00:00|-|1899-12-29|9999-12-31 12:00:00");
}

TEST(AssignedValue, IsReadByTheMarksOfALocale) {
  const auto marked = [](const char* point, const char* thousands) {
    return [=](const Value& text) { return ownFormOfNumber(*text.as<std::string>(), point, thousands); };
  };
  EXPECT_EQ(each("12,75|-1.234.567,5|1,5.5|", marked(",", ".")), "12.75|-1234567.5|-|-");
  EXPECT_EQ(each("12,75", marked(".", ",")), "1275");
  EXPECT_EQ(each("1.5|1,2,3", marked(",", "")), "-|-");
  EXPECT_EQ(each("1\u00a0234,5", marked(",", "\u00a0")), "1234.5");
}

TEST(AssignedValue, BecomesFlagOrFloat) {
  const auto flag = [](const Value& value) { return toBoolean(value); };
  EXPECT_EQ(eachValue({"TRUE", "false", "2", 0.0, "maybe"}, flag), "True|False|True|False|-");
  EXPECT_EQ(toSingle("1e39"), std::nullopt);
  EXPECT_EQ(toSingle("-1.5"), -1.5F);
  EXPECT_EQ(toSingle(1.0F / 3), 1.0F / 3) << "not rounded to its text";
  EXPECT_EQ(toReal(0.1F), 0.1);
  EXPECT_EQ(toReal(16777215.0F), 16777215.0);
  EXPECT_EQ(toReal(1e20F), 1e20);
  EXPECT_EQ(toReal(true), -1.0);
  EXPECT_EQ(toReal(std::numeric_limits<double>::infinity()), std::nullopt);
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
    EXPECT_EQ(TextMatcher(text, rule).matchesUtf8(stored), matches) << text;
  }
  EXPECT_TRUE(sameName("Num\u00c9ro", "nUM\u00e9RO"));
}

}  // namespace
}  // namespace veltrano
