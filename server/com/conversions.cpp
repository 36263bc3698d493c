#include "server/com/conversions.h"

#include <array>
#include <limits>
#include <vector>

#include "base/files/paths.h"
#include "base/os/owned.h"
#include "base/text/code_page.h"
#include "base/text/wtf8.h"
#include "server/com/dispatch/object_values.h"

namespace veltrano::server {

namespace {

/// Deeper nesting than any list has; a variant that refers to itself ends here.
constexpr int deepestList = 32;
/// Objects that one value may open: a list object may contain itself many times over.
constexpr int mostObjects = 2000;

std::string encoded(std::u16string_view text, TextForm form) {
  switch (form) {
    case TextForm::ansi:
      return utf16ToAnsi(text);
    case TextForm::utf8:
      return utf16ToUtf8(text);
    default:
      return utf16ToWtf8(text);
  }
}

std::u16string decoded(std::string_view text, TextForm form) {
  switch (form) {
    case TextForm::ansi:
      return ansiToUtf16(text);
    case TextForm::utf8:
      return utf8ToUtf16(text);
    default:
      return wtf8ToUtf16(text);
  }
}

/// How variants become values.
struct Reading {
  TextForm form;
  int objects;  ///< that may still be opened
};

Value valueAt(const VARIANT& variant, Reading& how, int depth);

void unlockArray(SAFEARRAY* array) {
  SafeArrayUnaccessData(array);
}
/// An array being read: its data stays locked for as long as this lives.
using ArrayLock = Owned<SAFEARRAY*, unlockArray>;

/// `data` is the first element. Holds none if the array cannot be read.
ArrayLock lockArray(SAFEARRAY* array, const std::uint8_t*& data) {
  void* first = nullptr;
  const bool locked = array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &first));
  data = static_cast<const std::uint8_t*>(first);
  return ArrayLock(locked ? array : nullptr);
}

/// The element at `bytes` as a value; `type` is that of the array.
Value elementValue(const std::uint8_t* bytes, VARTYPE type, Reading& how, int depth) {
  if (type == VT_VARIANT) {
    return valueAt(*reinterpret_cast<const VARIANT*>(bytes), how, depth + 1);
  }
  // The same as a variant that refers to the element.
  VARIANT reference;
  VariantInit(&reference);
  reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
  reference.byref = const_cast<std::uint8_t*>(bytes);
  return valueAt(reference, how, depth + 1);
}

/// The elements of dimension `dimension` (0 is the leftmost) from `offset` on; those of the leftmost
/// dimension lie next to each other.
Value::List dimensionValues(const SAFEARRAY& array, const std::uint8_t* data, VARTYPE type,
                            unsigned dimension, std::size_t offset, std::size_t stride, Reading& how,
                            int depth) {
  // The descriptor holds the dimensions from right to left.
  const SAFEARRAYBOUND& bound = array.rgsabound[array.cDims - 1 - dimension];
  Value::List values;
  values.reserve(bound.cElements);
  for (std::size_t i = 0; i < bound.cElements; ++i) {
    const std::size_t position = offset + i * stride;
    if (dimension + 1U == array.cDims) {
      values.push_back(elementValue(data + position * array.cbElements, type, how, depth));
    } else {
      values.emplace_back(
          dimensionValues(array, data, type, dimension + 1, position, stride * bound.cElements, how, depth));
    }
  }
  return values;
}

Value arrayValue(SAFEARRAY* array, VARTYPE type, Reading& how, int depth) {
  if (array == nullptr) {
    return Value::List{};
  }
  const std::uint8_t* data = nullptr;
  const ArrayLock lock = lockArray(array, data);
  if (!lock) {
    return Opaque{};
  }
  if (array->cDims == 1 && type == VT_R8) {
    const auto* numbers = reinterpret_cast<const double*>(data);
    return Value::Doubles(numbers, numbers + array->rgsabound[0].cElements);
  }
  if (array->cDims == 1 && type == VT_UI1) {
    return Value::Bytes(data, data + array->rgsabound[0].cElements);
  }
  return dimensionValues(*array, data, type, 0, 0, 1, how, depth);
}

