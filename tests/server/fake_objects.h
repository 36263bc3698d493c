#ifndef VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H
#define VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H

// What a host hands to the server: objects with a value, lists, sinks of the Error event.

#include <functional>
#include <utility>

#include "host.h"
#include "server/com/com_object.h"

namespace veltrano::tests {

/// An object of the host, which counts its references from 0 on. It has a default property, the elements of a list if
/// it has any, and receives events.
class FakeObject final : public server::Unknown<IDispatch> {
 public:
  explicit FakeObject(Argument value = {}, std::vector<Argument> elements = {})
      : value_(std::move(value)), elements_(std::move(elements)) {}
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR** names, UINT, LCID, DISPID* ids) override {
    const std::wstring name = names[0];
    if (elements_.empty()) return DISP_E_UNKNOWNNAME;
    ids[0] = name == L"length" ? lengthId : static_cast<DISPID>(std::stoi(name)) + 1;
    return S_OK;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    if (id == 1 && arguments->cArgs == 1 && arguments->rgvarg[0].vt == (VT_BYREF | VT_BSTR)) {
      messages.emplace_back(*arguments->rgvarg[0].pbstrVal);
      // Hosts may assign to a parameter by reference.
      SysReAllocString(arguments->rgvarg[0].pbstrVal, L"assigned by the host");
    }
    inInvoke();
    if (result == nullptr) return answer;
    if (id == lengthId) return VariantCopy(result, Argument(static_cast<int>(elements_.size())).get());
    return VariantCopy(
        result, id == DISPID_VALUE ? value_.get() : elements_.at(static_cast<std::size_t>(id) - 1).get());
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
  static constexpr DISPID lengthId = 1000;
  Argument value_;
  std::vector<Argument> elements_;
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
