#include "server/com/dispatch/argument.h"

#include <cmath>
#include <cstring>
#include <string_view>

#include "server/com/conversions.h"
#include "server/com/dispatch/object_values.h"

namespace veltrano::server {

namespace {

/// Objects whose default property is an object again, and variables that refer to variables, end here.
constexpr int deepest = 8;

bool isOmitted(const VARIANT& given) {
  return given.vt == VT_ERROR && given.scode == DISP_E_PARAMNOTFOUND;
}

/// Null or a null text, itself or by reference.
bool isEmptyText(const VARIANT& given) {
  return given.vt == VT_NULL || (given.vt == VT_BSTR && given.bstrVal == nullptr) ||
         (given.vt == (VT_BYREF | VT_BSTR) && given.pbstrVal != nullptr && *given.pbstrVal == nullptr);
}

bool isObject(VARTYPE type) {
  return type == VT_DISPATCH || type == VT_UNKNOWN;
}

/// The variable that the host's argument is or refers to: a script's procedure hands on, by reference, what
/// it was handed by reference. Null when a reference leads nowhere.
VARIANT* variableOf(VARIANT& given) {
  VARIANT* variable = &given;
  for (int depth = 0; variable != nullptr && variable->vt == (VT_BYREF | VT_VARIANT); ++depth) {
    variable = depth < deepest ? variable->pvarVal : nullptr;
  }
  return variable;
}

/// Bytes of a value in a variant's union; 0 for a type that is not kept there.
std::size_t sizeOf(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return sizeof(void*);
    default:
      return (type & VT_ARRAY) != 0 ? sizeof(void*) : 0;
  }
}

/// A copy of what a variant holds or refers to. The system's own function follows null references.
HRESULT copyReferred(VARIANT& target, VARIANT& source) {
  VARIANT* const referred = variableOf(source);
  if (referred == nullptr || ((referred->vt & VT_BYREF) != 0 && referred->byref == nullptr)) {
    return DISP_E_TYPEMISMATCH;
  }
  return VariantCopyInd(&target, referred);
}

/// Failures of the system's conversions, as a dispatcher reports them.
HRESULT conversionResult(HRESULT result) {
  return SUCCEEDED(result) || result == DISP_E_OVERFLOW || result == E_OUTOFMEMORY ? result
                                                                                   : DISP_E_TYPEMISMATCH;
}

/// What has no whole number: the system makes a different one of it in each bitness.
bool isNotANumber(const VARIANT& source) {
  return (source.vt == VT_R8 && std::isnan(source.dblVal)) ||
         (source.vt == VT_R4 && std::isnan(source.fltVal));
}

HRESULT changeType(VARIANT& target, const VARIANT& source, LCID locale, VARTYPE type) {
  return conversionResult(
      VariantChangeTypeEx(&target, const_cast<VARIANT*>(&source), locale, VARIANT_ALPHABOOL, type));
}

}  // namespace

Argument::~Argument() {
  if (owns_) {
    VariantClear(&storage_);
  }
}

void Argument::own(VARTYPE type) {
  storage_.vt = type;
  storage_.llVal = 0;
  owns_ = true;
  pointer_ = &storage_.llVal;
}

void Argument::makeResult(VARTYPE type) {
  if (type == VT_VARIANT) {
    own(VT_EMPTY);
    pointer_ = &storage_;
  } else {
    own(type);
  }
}

void Argument::giveResult(VARIANT* result) {
  if (result != nullptr) {
    *result = storage_;
    owns_ = false;
  }
}

HRESULT Argument::takeDefault(const Parameter& parameter) {
  if (!parameter.optional) {
    return DISP_E_PARAMNOTOPTIONAL;
  }
  own(parameter.type);
  switch (parameter.type) {
    case VT_BSTR:
      // Null stands for the default, as it does where early-bound hosts leave a text out.
      break;
    case VT_R8:
      storage_.dblVal = parameter.omitted;
      break;
    case VT_I2:
    case VT_BOOL:
      storage_.iVal = static_cast<SHORT>(parameter.omitted);
      break;
    default:
      storage_.lVal = static_cast<LONG>(parameter.omitted);
      break;
  }
  return S_OK;
}

