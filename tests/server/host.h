#ifndef VELTRANO_TESTS_SERVER_HOST_H
#define VELTRANO_TESTS_SERVER_HOST_H

// A C++ automation host for the tests: the DLL of this build, loaded by its path, and late-bound calls.

#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

#include "../temporary_folder.h"
#include "server/com/automation.h"

namespace veltrano::tests {

using server::ComPointer;
using server::OwnedVariant;

/// The DLL of this build: the test programs lie in tests/server below it.
std::filesystem::path dllFile();
/// Of the samples: 1200 x 800 pixels.
std::filesystem::path photoFile();
std::string readFile(const std::filesystem::path& file);

/// The loaded DLL and its exports.
class Dll {
 public:
  explicit Dll(const std::filesystem::path& file = dllFile());
  Dll(const Dll&) = delete;
  Dll& operator=(const Dll&) = delete;
  ~Dll();

  /// DllRegisterServer and the like.
  template <class... Parameters>
  HRESULT call(const char* name, Parameters... parameters) const {
    using Function = HRESULT(STDAPICALLTYPE*)(Parameters...);
    const auto exported = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    return exported != nullptr ? exported(parameters...) : E_NOTIMPL;
  }
  [[nodiscard]] HRESULT canUnloadNow() const { return call("DllCanUnloadNow"); }
  template <class Interface>
  HRESULT classObject(REFCLSID clsid, REFIID iid, ComPointer<Interface>& object) const {
    return call("DllGetClassObject", &clsid, &iid, reinterpret_cast<void**>(object.out()));
  }
  [[nodiscard]] ComPointer<ITypeLib> typeLibrary() const;

  /// A new object; null if that fails.
  template <class Interface = IDispatch>
  ComPointer<Interface> create(REFCLSID clsid, REFIID iid = IID_IDispatch) const {
    ComPointer<IClassFactory> factory;
    ComPointer<Interface> object;
    if (SUCCEEDED(classObject(clsid, IID_IClassFactory, factory)))
      factory->CreateInstance(nullptr, iid, reinterpret_cast<void**>(object.out()));
    return object;
  }
  [[nodiscard]] ComPointer<_VeltranoPDF> createPdf() const {
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
  Argument(int number) : Argument() { set(VT_I4, number); }
  Argument(double number) : Argument() { set(VT_R8, number); }
  Argument(bool flag) : Argument() { set(VT_BOOL, flag ? VARIANT_TRUE : VARIANT_FALSE); }
  Argument(const wchar_t* text) : Argument() { set(VT_BSTR, SysAllocString(text)); }
  Argument(IUnknown* object) : Argument() { set(VT_UNKNOWN, ComPointer(object).detach()); }
  /// An array of variants.
  Argument(std::initializer_list<Argument> elements);
  Argument(const Argument& other) : Argument() { *this = other; }
  Argument& operator=(const Argument& other) {
    VariantCopy(&value_, const_cast<VARIANT*>(&other.value_));
    return *this;
  }
  ~Argument() { VariantClear(&value_); }

  /// Of any type whose value lies in the union: numbers of all sizes, and references.
  template <class T = LONGLONG>
  static Argument of(int type, T value = {}) {
    Argument argument;
    argument.set(type, value);
    return argument;
  }
  static Argument omitted() { return of(VT_ERROR, DISP_E_PARAMNOTFOUND); }
  static Argument doubles(std::initializer_list<double> numbers);
  /// As script hosts pass their variables.
  static Argument reference(VARIANT& variable) { return of(VT_BYREF | VT_VARIANT, &variable); }

  VARIANT* get() { return &value_; }
  VARIANT* operator->() { return &value_; }
  const VARIANT* operator->() const { return &value_; }
  /// The text of any value, as the system converts it.
  [[nodiscard]] std::wstring text() const;

 private:
  template <class T>
  void set(int type, T value) {
    value_.vt = static_cast<VARTYPE>(type);
    std::memcpy(&value_.llVal, &value, sizeof value);
  }
  VARIANT value_;
};

struct Outcome {
  HRESULT status = E_UNEXPECTED;
  UINT wrong = 999;
  Argument result;
};

/// Calls a member, arguments in their natural order; the last `named.size()` are for the parameters given there, from
/// the last to the first.
Outcome callMember(IDispatch& object, DISPID id, const std::vector<Argument>& arguments, WORD flags,
                   std::vector<DISPID> named = {});
/// The same by name; the last `names.size()` arguments are named.
Outcome callMethod(IDispatch& object, const wchar_t* member, const std::vector<Argument>& arguments = {},
                   std::vector<const wchar_t*> names = {}, WORD flags = DISPATCH_METHOD);
Outcome getProperty(IDispatch& object, const wchar_t* member);
Outcome putProperty(IDispatch& object, const wchar_t* member, const Argument& value,
                    WORD flags = DISPATCH_PROPERTYPUT);

/// The object's interface of that kind; null without it.
template <class Interface>
ComPointer<Interface> as(IUnknown& object, REFIID iid) {
  ComPointer<Interface> found;
  object.QueryInterface(iid, reinterpret_cast<void**>(found.out()));
  return found;
}

}  // namespace veltrano::tests

#endif
