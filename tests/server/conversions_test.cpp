// Between variants and values, both ways.

#include "server/com/conversions.h"

#include <gtest/gtest.h>

#include "host.h"

namespace veltrano::tests {

namespace {

using server::TextForm;

Value valueOf(Argument argument) {
  return server::value(argument.get(), TextForm::ansi);
}

TEST(Conversions, KeepTheKind) {
  Argument decimal;
  decimal->decVal.scale = 28;
  decimal->decVal.sign = DECIMAL_NEG;
  decimal->decVal.Hi32 = 1;
  decimal->decVal.Lo64 = 0xAB54A98CEB1F0AD2;
  decimal->vt = VT_DECIMAL;
  EXPECT_EQ(Value(), valueOf(Argument()));
  EXPECT_EQ(Value(Null{}), valueOf(Argument::of(VT_NULL)));
  EXPECT_EQ(Value(true), valueOf(true));
  EXPECT_EQ(Value(7), valueOf(7));
  EXPECT_EQ(Value(std::int64_t{4294967295}), valueOf(Argument::of(VT_UI4, 0xFFFFFFFF)));
  EXPECT_EQ(Value(0.5), valueOf(0.5));
  EXPECT_EQ(Value(Date{2.5}), valueOf(Argument::of(VT_DATE, 2.5)));
  EXPECT_EQ(Value(Currency{12345}), valueOf(Argument::of(VT_CY, std::int64_t{12345})));
  EXPECT_EQ(Value(0.1F), valueOf(Argument::of(VT_R4, 0.1F)));
  EXPECT_EQ(Value(Decimal{true, {0xEB1F0AD2, 0xAB54A98C, 0x1, 0}, 28}), valueOf(decimal));
  EXPECT_EQ(Value("\xE9"), valueOf(L"\u00e9"));
  EXPECT_EQ(Value("\xC3\xA9"), server::value(Argument(L"\u00e9").get(), TextForm::utf8));
  EXPECT_EQ(Value("\xED\xA0\xBDx"), server::value(Argument(L"\xD83Dx").get(), TextForm::wtf8));
  EXPECT_EQ(Value(Value::Doubles{1, 2}), valueOf(Argument::doubles({1, 2})));
  EXPECT_EQ(Value(Value::List{1, Value::List{"a"}}), valueOf(Argument{1, Argument{L"a"}}));
  Argument itself;
  itself->vt = VT_BYREF | VT_VARIANT;
  itself->pvarVal = itself.get();
  EXPECT_EQ(Value(Opaque{}), server::value(itself.get(), TextForm::ansi));
  itself->vt = VT_EMPTY;
}

TEST(Conversions, ReadArraysOfAnyTypeAndDimension) {
  SAFEARRAYBOUND bounds[] = {{2, 1}, {3, 0}};
  const Argument matrix = Argument::of(VT_ARRAY | VT_I2, SafeArrayCreate(VT_I2, 2, bounds));
  for (LONG row = 0; row < 2; ++row) {
    for (LONG column = 0; column < 3; ++column) {
      LONG index[] = {row + 1, column};
      SHORT number = static_cast<SHORT>(10 * row + column);
      SafeArrayPutElement(matrix->parray, index, &number);
    }
  }
  EXPECT_EQ(Value(Value::List{Value::List{0, 1, 2}, Value::List{10, 11, 12}}), valueOf(matrix));
}

TEST(Conversions, CarryEveryByteAndEmbeddedZeros) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  BSTR text = server::newText(bytes, TextForm::ansi);
  EXPECT_EQ(256U, SysStringLen(text));
  EXPECT_EQ(bytes, server::ansi(&text));
  EXPECT_TRUE(server::path(&text).empty()) << "no file has a name with a zero in it";
  SysFreeString(text);
  EXPECT_EQ("", server::ansi(nullptr));
  BSTR nothing = nullptr;
  EXPECT_EQ("", server::utf8(&nothing));
}

}  // namespace

}  // namespace veltrano::tests