Value decimalValue(const DECIMAL& number) {
  constexpr BYTE greatestScale = 28;
  if (number.scale > greatestScale) {
    return Opaque{};
  }
  return Decimal{.negative = (number.sign & DECIMAL_NEG) != 0,
                 .magnitude = {number.Lo32, number.Mid32, number.Hi32, 0},
                 .scale = number.scale};
}

/// A whole number; one beyond the range of Value is a float.
Value unsignedValue(std::uint64_t number) {
  constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return number <= largest ? Value(static_cast<std::int64_t>(number)) : Value(static_cast<double>(number));
}

/// `type` and the bytes at `data`, which a variant holds itself or refers to.
template <class T>
const T& at(const void* data) {
  return *static_cast<const T*>(data);
}

Value scalarValue(VARTYPE type, const void* data, TextForm form) {
  switch (type) {
    case VT_I1:
      return Value(static_cast<std::int64_t>(at<signed char>(data)));
    case VT_UI1:
      return unsignedValue(at<std::uint8_t>(data));
    case VT_I2:
      return Value(static_cast<std::int64_t>(at<std::int16_t>(data)));
    case VT_UI2:
      return unsignedValue(at<std::uint16_t>(data));
    case VT_I4:
    case VT_INT:
      return Value(static_cast<std::int64_t>(at<std::int32_t>(data)));
    case VT_UI4:
    case VT_UINT:
      return unsignedValue(at<std::uint32_t>(data));
    case VT_I8:
      return Value(at<std::int64_t>(data));
    case VT_UI8:
      return unsignedValue(at<std::uint64_t>(data));
    case VT_R4:
      return Value(at<float>(data));
    case VT_R8:
      return Value(at<double>(data));
    case VT_BOOL:
      return Value(at<VARIANT_BOOL>(data) != VARIANT_FALSE);
    case VT_DATE:
      return Date{at<double>(data)};
    case VT_CY:
      return Currency{at<std::int64_t>(data)};
    case VT_BSTR:
      return Value(encoded(characters(at<BSTR>(data)), form));
    default:
      return Opaque{};
  }
}

Value objectAt(IUnknown* object, Reading& how, int depth) {
  if (how.objects-- <= 0) {
    how.objects = 0;
    return Opaque{};
  }
  OwnedVariant content;
  return objectValue(object, content.get(), DateObjects::dates) ? valueAt(*content.get(), how, depth + 1)
                                                                : Opaque{};
}

Value valueAt(const VARIANT& variant, Reading& how, int depth) {
  if (depth > deepestList) {
    return Opaque{};
  }
  const bool reference = (variant.vt & VT_BYREF) != 0;
  const auto type = static_cast<VARTYPE>(variant.vt & VT_TYPEMASK);
  if (reference && variant.byref == nullptr) {
    return {};
  }
  if ((variant.vt & VT_ARRAY) != 0) {
    return arrayValue(reference ? *variant.pparray : variant.parray, type, how, depth);
  }
  switch (type) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Null{};
    case VT_VARIANT:
      return reference ? valueAt(*variant.pvarVal, how, depth + 1) : Value(Opaque{});
    case VT_DECIMAL:
      return decimalValue(reference ? *variant.pdecVal : variant.decVal);
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return objectAt(reference ? *variant.ppunkVal : variant.punkVal, how, depth);
    case VT_ERROR:
      // An omitted argument.
      return !reference && variant.scode == DISP_E_PARAMNOTFOUND ? Value() : Value(Opaque{});
    default:
      return scalarValue(type, reference ? variant.byref : &variant.llVal, how.form);
  }
}

void putList(VARIANT* result, const Value::List& elements, TextForm form) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size()));
  if (array == nullptr) {
    return;
  }
  result->vt = VT_ARRAY | VT_VARIANT;
  result->parray = array;
  auto* slots = static_cast<VARIANT*>(array->pvData);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    answer(&slots[i], elements[i], form);
  }
}

template <class Element>
void putVector(VARIANT* result, VARTYPE type, const std::vector<Element>& elements) {
  SAFEARRAY* array = SafeArrayCreateVector(type, 0, static_cast<ULONG>(elements.size()));
  if (array == nullptr) {
    return;
  }
  std::copy(elements.begin(), elements.end(), static_cast<Element*>(array->pvData));
  result->vt = static_cast<VARTYPE>(VT_ARRAY | type);
  result->parray = array;
}

