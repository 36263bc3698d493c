#include "database/dao/object_windows.h"

#include <array>
#include <cstdio>

#include "base/text/code_page.h"

namespace veltrano::dao {

namespace {

/// The most arguments that any call of this folder has.
constexpr std::size_t mostArguments = 4;

Status failure(HRESULT code, const std::string& words = {}) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), words.empty() ? "error 0x%08lX" : " (error 0x%08lX)",
                static_cast<unsigned long>(code));
  return {Failure::other, words + text.data()};
}

/// In the object's own words where it has some.
Status failure(HRESULT code, EXCEPINFO& exception) {
  if (exception.pfnDeferredFillIn != nullptr) {
    exception.pfnDeferredFillIn(&exception);
  }
  Status status = failure(code);
  if (exception.bstrDescription != nullptr) {
    const std::u16string words(exception.bstrDescription,
                               exception.bstrDescription + SysStringLen(exception.bstrDescription));
    status = failure(exception.scode, utf16ToUtf8(words));
  }
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return status;
}

}  // namespace

Result<Object> Object::of(const Result<Variant>& answer) {
  if (!answer) {
    return answer.status();
  }
  const VARIANT& value = answer->raw();
  void* dispatch = nullptr;
  if ((value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN) || value.punkVal == nullptr ||
      FAILED(value.punkVal->QueryInterface(IID_IDispatch, &dispatch))) {
    return {Failure::other, "no object came back"};
  }
  return Object(static_cast<IDispatch*>(dispatch));
}

Result<Variant> Object::call(const wchar_t* method, Arguments arguments) const {
  return invoke(method, DISPATCH_METHOD, arguments);
}

Result<Variant> Object::property(const wchar_t* name) const {
  return invoke(name, DISPATCH_PROPERTYGET, {});
}

Status Object::setProperty(const wchar_t* name, const Variant& value) const {
  return invoke(name, DISPATCH_PROPERTYPUT, {&value}).status();
}

Result<Variant> Object::item(const Variant& key) const {
  return invoke(DISPID_VALUE, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {&key});
}

Result<Variant> Object::invoke(const wchar_t* member, WORD kind, Arguments arguments) const {
  auto* text = const_cast<wchar_t*>(member);
  DISPID id = DISPID_UNKNOWN;
  const HRESULT result = dispatch_.get()->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_INVARIANT, &id);
  return FAILED(result) ? failure(result) : invoke(id, kind, arguments);
}

Result<Variant> Object::invoke(DISPID member, WORD kind, Arguments arguments) const {
  // Automation takes arguments last first. The copies are shallow: the caller's variants own what they hold.
  std::array<VARIANT, mostArguments> reversed{};
  std::size_t at = arguments.size();
  for (const Variant* argument : arguments) {
    reversed.at(--at) = argument->raw();
  }
  DISPID assigned = DISPID_PROPERTYPUT;
  const bool assigns = kind == DISPATCH_PROPERTYPUT;
  DISPPARAMS parameters{reversed.data(), assigns ? &assigned : nullptr, static_cast<UINT>(arguments.size()),
                        assigns ? 1U : 0U};
  Variant result;
  EXCEPINFO exception{};
  UINT wrong = 0;
  const HRESULT code = dispatch_.get()->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                               assigns ? nullptr : &result.raw(), &exception, &wrong);
  if (FAILED(code)) {
    return failure(code, exception);
  }
  return result;
}

}  // namespace veltrano::dao
