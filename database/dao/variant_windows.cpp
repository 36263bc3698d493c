#include "database/dao/variant_windows.h"

#include <algorithm>
#include <limits>

#include "base/text/wtf8.h"
#include "database/values/field_to_text.h"

namespace veltrano::dao {

namespace {

/// UTF-8 with unpaired surrogates kept.
std::string utf8Of(BSTR text) {
  static_assert(sizeof(OLECHAR) == sizeof(char16_t));
  // A null string is an empty one. OLECHAR is wchar_t, so the units are copied rather than cast.
  return text == nullptr ? std::string() : utf16ToWtf8(std::u16string(text, text + SysStringLen(text)));
}

Decimal decimalOf(const DECIMAL& value) {
  return {.negative = (value.sign & DECIMAL_NEG) != 0,
          .magnitude = {static_cast<std::uint32_t>(value.Lo64), static_cast<std::uint32_t>(value.Lo64 >> 32),
                        static_cast<std::uint32_t>(value.Hi32), 0},
          .scale = value.scale};
}

Variant variantOfDecimal(const Decimal& number) {
  Variant result;
  DECIMAL& decimal = result.raw().decVal;
  decimal.scale = number.scale;
  decimal.sign = number.negative ? DECIMAL_NEG : 0;
  decimal.Lo32 = number.magnitude[0];
  decimal.Mid32 = number.magnitude[1];
  decimal.Hi32 = number.magnitude[2];
  result.raw().vt = VT_DECIMAL;  // shares its place with a part of the number
  return result;
}

bool bytesToText(SAFEARRAY* array, std::string& text) {
  LONG first = 0;
  LONG last = -1;
  void* bytes = nullptr;
  if (array == nullptr || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &first)) ||
      FAILED(SafeArrayGetUBound(array, 1, &last)) || FAILED(SafeArrayAccessData(array, &bytes))) {
    return false;
  }
  const auto count = static_cast<std::size_t>(std::max<LONGLONG>(LONGLONG{last} - first + 1, 0));
  binaryToText({static_cast<const std::uint8_t*>(bytes), count}, text);
  SafeArrayUnaccessData(array);
  return true;
}

std::optional<Variant> variantOfBytes(const Value::Bytes& bytes) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  void* target = nullptr;
  if (array == nullptr || FAILED(SafeArrayAccessData(array, &target))) {
    SafeArrayDestroy(array);
    return std::nullopt;
  }
  std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(target));
  SafeArrayUnaccessData(array);
  Variant result;
  result.raw().vt = VT_ARRAY | VT_UI1;
  result.raw().parray = array;
  return result;
}

Variant variantOfInteger(std::int64_t number) {
  if (number >= std::numeric_limits<LONG>::min() && number <= std::numeric_limits<LONG>::max()) {
    return Variant::number(static_cast<long>(number));
  }
  // DAO knows no 64-bit integers; a decimal holds them exactly.
  Variant result;
  VarDecFromI8(number, &result.raw().decVal);
  result.raw().vt = VT_DECIMAL;
  return result;
}

}  // namespace

Variant& Variant::operator=(Variant&& other) noexcept {
  if (this != &other) {
    VariantClear(&value_);
    value_ = other.value_;
    VariantInit(&other.value_);
  }
  return *this;
}

Variant Variant::flag(bool value) {
  Variant result;
  result.value_.vt = VT_BOOL;
  result.value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return result;
}

Variant Variant::number(long value) {
  Variant result;
  result.value_.vt = VT_I4;
  result.value_.lVal = value;
  return result;
}

Variant Variant::text(std::string_view utf8) {
  const std::u16string units = wtf8ToUtf16(utf8);
  const std::wstring wide(units.begin(), units.end());
  Variant result;
  result.value_.vt = VT_BSTR;
  result.value_.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  return result;
}

Variant Variant::missing() {
  Variant result;
  result.value_.vt = VT_ERROR;
  result.value_.scode = DISP_E_PARAMNOTFOUND;
  return result;
}

std::optional<Variant> Variant::from(const Value& value) {
  Variant result;
  if (value.isEmpty()) {
    return result;
  }
  if (value.isNull()) {
    result.value_.vt = VT_NULL;
    return result;
  }
  if (const auto* truth = value.as<bool>()) {
    return flag(*truth);
  }
  if (const auto* whole = value.as<std::int64_t>()) {
    return variantOfInteger(*whole);
  }
  if (const auto* real = value.as<double>()) {
    result.value_.vt = VT_R8;
    result.value_.dblVal = *real;
    return result;
  }
  if (const auto* single = value.as<float>()) {
    result.value_.vt = VT_R4;
    result.value_.fltVal = *single;
    return result;
  }
  if (const auto* decimal = value.as<Decimal>()) {
    return variantOfDecimal(*decimal);
  }
  if (const auto* date = value.as<Date>()) {
    result.value_.vt = VT_DATE;
    result.value_.date = date->days;
    return result;
  }
  if (const auto* amount = value.as<Currency>()) {
    result.value_.vt = VT_CY;
    result.value_.cyVal.int64 = amount->tenThousandths;
    return result;
  }
  if (const auto* utf8 = value.as<std::string>()) {
    return text(*utf8);
  }
  if (const auto* bytes = value.as<Value::Bytes>()) {
    return variantOfBytes(*bytes);
  }
  return std::nullopt;
}

bool Variant::toText(std::string& text) const {
  text.clear();
  switch (value_.vt) {
    case VT_EMPTY:
      return true;
    case VT_NULL:
      return false;
    case VT_BSTR:
      text = utf8Of(value_.bstrVal);
      return true;
    case VT_BOOL:
      booleanToText(value_.boolVal != VARIANT_FALSE, text);
      return true;
    case VT_UI1:
      integerToText(value_.bVal, text);
      return true;
    case VT_I2:
      integerToText(value_.iVal, text);
      return true;
    case VT_I4:
      integerToText(value_.lVal, text);
      return true;
    case VT_I8:
      integerToText(value_.llVal, text);
      return true;
    case VT_R4:
      singleToText(value_.fltVal, text);
      return true;
    case VT_R8:
      doubleToText(value_.dblVal, text);
      return true;
    case VT_CY:
      currencyToText(Currency{value_.cyVal.int64}, text);
      return true;
    case VT_DECIMAL:
      decimalToText(decimalOf(value_.decVal), text);
      return true;
    case VT_DATE:
      return dateToText(Date{value_.date}, text);
    case VT_ARRAY | VT_UI1:
      return bytesToText(value_.parray, text);
    default:
      break;
  }
  // The rarer kinds, references among them.
  const auto converted = convertedTo(VT_BSTR);
  if (!converted) {
    return false;
  }
  text = utf8Of(converted->value_.bstrVal);
  return true;
}

std::optional<bool> Variant::toFlag() const {
  const auto converted = convertedTo(VT_BOOL);
  return converted ? std::optional(converted->value_.boolVal != VARIANT_FALSE) : std::nullopt;
}

std::optional<long> Variant::toNumber() const {
  const auto converted = convertedTo(VT_I4);
  return converted ? std::optional<long>(converted->value_.lVal) : std::nullopt;
}

std::optional<Variant> Variant::convertedTo(VARTYPE type) const {
  Variant converted;
  if (FAILED(
          VariantChangeTypeEx(&converted.value_, const_cast<VARIANT*>(&value_), LOCALE_INVARIANT, 0, type))) {
    return std::nullopt;
  }
  return converted;
}

}  // namespace veltrano::dao
