#include "server/com/dispatch/object_values.h"

#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "base/os/floating_point_windows.h"

namespace veltrano::server {

namespace {

/// Longer lists are not taken apart: an object may claim any length.
constexpr LONG longestList = 100000;

HRESULT getById(IDispatch& object, DISPID id, VARIANT* result, WORD flags = DISPATCH_PROPERTYGET) {
  DISPPARAMS none = {};
  return object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &none, result, nullptr, nullptr);
}

HRESULT get(IDispatch& object, const wchar_t* name, VARIANT* result, WORD flags = DISPATCH_PROPERTYGET) {
  DISPID id = DISPID_UNKNOWN;
  auto* text = const_cast<OLECHAR*>(name);
  const HRESULT found = object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  return FAILED(found) ? found : getById(object, id, result, flags);
}

std::optional<LONG> listLength(IDispatch& object) {
  OwnedVariant length;
  if (FAILED(get(object, L"length", length.get())) ||
      FAILED(VariantChangeType(length.get(), length.get(), 0, VT_I4)) || length->lVal < 0 ||
      length->lVal > longestList) {
    return std::nullopt;
  }
  return length->lVal;
}

bool listElements(IDispatch& object, LONG count, VARIANT* result) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(count));
  if (array == nullptr) {
    return false;
  }
  auto* slots = static_cast<VARIANT*>(array->pvData);
  for (LONG i = 0; i < count; ++i) {
    if (FAILED(get(object, std::to_wstring(i).c_str(), &slots[i])) && i == 0) {
      // Something else that has a length: a text object, a collection.
      SafeArrayDestroy(array);
      return false;
    }
  }
  result->vt = VT_ARRAY | VT_VARIANT;
  result->parray = array;
  return true;
}

/// The number that a method without arguments returns.
std::optional<double> numberOf(IDispatch& object, const wchar_t* method) {
  OwnedVariant number;
  if (FAILED(get(object, method, number.get(), DISPATCH_METHOD)) ||
      FAILED(VariantChangeType(number.get(), number.get(), 0, VT_R8)) || !std::isfinite(number->dblVal)) {
    return std::nullopt;
  }
  return number->dblVal;
}

/// A script's date object, known by the methods that such objects have in every engine: milliseconds since
/// 1970 in universal time, and the minutes by which local time is behind it.
bool dateOf(IDispatch& object, VARIANT* result) {
  constexpr double day = 86400000;
  constexpr double minute = 60000;
  constexpr double firstOf1970 = 25569;
  const auto behind = numberOf(object, L"getTimezoneOffset");
  const auto time = behind ? numberOf(object, L"getTime") : std::nullopt;
  if (!time) {
    return false;
  }
  const double days = firstOf1970 + (*time - *behind * minute) / day;
  const double whole = std::floor(days);
  result->vt = VT_DATE;
  // The fraction is the time of day also before day 0.
  result->date = whole < 0 ? whole - (days - whole) : days;
  return true;
}

}  // namespace

bool objectValue(IUnknown* object, VARIANT* result, DateObjects dates) {
  if (object == nullptr) {
    return false;
  }
  const HostArithmetic host;
  ComPointer<IDispatch> dispatch;
  if (FAILED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.out())))) {
    return false;
  }
  const std::optional<LONG> count = listLength(*dispatch.get());
  if (count && listElements(*dispatch.get(), *count, result)) {
    return true;
  }
  if (dates == DateObjects::dates && dateOf(*dispatch.get(), result)) {
    return true;
  }
  return SUCCEEDED(getById(*dispatch.get(), DISPID_VALUE, result));
}

}  // namespace veltrano::server
