#include "database/values/field_conversion.h"

#include <gtest/gtest.h>

#include <limits>

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

TEST(FieldToText, WritesDates) {
  const struct {
    double days;
    const char* text;
  } cases[] = {
      {0, "00:00:00"},
      {0.75, "18:00:00"},
      {1, "1899-12-31"},
      {-1.25, "1899-12-29 06:00:00"},  // the fraction counts upwards
      {36526.5, "2000-01-01 12:00:00"},
      {46347.586805555555, "2026-11-21 14:05:00"},
      {2.9999999, "1900-01-02"},  // less than half a second before midnight
      {2958465.9999999, "9999-12-31 23:59:59"},
      {-657434, "0100-01-01"},
      {2958466, ""},
      {-657435, ""},
      {std::numeric_limits<double>::quiet_NaN(), ""},
  };
  for (const auto& [days, expected] : cases) {
    std::string text = "left over";
    EXPECT_EQ(dateToText(Date{days}, text), *expected != '\0') << days;
    EXPECT_EQ(text, expected) << days;
  }
}

TEST(FieldToText, WritesScaledNumbersWithoutLosingDigits) {
  const std::pair<std::int64_t, const char*> amounts[] = {
      {0, "0"},         {1, "0.0001"},    {-1, "-0.0001"},
      {125000, "12.5"}, {-100000, "-10"}, {int64Least, "-922337203685477.5808"},
  };
  std::string text;
  for (const auto& [amount, expected] : amounts) {
    currencyToText(Currency{amount}, text);
    EXPECT_EQ(text, expected);
  }
  // 2^96 - 1 with 4 places, its negative, and minus zero.
  Decimal decimal{.negative = false, .magnitude = {~0U, ~0U, ~0U, 0}, .scale = 4};
  decimalToText(decimal, text);
  EXPECT_EQ(text, "7922816251426433759354395.0335");
  decimalToText({.negative = true, .magnitude = {5, 0, 0, 0}, .scale = 2}, text);
  EXPECT_EQ(text, "-0.05");
  decimalToText({.negative = true, .magnitude = {}, .scale = 3}, text);
  EXPECT_EQ(text, "0");
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
  const struct {
    Value value;
    std::int64_t least, most;
    std::optional<std::int64_t> expected;
  } cases[] = {
      {2.5, -10, 10, 2},
      {3.5, -10, 10, 4},
      {-2.5, -10, 10, -2},
      {" 12.5 ", 0, 255, 12},
      {"13.5", 0, 255, 14},
      {"256", 0, 255, {}},
      {"-0.4", 0, 255, 0},
      {"9223372036854775807", int64Least, int64Most, int64Most},  // beyond what a double tells apart
      {"-9223372036854775808", int64Least, int64Most, int64Least},
      {"9223372036854775808", int64Least, int64Most, {}},
      {"1e3", 0, 5000, 1000},
      {true, -32768, 32767, -1},
      {true, 0, 255, 255},
      {Currency{25000}, 0, 255, 2},
      {Date{1.5}, 0, 255, 2},
      {16777217.0F, 0, int64Most, 16777216},  // a float's whole number, beyond the 7 digits of its text
      {Decimal{true, {25, 0, 0, 0}, 1}, -10, 10, -2},
      {1e300, int64Least, int64Most, {}},
      {"", 0, 255, {}},
      {"12 apples", 0, 255, {}},
      {Value(), 0, 255, 0},
      {Null(), 0, 255, {}},
      {Value::List{}, 0, 255, {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(toInteger(c.value, c.least, c.most), c.expected) << c.value.toText().value_or("-");
  }
}

TEST(AssignedValue, BecomesScaledNumberExactly) {
  EXPECT_EQ(toCurrency("922337203685477.5807"), Currency{int64Most});
  EXPECT_EQ(toCurrency("922337203685477.5808"), std::nullopt);
  EXPECT_EQ(toCurrency("0.00005"), Currency{0});
  EXPECT_EQ(toCurrency("0.00015"), Currency{2});
  EXPECT_EQ(toCurrency("0.00005000001"), Currency{1});
  EXPECT_EQ(toCurrency("-0.1"), Currency{-1000});
  EXPECT_EQ(toCurrency(0.1), Currency{1000});
  EXPECT_EQ(toCurrency("9999.99995"), Currency{100000000});  // the carry makes a new digit
  EXPECT_EQ(toCurrency(0.1F), Currency{1000});
  const struct {
    Value value;
    int precision, scale;
    const char* expected;  // null: refused
  } cases[] = {
      {"9999999999999999999999999999", 28, 0, "9999999999999999999999999999"},
      {"99999999999999.9999", 18, 4, "99999999999999.9999"},
      {"99999999999999.99995", 18, 4, nullptr},
      {"-1.005", 5, 2, "-1"},
      {"-1.015", 5, 2, "-1.02"},
      {123, 5, 3, nullptr},
      {"1e-300", 5, 3, "0"},
      {Decimal{false, {0xA88A6D72, 0x1B66B, 0, 0}, 4}, 18, 4, "48204848211.0834"},
      {Decimal{true, {0xFFFFFFFF, 0xFFFFFFFF, 0, 0}, 6}, 28, 4, "-18446744073709.5516"},
      {0.1F, 28, 20, "0.1"},
      {"abc", 5, 3, nullptr},
  };
  for (const auto& c : cases) {
    const auto decimal = toDecimal(c.value, c.precision, c.scale);
    ASSERT_EQ(decimal.has_value(), c.expected != nullptr) << c.value.toText().value_or("-");
    if (decimal) {
      std::string text;
      decimalToText(*decimal, text);
      EXPECT_EQ(text, c.expected);
    }
  }
}

TEST(AssignedValue, BecomesDecimalWithAllItsDigits) {
  const std::pair<Value, const char*> cases[] = {
      {"12345678901234.5678", "12345678901234.5678"},
      {"-1.500", "-1.5"},
      {"1.2e3", "1200"},
      {"0.0000000000000000000000000001", "0.0000000000000000000000000001"},
      {"0.00000000000000000000000000001", nullptr},
      {"1e28", nullptr},
      {0.1F, "0.1"},
      {Currency{int64Least}, "-922337203685477.5808"},
      {Value(), "0"},
      {"ten", nullptr},
  };
  for (const auto& [value, expected] : cases) {
    const auto decimal = toDecimal(value);
    ASSERT_EQ(decimal.has_value(), expected != nullptr) << value.toText().value_or("-");
    if (decimal) {
      EXPECT_EQ(Value(*decimal).toText(), expected);
    }
  }
}

// Without an order only the form in which dates are read back.
TEST(AssignedValue, BecomesDate) {
  constexpr auto month = DateOrder::monthFirst;
  constexpr auto day = DateOrder::dayFirst;
  const struct {
    const char* text;
    std::optional<DateOrder> order;
    std::optional<double> expected;
  } texts[] = {
      {"2026-11-21", {}, 46347},
      {"2026-11-21T06:00", {}, 46347.25},
      {"1899-12-29 18:00:00", {}, -1.75},
      {"06:00:00", {}, 0.25},
      {"11/21/2026", {}, {}},
      {"21.11.2026", {}, {}},
      {"2026/11/21", {}, {}},
      {"6:00 am", {}, {}},
      {"11/21/2026", month, 46347},
      {"21/11/2026", month, 46347},
      {"21.11.2026", month, 46347},
      {"3/4/2026", month, 46085},
      {"3/4/2026", day, 46115},
      {"4.3.2026", month, 46085},
      {"4.3.2026", day, 46085},
      {"6:00 am", month, 0.25},
      {"12 PM", day, 0.5},
      {"12:00 am", month, 0},
      {"1/1/30", month, 10959},
      {"1/1/29", day, 47119},
      {"2026-02-29", month, {}},
      {"2026-11-21 24:00", month, {}},
      {"13:00 pm", month, {}},
      {"0099-12-31", day, {}},
  };
  for (const auto& [text, order, expected] : texts) {
    const auto date = order ? dateFromText(text, *order) : dateFromText(text);
    ASSERT_EQ(date.has_value(), expected.has_value()) << text;
    EXPECT_DOUBLE_EQ(date.value_or(Date()).days, expected.value_or(0)) << text;
  }
  const std::pair<Value, std::optional<double>> cases[] = {
      {"2026-11-21", 46347},
      {"11/21/2026", 46347},
      {"yesterday", {}},
      {"", {}},
      {1.5, 1.5},
      {"46347", 46347},
      {2958466, {}},
      {true, -1},
      {Date{2958465.5}, 2958465.5},
  };
  for (const auto& [value, expected] : cases) {
    const auto date = toDate(value);
    ASSERT_EQ(date.has_value(), expected.has_value()) << value.toText().value_or("-");
    EXPECT_DOUBLE_EQ(date.value_or(Date()).days, expected.value_or(0)) << value.toText().value_or("-");
  }
}

TEST(AssignedValue, IsReadByTheMarksOfALocale) {
  const struct {
    const char* text;
    const char* point;
    const char* thousands;
    std::optional<std::string> expected;
  } cases[] = {
      {"12,75", ",", ".", "12.75"},
      {"-1.234.567,5", ",", ".", "-1234567.5"},
      {"12,75", ".", ",", "1275"},
      {"1.5", ",", "", {}},
      {"1\u00a0234,5", ",", "\u00a0", "1234.5"},
      {"1,2,3", ",", "", {}},
      {"1,5.5", ",", ".", {}},
      {"", ",", ".", {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ownFormOfNumber(c.text, c.point, c.thousands), c.expected) << c.text;
  }
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
  const struct {
    const char* wanted;
    CaseRule rule;
    const char* stored;
    bool matches;
  } cases[] = {
      {"smith", CaseRule::lowered, "Smith", true},
      {"smith", CaseRule::exact, "Smith", false},
      {"Smith", CaseRule::exact, "Smith", true},
      {"SMITH", CaseRule::lowered, "smit", false},
      {"\u00c9T\u00c9", CaseRule::lowered, "\u00e9t\u00c9", true},
      {"\u0141\u00d3D\u0179", CaseRule::lowered, "\u0142\u00f3d\u017a",
       true},  // runs of every second character
      {"\u03a9\u0416", CaseRule::lowered, "\u03c9\u0436", true},
      {"\u00d7", CaseRule::lowered, "\u00f7", false},               // signs amid the letters have no case
      {"x\xED\xB2\xA9", CaseRule::lowered, "X\xED\xB2\xA9", true},  // lone surrogates
      {"\xED\xB2\xA9", CaseRule::lowered, "\xED\xB2\xAA", false},
      {"", CaseRule::lowered, "", true},
      {"", CaseRule::exact, "x", false},
  };
  for (const auto& c : cases) {
    const TextMatcher matcher(c.wanted, c.rule);
    EXPECT_EQ(matcher.matchesUtf8(c.stored), c.matches) << c.wanted;
    std::vector<std::uint8_t> wide;
    std::vector<std::uint8_t> narrow;
    for (const char16_t unit : wtf8ToUtf16(c.stored)) {
      wide.push_back(static_cast<std::uint8_t>(unit & 0xFF));
      wide.push_back(static_cast<std::uint8_t>(unit >> 8));
      narrow.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    }
    EXPECT_EQ(matcher.matchesUtf16(wide), c.matches) << c.wanted;
    if (std::string_view(c.stored).size() < 4) {  // the Latin-1 ones
      EXPECT_EQ(matcher.matchesLatin1(narrow), c.matches) << c.wanted;
    }
  }
  EXPECT_TRUE(sameName("Num\u00c9ro", "nUM\u00e9RO"));
}

}  // namespace
}  // namespace veltrano
