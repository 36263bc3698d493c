#include "base/numbers/numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

namespace veltrano {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(PdfNumber, RoundsHalvesAwayFromZeroOnTheDecimalDigits) {
  struct Case {
    double value;
    int decimals;
    const char* text;
  };
  // 1.005 and 2.675 lie below their decimal text in binary; the decimal digits must decide.
  const Case cases[] = {
      {1234.5, 2, "1234.50"},
      {0, 2, "0.00"},
      {-0.0, 2, "0.00"},
      {-0.004, 2, "0.00"},
      {1.005, 2, "1.01"},
      {2.675, 2, "2.68"},
      {-1.005, 2, "-1.01"},
      {0.125, 2, "0.13"},
      {0.135, 2, "0.14"},
      {-0.005, 2, "-0.01"},
      {0.0049999, 2, "0.00"},
      {999.995, 2, "1000.00"},
      {0.5, 0, "1."},
      {12, 0, "12."},
      {128.0 / 255, 3, "0.502"},
      {1, 3, "1.000"},
      {841.89, 2, "841.89"},
      {1e9, 2, "1000000000.00"},
      {1e20, 2, "100000000000000000000.00"},
      {123456789012.345, 2, "123456789012.35"},
      {1e-300, 2, "0.00"},
      {0.1 + 0.2, 15, "0.300000000000000"},
      {9999999.995, 2, "10000000.00"},
      {10000000.005, 2, "10000000.01"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(formatPdfNumber(c.value, c.decimals).view(), c.text) << c.value;
  }
  for (const double value : {infinity, -infinity, notANumber}) {
    EXPECT_TRUE(formatPdfNumber(value, 2).view().empty());
  }
  EXPECT_EQ(formatPdfNumber(-std::numeric_limits<double>::max(), 15).view().size(), 1U + 309 + 1 + 15);
}

// The quick path must never differ from rounding the 15 significant digits, which printf gives independently.
TEST(PdfNumber, AgreesWithFifteenDigitsEverywhere) {
  std::mt19937_64 random(20);
  std::uniform_real_distribution<double> spread(-2000, 2000);
  for (int i = 0; i < 200000; ++i) {
    double value = spread(random);
    if (i % 2 == 0) {
      value = std::round(value * 1000) / 1000;  // many of these are ties at two decimals
    }
    std::array<char, 64> digits;
    std::snprintf(digits.data(), digits.size(), "%.10f", std::stod([&] {
                    std::array<char, 64> fifteen;
                    std::snprintf(fifteen.data(), fifteen.size(), "%.15g", value);
                    return std::string(fifteen.data());
                  }()));
    const std::string text(digits.data());
    const std::size_t point = text.find('.');
    const bool up = text[point + 3] >= '5';
    long long hundredths = std::stoll(text.substr(text[0] == '-' ? 1 : 0, point - (text[0] == '-' ? 1 : 0)) +
                                      text.substr(point + 1, 2)) +
                           (up ? 1 : 0);
    std::snprintf(digits.data(), digits.size(), "%s%lld.%02lld", value < 0 && hundredths != 0 ? "-" : "",
                  hundredths / 100, hundredths % 100);
    ASSERT_EQ(formatPdfNumber(value, 2).view(), digits.data()) << value;
  }
}

TEST(GeneralNumber, FollowsTheRuntimesText) {
  struct Case {
    double value;
    const char* text;
  };
  const Case cases[] = {
      {0, "0"},
      {-0.0, "0"},
      {51.5, "51.5"},
      {0.1 + 0.2, "0.3"},
      {0.00001, "1E-05"},
      {0.0001, "0.0001"},
      {0.00012, "0.00012"},
      {-0.000012, "-1.2E-05"},
      {1e15, "1E+15"},
      {999999999999999, "999999999999999"},
      {1.5e100, "1.5E+100"},
      {123456.789, "123456.789"},
      {-2.2945, "-2.2945"},
      {1.0 / 3, "0.333333333333333"},
      {100, "100"},
      {0.5, "0.5"},
      {999999999999999.9, "1E+15"},
      {5e-324, "4.94065645841247E-324"},
      {1e-310, "9.99999999999997E-311"},
      {2.2250738585072014e-308, "2.2250738585072E-308"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(generalNumberText(c.value).view(), c.text);
  }
  EXPECT_TRUE(generalNumberText(notANumber).view().empty());
}

// %.15g differs from the runtime's text only in its exponent form, which these magnitudes do not reach.
TEST(GeneralNumber, AgreesWithFifteenDigitsEverywhere) {
  std::mt19937_64 random(21);
  std::uniform_real_distribution<double> spread(-180, 180);
  for (int i = 0; i < 200000; ++i) {
    double value = spread(random);
    if (i % 4 != 0) {
      const double unit = std::pow(10, i % 10);
      value = std::round(value * unit) / unit;
    }
    if (std::fabs(value) < 0.0001) {
      continue;
    }
    std::array<char, 64> digits;
    std::snprintf(digits.data(), digits.size(), "%.15g", value);
    ASSERT_EQ(generalNumberText(value).view(), digits.data());
  }
}

TEST(SingleNumber, HasSevenDigits) {
  EXPECT_EQ(singleNumberText(4320050.0F).view(), "4320050");
  EXPECT_EQ(singleNumberText(0.1F).view(), "0.1");
  EXPECT_EQ(singleNumberText(8639999.5F).view(), "8640000");
  EXPECT_EQ(singleNumberText(1e7F).view(), "1E+07");
  EXPECT_EQ(singleNumberText(1e-45F).view(), "1.401298E-45");
}

TEST(IntegerText, CoversTheWholeRange) {
  EXPECT_EQ(integerText(0).view(), "0");
  EXPECT_EQ(integerText(-105).view(), "-105");
  EXPECT_EQ(integerText(INT64_MIN).view(), "-9223372036854775808");
  EXPECT_EQ(integerText(INT64_MAX).view(), "9223372036854775807");
}

TEST(Rounding, TiesGoToEvenAndOverflowIsNothing) {
  struct Case {
    double value;
    std::optional<std::int16_t> rounded;
  };
  const Case cases[] = {
      {2.5, std::int16_t{2}},         {3.5, std::int16_t{4}},   {1.5, std::int16_t{2}},
      {-2.5, std::int16_t{-2}},       {-0.5, std::int16_t{0}},  {0.49999999999999994, std::int16_t{0}},
      {32767.4, std::int16_t{32767}}, {32767.5, std::nullopt},  {-32768.5, std::int16_t{-32768}},
      {-32769, std::nullopt},         {infinity, std::nullopt}, {notANumber, std::nullopt},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(roundToInt16(c.value), c.rounded) << c.value;
  }
  EXPECT_EQ(roundToInt32(2147483647.5), std::nullopt);
  EXPECT_EQ(roundToInt32(-2147483648.5), INT32_MIN);
}

TEST(ParseNumber, TakesOneInvariantNumber) {
  EXPECT_EQ(parseNumber(" -12.5e3 "), -12500.0);
  EXPECT_EQ(parseNumber("+.5"), 0.5);
  for (const char* text :
       {"", " ", "abc", "1,5", "1 2", "inf", "nan", "-inf", "--1", "+-1", "0x10", "1e", "-"}) {
    EXPECT_EQ(parseNumber(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace veltrano
