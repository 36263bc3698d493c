#include "host.h"

#include <fstream>
#include <iterator>

namespace veltrano::tests {

namespace {

std::filesystem::path programFolder() {
  std::wstring name(32768, L'\0');
  name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
  return std::filesystem::path(name).parent_path();
}

template <class Function>
Function function(HMODULE module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

Outcome invoke(IDispatch& object, const std::vector<const wchar_t*>& names, std::vector<Argument>& arguments,
               WORD flags) {
  Outcome outcome;
  std::vector<DISPID> ids(names.size());
  std::vector<OLECHAR*> texts;
  for (const wchar_t* name : names) {
    texts.push_back(const_cast<OLECHAR*>(name));
  }
  outcome.status = object.GetIDsOfNames(IID_NULL, texts.data(), static_cast<UINT>(texts.size()),
                                        LOCALE_USER_DEFAULT, ids.data());
  if (FAILED(outcome.status)) {
    return outcome;
  }
  return callMember(object, ids[0], arguments, flags, {ids.rbegin(), ids.rend() - 1});
}

}  // namespace

std::filesystem::path dllFile() {
  return programFolder().parent_path().parent_path() / "VeltranoFrameWorkDLL.dll";
}

Dll::Dll(const std::filesystem::path& file) : file_(file), module_(LoadLibraryW(file.c_str())) {}

Dll::~Dll() {
  if (module_ != nullptr) {
    FreeLibrary(module_);
  }
}

HRESULT Dll::classObject(REFCLSID clsid, REFIID iid, void** object) const {
  using Function = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  const auto get = function<Function>(module_, "DllGetClassObject");
  return get != nullptr ? get(clsid, iid, object) : E_NOTIMPL;
}

HRESULT Dll::call(const char* name) const {
  using Function = HRESULT(STDAPICALLTYPE*)();
  const auto exported = function<Function>(module_, name);
  return exported != nullptr ? exported() : E_NOTIMPL;
}

HRESULT Dll::install(bool install, const wchar_t* commandLine) const {
  using Function = HRESULT(STDAPICALLTYPE*)(BOOL, const wchar_t*);
  const auto exported = function<Function>(module_, "DllInstall");
  return exported != nullptr ? exported(install ? TRUE : FALSE, commandLine) : E_NOTIMPL;
}

ComPointer<ITypeLib> Dll::typeLibrary() const {
  ComPointer<ITypeLib> library;
  LoadTypeLibEx(file_.c_str(), REGKIND_NONE, library.out());
  return library;
}

Argument::Argument(int number) : Argument() {
  value_.vt = VT_I4;
  value_.lVal = number;
}
Argument::Argument(double number) : Argument() {
  value_.vt = VT_R8;
  value_.dblVal = number;
}
Argument::Argument(bool flag) : Argument() {
  value_.vt = VT_BOOL;
  value_.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
}
Argument::Argument(const wchar_t* text) : Argument() {
  value_.vt = VT_BSTR;
  value_.bstrVal = SysAllocString(text);
}
Argument::Argument(IUnknown* object) : Argument() {
  value_.vt = VT_UNKNOWN;
  value_.punkVal = object;
  if (object != nullptr) {
    object->AddRef();
  }
}
Argument::Argument(std::initializer_list<Argument> elements) : Argument() {
  value_.vt = VT_ARRAY | VT_VARIANT;
  value_.parray = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size()));
  auto* slot = static_cast<VARIANT*>(value_.parray->pvData);
  for (const Argument& element : elements) {
    VariantCopy(slot++, const_cast<VARIANT*>(&element.value_));
  }
}

Argument Argument::ofType(VARTYPE type) {
  Argument argument;
  argument.value_.vt = type;
  return argument;
}

Argument Argument::omitted() {
  Argument argument = ofType(VT_ERROR);
  argument.value_.scode = DISP_E_PARAMNOTFOUND;
  return argument;
}

Argument Argument::doubles(std::initializer_list<double> numbers) {
  Argument argument;
  argument.value_.vt = VT_ARRAY | VT_R8;
  argument.value_.parray = SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(numbers.size()));
  std::copy(numbers.begin(), numbers.end(), static_cast<double*>(argument.value_.parray->pvData));
  return argument;
}

Argument Argument::reference(VARIANT& variable) {
  Argument argument = ofType(VT_BYREF | VT_VARIANT);
  argument.value_.pvarVal = &variable;
  return argument;
}

std::wstring Argument::text() const {
  OwnedVariant converted;
  if (FAILED(VariantChangeType(converted.get(), const_cast<VARIANT*>(&value_), VARIANT_ALPHABOOL, VT_BSTR))) {
    return L"<" + std::to_wstring(value_.vt) + L">";
  }
  return {converted->bstrVal, SysStringLen(converted->bstrVal)};
}

Outcome callMember(IDispatch& object, DISPID id, std::vector<Argument>& arguments, WORD flags,
                   std::vector<DISPID> named) {
  if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
    named = {DISPID_PROPERTYPUT};
  }
  std::vector<VARIANT> reversed;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
    reversed.push_back(*argument->get());
  }
  DISPPARAMS parameters = {reversed.data(), named.data(), static_cast<UINT>(reversed.size()),
                           static_cast<UINT>(named.size())};
  Outcome outcome;
  outcome.status = object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, outcome.result.get(),
                                 nullptr, &outcome.wrong);
  return outcome;
}

Outcome callMethod(IDispatch& object, const wchar_t* member, std::vector<Argument> arguments) {
  return invoke(object, {member}, arguments, DISPATCH_METHOD);
}

Outcome getProperty(IDispatch& object, const wchar_t* member) {
  std::vector<Argument> none;
  return invoke(object, {member}, none, DISPATCH_PROPERTYGET);
}

Outcome putProperty(IDispatch& object, const wchar_t* member, Argument value, WORD flags) {
  std::vector<Argument> arguments = {std::move(value)};
  return invoke(object, {member}, arguments, flags);
}

Outcome callNamed(IDispatch& object, const wchar_t* member, std::vector<Argument> arguments,
                  std::vector<const wchar_t*> names) {
  names.insert(names.begin(), member);
  return invoke(object, names, arguments, DISPATCH_METHOD);
}

Folder::Folder(std::wstring_view name) {
  static int count = 0;
  path_ = std::filesystem::temp_directory_path() /
          (L"veltrano " + std::to_wstring(GetCurrentProcessId()) + L"." + std::to_wstring(++count)) / name;
  std::filesystem::create_directories(path_);
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_.parent_path(), ignored);
}

std::string readFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace veltrano::tests
