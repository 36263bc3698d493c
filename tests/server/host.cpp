#include "host.h"

#include "base/files/whole.h"
#include "base/os/module_windows.h"

namespace veltrano::tests {

std::filesystem::path dllFile() {
  return modulePath(nullptr).parent_path().parent_path().parent_path() / "VeltranoFrameWorkDLL.dll";
}

std::filesystem::path photoFile() {
  return L"Z:" PROJECT_FOLDER "/samples/photo.jpg";
}

std::string readFile(const std::filesystem::path& file) {
  return readWholeFile(file).value_or("");
}

Dll::Dll(const std::filesystem::path& file) : file_(file), module_(LoadLibraryW(file.c_str())) {}

Dll::~Dll() {
  if (module_ != nullptr) FreeLibrary(module_);
}

ComPointer<ITypeLib> Dll::typeLibrary() const {
  ComPointer<ITypeLib> library;
  LoadTypeLibEx(file_.c_str(), REGKIND_NONE, library.out());
  return library;
}

Argument::Argument(std::initializer_list<Argument> elements) : Argument() {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size()));
  auto* slot = static_cast<VARIANT*>(array->pvData);
  for (const Argument& element : elements) VariantCopy(slot++, const_cast<VARIANT*>(element.operator->()));
  set(VT_ARRAY | VT_VARIANT, array);
}

Argument Argument::doubles(std::initializer_list<double> numbers) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(numbers.size()));
  std::copy(numbers.begin(), numbers.end(), static_cast<double*>(array->pvData));
  return of(VT_ARRAY | VT_R8, array);
}

std::wstring Argument::text() const {
  OwnedVariant converted;
  const HRESULT status =
      VariantChangeType(converted.get(), const_cast<VARIANT*>(&value_), VARIANT_ALPHABOOL, VT_BSTR);
  return FAILED(status) ? L"<" + std::to_wstring(value_.vt) + L">"
                        : std::wstring(converted->bstrVal, SysStringLen(converted->bstrVal));
}

Outcome callMember(IDispatch& object, DISPID id, const std::vector<Argument>& arguments, WORD flags,
                   std::vector<DISPID> named) {
  if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) named = {DISPID_PROPERTYPUT};
  std::vector<VARIANT> reversed;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
    reversed.push_back(*argument->operator->());
  DISPPARAMS parameters = {reversed.data(), named.data(), static_cast<UINT>(reversed.size()),
                           static_cast<UINT>(named.size())};
  Outcome outcome;
  outcome.status = object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, outcome.result.get(),
                                 nullptr, &outcome.wrong);
  return outcome;
}

Outcome callMethod(IDispatch& object, const wchar_t* member, const std::vector<Argument>& arguments,
                   std::vector<const wchar_t*> names, WORD flags) {
  names.insert(names.begin(), member);
  std::vector<DISPID> ids(names.size());
  Outcome outcome;
  outcome.status = object.GetIDsOfNames(IID_NULL, const_cast<OLECHAR**>(names.data()),
                                        static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT, ids.data());
  return FAILED(outcome.status)
             ? outcome
             : callMember(object, ids[0], arguments, flags, {ids.rbegin(), ids.rend() - 1});
}

Outcome getProperty(IDispatch& object, const wchar_t* member) {
  return callMethod(object, member, {}, {}, DISPATCH_PROPERTYGET);
}

Outcome putProperty(IDispatch& object, const wchar_t* member, const Argument& value, WORD flags) {
  return callMethod(object, member, std::vector<Argument>(1, value), {}, flags);
}

}  // namespace veltrano::tests