/// Whole numbers are 32-bit, the widest that script hosts know; larger ones are floats.
void putInteger(VARIANT* result, std::int64_t number) {
  if (number >= std::numeric_limits<LONG>::min() && number <= std::numeric_limits<LONG>::max()) {
    result->vt = VT_I4;
    result->lVal = static_cast<LONG>(number);
  } else {
    result->vt = VT_R8;
    result->dblVal = static_cast<double>(number);
  }
}

}  // namespace

std::u16string_view characters(BSTR text) {
  return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)};
}

std::string ansi(const BSTR* text) {
  return text != nullptr ? utf16ToAnsi(characters(*text)) : std::string();
}
std::string ansi(const BSTR* text, const char* omitted) {
  return text != nullptr && *text != nullptr ? ansi(text) : std::string(omitted);
}
std::string utf8(const BSTR* text) {
  return text != nullptr ? utf16ToUtf8(characters(*text)) : std::string();
}
std::string wtf8(const BSTR* text) {
  return text != nullptr ? utf16ToWtf8(characters(*text)) : std::string();
}
std::filesystem::path path(const BSTR* text) {
  return text != nullptr ? pathFromUtf16(characters(*text)) : std::filesystem::path();
}

Value value(const VARIANT* variant, TextForm form) {
  Reading how{form, mostObjects};
  return variant != nullptr ? valueAt(*variant, how, 0) : Value();
}

Value valueAsItIs(const VARIANT* variant, TextForm form) {
  Reading how{form, 0};
  return variant != nullptr ? valueAt(*variant, how, 0) : Value();
}

Value::List list(SAFEARRAY* const* array, TextForm form) {
  if (array == nullptr || *array == nullptr || SafeArrayGetDim(*array) != 1) {
    return {};
  }
  VARTYPE type = VT_VARIANT;
  SafeArrayGetVartype(*array, &type);
  const std::uint8_t* data = nullptr;
  const ArrayLock lock = lockArray(*array, data);
  if (!lock) {
    return {};
  }
  Reading how{form, mostObjects};
  return dimensionValues(**array, data, type, 0, 0, 1, how, 0);
}

BSTR newText(std::string_view text, TextForm form) {
  if (text.empty()) {
    // Not a null one: hosts written in C may read its characters.
    return SysAllocStringLen(L"", 0);
  }
  const std::u16string wide = decoded(text, form);
  return SysAllocStringLen(reinterpret_cast<const wchar_t*>(wide.data()), static_cast<UINT>(wide.size()));
}

void answer(BSTR* result, std::string_view text, TextForm form) {
  if (result != nullptr) {
    *result = newText(text, form);
  }
}

void answer(VARIANT* result, const Value& value, TextForm form) {
  if (result == nullptr) {
    return;
  }
  VariantInit(result);
  if (value.isNull()) {
    result->vt = VT_NULL;
  } else if (const bool* flag = value.as<bool>()) {
    result->vt = VT_BOOL;
    result->boolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
  } else if (const auto* integer = value.as<std::int64_t>()) {
    putInteger(result, *integer);
  } else if (value.as<double>() != nullptr || value.as<float>() != nullptr ||
             value.as<Decimal>() != nullptr) {
    // Script hosts do arithmetic with doubles only.
    result->vt = VT_R8;
    result->dblVal = value.toDouble().value_or(0);
  } else if (const Date* date = value.as<Date>()) {
    result->vt = VT_DATE;
    result->date = date->days;
  } else if (const Currency* amount = value.as<Currency>()) {
    result->vt = VT_CY;
    result->cyVal.int64 = amount->tenThousandths;
  } else if (const auto* text = value.as<std::string>()) {
    result->vt = VT_BSTR;
    result->bstrVal = newText(*text, form);
  } else if (const auto* elements = value.as<Value::List>()) {
    putList(result, *elements, form);
  } else if (const auto* doubles = value.as<Value::Doubles>()) {
    putVector(result, VT_R8, *doubles);
  } else if (const auto* bytes = value.as<Value::Bytes>()) {
    putVector(result, VT_UI1, *bytes);
  }
}

}  // namespace veltrano::server
