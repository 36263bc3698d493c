#include "database/dao/automation_windows.h"

#include <array>
#include <cstdio>

#include "base/text/code_page.h"

namespace veltrano::dao {

namespace {

/// The most arguments that any call of this folder has.
constexpr std::size_t mostArguments = 4;

std::string codeText(HRESULT code) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "error 0x%08lX", static_cast<unsigned long>(code));
  return text.data();
}

/// The object's own words where it has some.
std::string errorText(HRESULT code, EXCEPINFO& exception) {
  if (exception.pfnDeferredFillIn != nullptr) {
    exception.pfnDeferredFillIn(&exception);
  }
  std::string text = codeText(code);
  if (exception.bstrDescription != nullptr) {
    const std::u16string words(exception.bstrDescription,
                               exception.bstrDescription + SysStringLen(exception.bstrDescription));
    text = utf16ToUtf8(words) + " (" + codeText(exception.scode) + ")";
  }
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return text;
}

}  // namespace

Object& Object::operator=(Object&& other) noexcept {
  if (this != &other) {
    std::swap(dispatch_, other.dispatch_);
  }
  return *this;
}

Object::~Object() {
  if (dispatch_ != nullptr) {
    dispatch_->Release();
  }
}

Object Object::of(const Variant& result) {
  const VARIANT& value = result.raw();
  if ((value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN) || value.punkVal == nullptr) {
    return Object();
  }
  void* dispatch = nullptr;
  if (FAILED(value.punkVal->QueryInterface(IID_IDispatch, &dispatch))) {
    return Object();
  }
  return Object(static_cast<IDispatch*>(dispatch));
}

std::optional<Variant> Object::call(const wchar_t* method, std::initializer_list<const Variant*> arguments,
                                    std::string& error) const {
  const auto member = find(method, error);
  return member ? invoke(*member, DISPATCH_METHOD, arguments, error) : std::nullopt;
}

std::optional<Variant> Object::property(const wchar_t* name, std::string& error) const {
  const auto member = find(name, error);
  return member ? invoke(*member, DISPATCH_PROPERTYGET, {}, error) : std::nullopt;
}

std::optional<Variant> Object::item(const Variant& key, std::string& error) const {
  return invoke(DISPID_VALUE, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {&key}, error);
}

bool Object::setProperty(const wchar_t* name, const Variant& value, std::string& error) const {
  const auto member = find(name, error);
  return member && invoke(*member, DISPATCH_PROPERTYPUT, {&value}, error);
}

std::optional<DISPID> Object::find(const wchar_t* name, std::string& error) const {
  if (dispatch_ == nullptr) {
    error = "no object";
    return std::nullopt;
  }
  auto* text = const_cast<wchar_t*>(name);
  DISPID member = DISPID_UNKNOWN;
  const HRESULT result = dispatch_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_INVARIANT, &member);
  if (FAILED(result)) {
    error = codeText(result);
    return std::nullopt;
  }
  return member;
}

std::optional<Variant> Object::invoke(DISPID member, WORD kind,
                                      std::initializer_list<const Variant*> arguments,
                                      std::string& error) const {
  if (dispatch_ == nullptr || arguments.size() > mostArguments) {
    error = "no object";
    return std::nullopt;
  }
  // Automation takes arguments last first. The copies are shallow: the caller's variants own what they hold.
  std::array<VARIANT, mostArguments> reversed{};
  std::size_t at = arguments.size();
  for (const Variant* argument : arguments) {
    reversed[--at] = argument->raw();
  }
  DISPID assigned = DISPID_PROPERTYPUT;
  const bool assigns = kind == DISPATCH_PROPERTYPUT;
  DISPPARAMS parameters{reversed.data(), assigns ? &assigned : nullptr, static_cast<UINT>(arguments.size()),
                        assigns ? 1U : 0U};
  Variant result;
  EXCEPINFO exception{};
  UINT wrong = 0;
  const HRESULT code = dispatch_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                         assigns ? nullptr : &result.raw(), &exception, &wrong);
  if (FAILED(code)) {
    error = errorText(code, exception);
    return std::nullopt;
  }
  return result;
}

}  // namespace veltrano::dao
