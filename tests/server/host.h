#ifndef VELTRANO_TESTS_SERVER_HOST_H
#define VELTRANO_TESTS_SERVER_HOST_H

// A C++ automation host for the tests: the DLL of this build, loaded by its path, and late-bound calls.

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "server/com/automation.h"

namespace veltrano::tests {

using server::ComPointer;
using server::OwnedVariant;

/// The DLL of this build: the test programs lie in tests/server below it.
std::filesystem::path dllFile();

/// The loaded DLL and its exports.
class Dll {
 public:
  explicit Dll(const std::filesystem::path& file = dllFile());
  Dll(const Dll&) = delete;
  Dll& operator=(const Dll&) = delete;
  Dll(Dll&&) = delete;
  Dll& operator=(Dll&&) = delete;
  ~Dll();

  [[nodiscard]] bool loaded() const { return module_ != nullptr; }
  HRESULT classObject(REFCLSID clsid, REFIID iid, void** object) const;
  [[nodiscard]] HRESULT canUnloadNow() const { return call("DllCanUnloadNow"); }
  /// DllRegisterServer and the like.
  HRESULT call(const char* name) const;
  HRESULT install(bool install, const wchar_t* commandLine) const;
  [[nodiscard]] ComPointer<ITypeLib> typeLibrary() const;

  /// A new object; null when that fails.
  template <class Interface>
  ComPointer<Interface> create(REFCLSID clsid, REFIID iid) const {
    ComPointer<IClassFactory> factory;
    ComPointer<Interface> object;
    if (SUCCEEDED(classObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.out())))) {
      factory->CreateInstance(nullptr, iid, reinterpret_cast<void**>(object.out()));
    }
    return object;
  }
  ComPointer<_VeltranoPDF> createPdf() const {
    return create<_VeltranoPDF>(CLSID_VeltranoPDF, IID__VeltranoPDF);
  }

 private:
  std::filesystem::path file_;
  HMODULE module_;
};

/// A variant made in place; owns what it holds.
class Argument {
 public:
  Argument() { VariantInit(&value_); }
  Argument(int number);
  Argument(double number);
  Argument(bool flag);
  Argument(const wchar_t* text);
  Argument(IUnknown* object);
  /// An array of variants.
  Argument(std::initializer_list<Argument> elements);
  Argument(const Argument& other) : Argument() { VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)); }
  Argument& operator=(const Argument& other) {
    VariantCopy(&value_, const_cast<VARIANT*>(&other.value_));
    return *this;
  }
  ~Argument() { VariantClear(&value_); }

  static Argument ofType(VARTYPE type);
  static Argument omitted();
  static Argument doubles(std::initializer_list<double> numbers);
  /// As script hosts pass their variables.
  static Argument reference(VARIANT& variable);

  VARIANT* get() { return &value_; }
  VARIANT* operator->() { return &value_; }
  const VARIANT* operator->() const { return &value_; }
  /// The text of any value, as the system converts it.
  [[nodiscard]] std::wstring text() const;

 private:
  VARIANT value_;
};

struct Outcome {
  HRESULT status = E_UNEXPECTED;
  UINT wrong = 999;
  Argument result;
};

/// Calls a member, arguments in their natural order; the last `named.size()` are for the parameters given
/// there, from the last to the first.
Outcome callMember(IDispatch& object, DISPID id, std::vector<Argument>& arguments, WORD flags,
                   std::vector<DISPID> named = {});
/// The same by name.
Outcome callMethod(IDispatch& object, const wchar_t* member, std::vector<Argument> arguments = {});
Outcome getProperty(IDispatch& object, const wchar_t* member);
Outcome putProperty(IDispatch& object, const wchar_t* member, Argument value,
                    WORD flags = DISPATCH_PROPERTYPUT);
/// The last `names.size()` arguments are named.
Outcome callNamed(IDispatch& object, const wchar_t* member, std::vector<Argument> arguments,
                  std::vector<const wchar_t*> names);

/// A text by reference, for calls of the vtable.
class Text {
 public:
  explicit Text(std::wstring_view text = {})
      : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  Text(Text&&) = delete;
  Text& operator=(Text&&) = delete;
  ~Text() { SysFreeString(text_); }
  BSTR* operator&() { return &text_; }  // NOLINT: stands for the parameter by reference
  [[nodiscard]] std::wstring_view view() const { return {text_, SysStringLen(text_)}; }
  [[nodiscard]] bool isNull() const { return text_ == nullptr; }

 private:
  BSTR text_;
};

/// A folder for one test's files, removed with it.
class Folder {
 public:
  explicit Folder(std::wstring_view name = L"plain");
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  Folder(Folder&&) = delete;
  Folder& operator=(Folder&&) = delete;
  ~Folder();
  [[nodiscard]] std::filesystem::path operator/(const std::wstring& file) const { return path_ / file; }
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path& file);

}  // namespace veltrano::tests

#endif
