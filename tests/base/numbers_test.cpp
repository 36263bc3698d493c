#include "base/numbers/numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

#include "tests/split.h"

namespace veltrano {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double numberOf(const std::string& text) {
  return std::strtod(text.c_str(), nullptr);
}

TEST(PdfNumber, RoundsHalvesAwayFromZeroOnTheDecimalDigits) {
  // A number, its decimals and its text. 1.005 and 2.675 lie below their decimal text in binary; the decimal
  // digits must decide.
  for (const auto& row :
       tests::table("-0.0 2 0.00; -0.004 2 0.00; 1.005 2 1.01; 2.675 2 2.68; -1.005 2 -1.01; -0.005 2 -0.01;"
                    "0.0049999 2 0.00; 999.995 2 1000.00; 0.5 0 1.; 12 0 12.; 0.50196078431372548 3 0.502;"
                    "1 3 1.000; 1e20 2 100000000000000000000.00; 123456789012.345 2 123456789012.35;"
                    "1e-300 2 0.00; 0.30000000000000004 15 0.300000000000000; 10000000.005 2 10000000.01"))
    EXPECT_EQ(formatPdfNumber(numberOf(row[0]), std::stoi(row[1])).view(), row[2]) << row[0];
  for (const double value : {infinity, -infinity, notANumber})
    EXPECT_TRUE(formatPdfNumber(value, 2).view().empty());
  EXPECT_EQ(formatPdfNumber(-std::numeric_limits<double>::max(), 15).view().size(), 1U + 309 + 1 + 15);
}

std::string printed(const char* format, double value) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

// The quick path must never differ from rounding the 15 significant digits, which printf gives independently.
TEST(PdfNumber, AgreesWithFifteenDigitsEverywhere) {
  std::mt19937_64 random(20);
  std::uniform_real_distribution<double> spread(-2000, 2000);
  for (int i = 0; i < 200000; ++i) {
    double value = spread(random);
    if (i % 2 == 0) value = std::round(value * 1000) / 1000;  // many of these are ties at two decimals
    // Rounds up if the digit after the hundredths is at least 5.
    const std::string text = printed("%.10f", std::fabs(numberOf(printed("%.15g", value))));
    const std::size_t point = text.find('.');
    const long long hundredths =
        std::stoll(text.substr(0, point) + text.substr(point + 1, 2)) + (text[point + 3] >= '5' ? 1 : 0);
    const std::string whole =
        std::to_string(hundredths / 100) + "." + std::to_string(100 + hundredths % 100).substr(1);
    ASSERT_EQ(formatPdfNumber(value, 2).view(), (value < 0 && hundredths != 0 ? "-" : "") + whole) << value;
  }
}

TEST(GeneralNumber, FollowsTheRuntimesText) {
  for (const auto& row :
       tests::table("0 0; -0.0 0; 0.30000000000000004 0.3; 0.00001 1E-05; 0.0001 0.0001; -0.000012 -1.2E-05; "
                    "1e15 1E+15;"
                    "999999999999999 999999999999999; 1.5e100 1.5E+100; 999999999999999.9 1E+15;"
                    "5e-324 4.94065645841247E-324; 2.2250738585072014e-308 2.2250738585072E-308"))
    EXPECT_EQ(generalNumberText(numberOf(row[0])).view(), row[1]);
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
    if (std::fabs(value) < 0.0001) continue;
    ASSERT_EQ(generalNumberText(value).view(), printed("%.15g", value));
  }
}

TEST(Rounding, TiesGoToEvenAndOverflowIsNothing) {
  for (const auto& row :
       tests::table("2.5 2; 3.5 4; -2.5 -2; 0.49999999999999994 0; 32767.4 32767; 32767.5 none;"
                    "-32768.5 -32768; -32769 none; inf none; nan none")) {
    const auto rounded = roundToInt16(numberOf(row[0]));
    EXPECT_EQ(rounded ? std::to_string(*rounded) : "none", row[1]) << row[0];
  }
  EXPECT_EQ(roundToInt32(2147483647.5), std::nullopt);
  EXPECT_EQ(roundToInt32(-2147483648.5), INT32_MIN);
}

TEST(ParseNumber, TakesOneInvariantNumber) {
  EXPECT_EQ(parseNumber(" -12.5e3 "), -12500.0);
  EXPECT_EQ(parseNumber("+.5"), 0.5);
  for (const char* text :
       {"", " ", "abc", "1,5", "1 2", "inf", "nan", "-inf", "--1", "+-1", "0x10", "1e", "-"})
    EXPECT_EQ(parseNumber(text), std::nullopt) << text;
}

}  // namespace
}  // namespace veltrano
