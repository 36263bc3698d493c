#ifndef VELTRANO_TESTS_SERVER_HOST_H
#define VELTRANO_TESTS_SERVER_HOST_H

// A C++ automation host for the tests: the DLL of this build, loaded by its path, late-bound calls, and objects that the
// host hands over: values, lists, sinks of the Error event.

#include <cstring>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "../temporary_folder.h"
#include "base/files/whole.h"
#include "base/os/module_windows.h"
#include "server/com/com_object.h"

namespace veltrano::tests {

using server::ComPointer;

/// The DLL of this build: the test programs lie in tests/server below it.
inline const std::filesystem::path dllFile =
    modulePath(nullptr).parent_path().parent_path().parent_path() / "VeltranoFrameWorkDLL.dll";
/// Wine's drive Z is the root of the machine that the sources lie on.
inline const std::filesystem::path projectFolder = L"Z:" PROJECT_FOLDER;
/// 1200 x 800 pixels.
inline const std::filesystem::path photo = projectFolder / "samples" / "photo.jpg";

inline std::string readFile(const std::filesystem::path& file) {
  return readWholeFile(file).value_or("");
}

/// The loaded DLL and its exports.
class Dll {
 public:
  explicit Dll(const std::filesystem::path& file = dllFile) : module_(LoadLibraryW(file.c_str())) {}
  Dll(const Dll&) = delete;
  Dll& operator=(const Dll&) = delete;
  ~Dll() { FreeLibrary(module_); }

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
  Argument(std::initializer_list<Argument> elements) : Argument() {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size()));
    auto* slot = static_cast<VARIANT*>(array->pvData);
    for (const Argument& element : elements) VariantCopy(slot++, const_cast<VARIANT*>(&element.value_));
    set(VT_ARRAY | VT_VARIANT, array);
  }
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
  /// An array of zeros.
  static Argument array(VARTYPE type, ULONG size) {
    return of(VT_ARRAY | type, SafeArrayCreateVector(type, 0, size));
  }
  /// As script hosts pass their variables.
  static Argument reference(VARIANT& variable) { return of(VT_BYREF | VT_VARIANT, &variable); }

  VARIANT* get() { return &value_; }
  VARIANT* operator->() { return &value_; }
  const VARIANT* operator->() const { return &value_; }
  /// The text of any value, as the system converts it.
  [[nodiscard]] std::wstring text() const {
    Argument converted;
    const HRESULT status =
        VariantChangeType(converted.get(), const_cast<VARIANT*>(&value_), VARIANT_ALPHABOOL, VT_BSTR);
    return FAILED(status) ? L"<" + std::to_wstring(value_.vt) + L">"
                          : std::wstring(converted->bstrVal, SysStringLen(converted->bstrVal));
  }

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
inline Outcome callMember(IDispatch& object, DISPID id, const std::vector<Argument>& arguments, WORD flags,
                          std::vector<DISPID> named = {}) {
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

/// The same by name; the last `names.size()` arguments are named.
inline Outcome callMethod(IDispatch& object, const wchar_t* member,
                          const std::vector<Argument>& arguments = {}, std::vector<const wchar_t*> names = {},
                          WORD flags = DISPATCH_METHOD) {
  names.insert(names.begin(), member);
  std::vector<DISPID> ids(names.size());
  Outcome outcome;
  outcome.status = object.GetIDsOfNames(IID_NULL, const_cast<OLECHAR**>(names.data()),
                                        static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT, ids.data());
  if (FAILED(outcome.status)) return outcome;
  return callMember(object, ids[0], arguments, flags, {ids.rbegin(), ids.rend() - 1});
}

inline std::wstring getProperty(IDispatch& object, const wchar_t* member) {
  return callMethod(object, member, {}, {}, DISPATCH_PROPERTYGET).result.text();
}

inline HRESULT putProperty(IDispatch& object, const wchar_t* member, const Argument& value) {
  return callMethod(object, member, std::vector<Argument>(1, value), {}, DISPATCH_PROPERTYPUT).status;
}

/// The object's interface of that kind; null without it.
template <class Interface>
ComPointer<Interface> as(IUnknown& object, REFIID iid) {
  ComPointer<Interface> found;
  object.QueryInterface(iid, reinterpret_cast<void**>(found.out()));
  return found;
}

/// An object of the host, which counts its references from 0 on. It has a default property and receives events.
class FakeObject final : public server::Unknown<IDispatch> {
 public:
  explicit FakeObject(Argument value = {}) : value_(std::move(value)) {}
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    if (id == 1 && arguments->cArgs == 1 && arguments->rgvarg[0].vt == (VT_BYREF | VT_BSTR)) {
      messages.emplace_back(*arguments->rgvarg[0].pbstrVal);
      // Hosts may assign to a parameter by reference.
      SysReAllocString(arguments->rgvarg[0].pbstrVal, L"assigned by the host");
    }
    inInvoke();
    return result == nullptr ? answer : VariantCopy(result, value_.get());
  }

  ULONG references = 0;
  /// Run whenever the object is asked for something.
  std::function<void()> inInvoke = [] {};
  std::vector<std::wstring> messages;
  /// To events.
  HRESULT answer = S_OK;
  /// False for a sink of plain dispatch.
  bool knowsEventInterface = true;

 protected:
  void* find(REFIID iid) override {
    return Unknown::find(knowsEventInterface && iid == DIID___VeltranoPDF ? IID_IDispatch : iid);
  }

 private:
  Argument value_;
};

/// A sink connected to an object.
class Connection {
 public:
  explicit Connection(IUnknown& object, bool knowsEventInterface = true) {
    sink_->knowsEventInterface = knowsEventInterface;
    const auto container = as<IConnectionPointContainer>(object, IID_IConnectionPointContainer);
    container->FindConnectionPoint(DIID___VeltranoPDF, point_.out());
    point_->Advise(sink_.get(), &cookie_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { disconnect(); }
  void disconnect() {
    if (const DWORD cookie = std::exchange(cookie_, 0)) point_->Unadvise(cookie);
    point_ = {};
  }
  FakeObject* operator->() const { return sink_.get(); }

 private:
  ComPointer<FakeObject> sink_{new FakeObject};
  ComPointer<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};

}  // namespace veltrano::tests

#endif