HRESULT Argument::take(VARIANT& given, const Parameter& parameter, LCID locale) {
  const VARTYPE type = parameter.type;
  VARIANT* const source = variableOf(given);
  if (source == nullptr) {
    return DISP_E_TYPEMISMATCH;
  }
  bool isVariable = source != &given;
  if (isOmitted(*source)) {
    return takeDefault(parameter);
  }
  if (type == VT_VARIANT) {
    pointer_ = source;
    return S_OK;
  }
  if (type == VT_BSTR && parameter.optional && isEmptyText(*source)) {
    // Given, so it must not look like one left out.
    own(VT_BSTR);
    storage_.bstrVal = SysAllocStringLen(L"", 0);
    return S_OK;
  }
  if (source->vt == type && type != VT_DISPATCH) {
    if (isVariable || type == VT_BSTR) {
      // The host's own variable. A text passed by value is read where it is, too: no member replaces one.
      pointer_ = &source->llVal;
    } else {
      own(type);
      storage_.llVal = source->llVal;
    }
    return S_OK;
  }
  if (source->vt == (type | VT_BYREF) && type != VT_DISPATCH) {
    pointer_ = source->byref;
    return pointer_ != nullptr ? S_OK : DISP_E_TYPEMISMATCH;
  }
  OwnedVariant referred;
  const VARIANT* plain = source;
  if ((source->vt & VT_BYREF) != 0) {
    if (FAILED(copyReferred(*referred.get(), *source))) {
      return DISP_E_TYPEMISMATCH;
    }
    plain = referred.get();
    isVariable = true;
  }
  own(VT_EMPTY);
  const HRESULT result = coerce(*plain, type, locale);
  if (SUCCEEDED(result) && isVariable) {
    variable_ = source;
    before_ = storage_.llVal;
  }
  return result;
}

HRESULT Argument::coerce(const VARIANT& source, VARTYPE type, LCID locale) {
  if (type == VT_DISPATCH) {
    return coercePicture(source);
  }
  if (isObject(source.vt)) {
    return coerceObject(source.punkVal, type, locale);
  }
  if (type == VT_BOOL) {
    return coerceFlag(source, locale);
  }
  if (type == VT_BSTR && source.vt == (VT_ARRAY | VT_UI1)) {
    // Bytes read from a stream: a character each, as byte strings have it.
    const Value bytes = value(&source, TextForm::ansi);
    const auto* data = bytes.as<Value::Bytes>();
    if (data == nullptr) {
      return DISP_E_TYPEMISMATCH;
    }
    own(VT_BSTR);
    storage_.bstrVal =
        newText(std::string_view(reinterpret_cast<const char*>(data->data()), data->size()), TextForm::ansi);
    return S_OK;
  }
  if (isNotANumber(source) && (type == VT_I2 || type == VT_I4)) {
    return DISP_E_OVERFLOW;
  }
  const HRESULT result = changeType(storage_, source, locale, type);
  return result == DISP_E_OVERFLOW && coercePattern(source, type, locale) ? S_OK : result;
}

bool Argument::coercePattern(const VARIANT& source, VARTYPE type, LCID locale) {
  VARIANT number;
  VariantInit(&number);
  if (FAILED(changeType(number, source, locale, VT_UI4))) {
    return false;
  }
  if (type == VT_I2 && number.ulVal == 0xFFFF) {
    // -1, as the margins' default is documented.
    own(VT_I2);
    storage_.iVal = -1;
    return true;
  }
  if (type == VT_I4) {
    // Addresses, handles and event identifiers, which many hosts know without a sign.
    own(VT_I4);
    storage_.ulVal = number.ulVal;
    return true;
  }
  return false;
}

