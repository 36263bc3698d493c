// Between variants and values, both ways.

#include "server/com/conversions.h"

#include <gtest/gtest.h>

#include "host.h"

namespace veltrano::tests {

namespace {

using server::TextForm;

TEST(Conversions, KeepTheKind) {
  Argument decimal;
  decimal->decVal.scale = 28;
  decimal->decVal.sign = DECIMAL_NEG;
  decimal->decVal.Hi32 = 1;
  decimal->decVal.Lo64 = 0xAB54A98CEB1F0AD2;
  decimal->vt = VT_DECIMAL;
  SAFEARRAYBOUND bounds[] = {{2, 1}, {3, 0}};
  const Argument matrix = Argument::of(VT_ARRAY | VT_I2, SafeArrayCreate(VT_I2, 2, bounds));
  // The leftmost dimension lies together.
  for (SHORT i = 0; i < 6; ++i) static_cast<SHORT*>(matrix->parray->pvData)[i] = i;
  Argument itself;
  itself->vt = VT_BYREF | VT_VARIANT;
  itself->pvarVal = itself.get();
  const std::pair<Value, Argument> rows[] = {
      {{}, {}},
      {Null{}, Argument::of(VT_NULL)},
      {true, true},
      {7, 7},
      {std::int64_t{4294967295}, Argument::of(VT_UI4, 0xFFFFFFFF)},
      {0.5, 0.5},
      {0.1F, Argument::of(VT_R4, 0.1F)},
      {Date{2.5}, Argument::of(VT_DATE, 2.5)},
      {Currency{12345}, Argument::of(VT_CY, std::int64_t{12345})},
      {Decimal{true, {0xEB1F0AD2, 0xAB54A98C, 0x1, 0}, 28}, decimal},
      {"\xE9", L"\u00e9"},
      {Value::Doubles{1, 2}, Argument::doubles({1, 2})},
      {Value::List{1, Value::List{"a"}}, Argument{1, Argument{L"a"}}},
      {Value::List{Value::List{0, 2, 4}, Value::List{1, 3, 5}}, matrix}};
  for (auto [expected, given] : rows) EXPECT_EQ(expected, server::value(given.get(), TextForm::ansi));
  EXPECT_EQ(Value(Opaque{}), server::value(itself.get(), TextForm::ansi));
  itself->vt = VT_EMPTY;
}

TEST(Conversions, CarryEveryByteAndEmbeddedZeros) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  Argument text = Argument::of(VT_BSTR, server::newText(bytes, TextForm::ansi));
  EXPECT_EQ(256U, SysStringLen(text->bstrVal));
  EXPECT_EQ(bytes, server::ansi(&text->bstrVal));
  EXPECT_TRUE(server::path(&text->bstrVal).empty()) << "no file has a name with a zero in it";
}

}  // namespace

}  // namespace veltrano::tests
