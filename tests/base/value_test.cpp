#include "veltrano/value.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace veltrano {
namespace {

// They would be flags, to which every pointer converts, and null a text that lies nowhere.
static_assert(!std::is_constructible_v<Value, const wchar_t*> &&
              !std::is_constructible_v<Value, const char8_t*> &&
              !std::is_constructible_v<Value, std::nullptr_t>);

TEST(Value, ConvertsAsAutomationDoes) {
  const std::tuple<const char*, Value, std::optional<double>, std::optional<std::string>> cases[] = {
      {"empty", Value(), 0.0, ""},
      {"null", Value(Null{}), std::nullopt, std::nullopt},
      {"true", Value(true), -1.0, "True"},
      {"integer", Value(12), 12.0, "12"},
      {"long, unsigned", Value(4294967295U), 4294967295.0, "4294967295"},
      {"largest", Value(18446744073709551615ULL), 18446744073709551615.0, "18446744073709551615"},
      {"float", Value(0.5), 0.5, "0.5"},
      {"currency", Value(Currency{-12345600}), -1234.56, "-1234.56"},
      {"whole currency", Value(Currency{9223372036854775807}), 922337203685477.625, "922337203685477.5807"},
      {"single", Value(0.1F), 0.1F, "0.1"},
      {"decimal", Value(Decimal{true, {0x764273FB, 0x1CC80259, 6, 0}, 18}), -112.754374653920834555,
       "-112.754374653920834555"},
      {"text", Value("7.5"), 7.5, "7.5"},
      {"word", Value("seven"), std::nullopt, "seven"},
      {"list", Value(Value::List{Value(1)}), std::nullopt, std::nullopt},
      {"object", Value(Opaque{}), std::nullopt, std::nullopt},
  };
  for (const auto& [label, value, number, text] : cases) {
    EXPECT_EQ(value.toDouble(), number) << label;
    EXPECT_EQ(value.toText(), text) << label;
  }
}

TEST(Value, WholeNumbersRoundToEvenAndMustFit) {
  EXPECT_EQ(Value(2.5).toInt16(), std::int16_t{2});
  EXPECT_TRUE(!Value(40000).toInt16() && Value(40000).toInt32() == 40000);
}

}  // namespace
}  // namespace veltrano