HRESULT Argument::coerceObject(IUnknown* object, VARTYPE type, LCID locale) {
  OwnedVariant held;
  held->vt = VT_UNKNOWN;
  held->punkVal = object;
  if (object == nullptr) {
    return DISP_E_TYPEMISMATCH;
  }
  object->AddRef();
  for (int depth = 0; depth < deepest; ++depth) {
    OwnedVariant property;
    if (!objectValue(held->punkVal, property.get())) {
      return DISP_E_TYPEMISMATCH;
    }
    if (!isObject(property->vt)) {
      return coerce(*property.get(), type, locale);
    }
    std::swap(*held.get(), *property.get());
  }
  return DISP_E_TYPEMISMATCH;
}

HRESULT Argument::coerceFlag(const VARIANT& source, LCID locale) {
  // -1 alone is true, as a number or as its text; the system would take any number but 0.
  VARIANT number;
  VariantInit(&number);
  if (FAILED(changeType(number, source, locale, VT_R8))) {
    return changeType(storage_, source, locale, VT_BOOL);
  }
  own(VT_BOOL);
  storage_.boolVal = number.dblVal == VARIANT_TRUE ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT Argument::coercePicture(const VARIANT& source) {
  own(VT_DISPATCH);
  if (source.vt == VT_EMPTY || source.vt == VT_NULL) {
    return S_OK;
  }
  if (!isObject(source.vt)) {
    return DISP_E_TYPEMISMATCH;
  }
  if (source.punkVal == nullptr) {
    return S_OK;
  }
  auto** picture = reinterpret_cast<void**>(&storage_.pdispVal);
  if (SUCCEEDED(source.punkVal->QueryInterface(IID_IPictureDisp, picture))) {
    return S_OK;
  }
  // A control that shows a picture, which is its default property.
  OwnedVariant property;
  if (objectValue(source.punkVal, property.get()) && isObject(property->vt) && property->punkVal != nullptr &&
      SUCCEEDED(property->punkVal->QueryInterface(IID_IPictureDisp, picture))) {
    return S_OK;
  }
  storage_.pdispVal = nullptr;
  return DISP_E_TYPEMISMATCH;
}

HRESULT Argument::takeList(VARIANT* last, UINT count) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, count);
  if (array == nullptr) {
    return E_OUTOFMEMORY;
  }
  own(VT_ARRAY | VT_VARIANT);
  storage_.parray = array;
  auto* slots = static_cast<VARIANT*>(array->pvData);
  for (UINT i = 0; i < count; ++i) {
    const HRESULT result = copyReferred(slots[i], last[count - 1 - i]);
    if (FAILED(result)) {
      return conversionResult(result);
    }
  }
  return S_OK;
}

void Argument::writeBack(LCID locale) {
  if (variable_ == nullptr || storage_.llVal == before_) {
    return;
  }
  if ((variable_->vt & VT_BYREF) == 0) {
    // A variable of any type takes the value as it is.
    VariantClear(variable_);
    *variable_ = storage_;
    owns_ = false;
    return;
  }
  const auto type = static_cast<VARTYPE>(variable_->vt & ~VT_BYREF);
  OwnedVariant converted;
  if (FAILED(VariantChangeTypeEx(converted.get(), &storage_, locale, VARIANT_ALPHABOOL, type))) {
    return;
  }
  if (type == VT_BSTR) {
    std::swap(*variable_->pbstrVal, converted->bstrVal);
  } else if (type == VT_DECIMAL) {
    *variable_->pdecVal = converted->decVal;
    variable_->pdecVal->wReserved = 0;  // in a variant, the type
  } else if (converted->vt == type) {
    std::memcpy(variable_->byref, &converted->llVal, sizeOf(type));
  }
}

}  // namespace veltrano::server
