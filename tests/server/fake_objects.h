#ifndef VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H
#define VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H

// What a host hands to the server: objects made for one test, pictures.

#include <functional>

#include "base/files/whole.h"
#include "host.h"
#include "server/com/com_object.h"

namespace veltrano::tests {

/// IDispatch that counts its references, from 0 on, and runs `inInvoke` whenever it is asked for something.
class DispatchFake : public server::Unknown<IDispatch> {
 public:
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references;
    if (left == 0 && onHeap) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }

  ULONG references = 0;
  bool onHeap = true;
  std::function<void()> inInvoke = [] {};
};

/// An object with a default property, and the elements of a list if it has any.
class FakeObject final : public DispatchFake {
 public:
  explicit FakeObject(Argument value, std::vector<Argument> elements = {})
      : value_(std::move(value)), elements_(std::move(elements)) {}
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR** names, UINT, LCID, DISPID* ids) override {
    const std::wstring name = names[0];
    if (elements_.empty()) return DISP_E_UNKNOWNNAME;
    ids[0] = name == L"length" ? lengthId : static_cast<DISPID>(std::stoi(name)) + 1;
    return S_OK;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    inInvoke();
    if (id == DISPID_VALUE) return VariantCopy(result, value_.get());
    if (id == lengthId) return VariantCopy(result, Argument(static_cast<int>(elements_.size())).get());
    return VariantCopy(result, elements_.at(static_cast<std::size_t>(id) - 1).get());
  }

 private:
  static constexpr DISPID lengthId = 1000;
  Argument value_;
  std::vector<Argument> elements_;
};

/// A sink of the Error event. Lives on the stack of a test.
class RecordingSink final : public DispatchFake {
 public:
  RecordingSink() { onHeap = false; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    if (id == 1 && arguments->cArgs == 1 && arguments->rgvarg[0].vt == (VT_BYREF | VT_BSTR)) {
      messages.emplace_back(*arguments->rgvarg[0].pbstrVal);
      // Hosts may assign to a parameter by reference.
      SysReAllocString(arguments->rgvarg[0].pbstrVal, L"assigned by the host");
    }
    inInvoke();
    return answer;
  }

  std::vector<std::wstring> messages;
  /// What the sink answers to the event.
  HRESULT answer = S_OK;
  /// False for a sink of plain dispatch.
  bool knowsEventInterface = true;

 protected:
  void* find(REFIID iid) override {
    return DispatchFake::find(knowsEventInterface && iid == DIID___VeltranoPDF ? IID_IDispatch : iid);
  }
};

/// A sink connected to an object.
class Connection {
 public:
  Connection(IUnknown& object, IUnknown& sink) {
    const auto container = as<IConnectionPointContainer>(object, IID_IConnectionPointContainer);
    if (container && SUCCEEDED(container->FindConnectionPoint(DIID___VeltranoPDF, point_.out())))
      point_->Advise(&sink, &cookie_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { disconnect(); }
  void disconnect() {
    if (const DWORD cookie = std::exchange(cookie_, 0)) point_->Unadvise(cookie);
    point_ = {};
  }

 private:
  ComPointer<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};

/// The smallest file that the PDF writer takes for a grey JPEG of that size, up to 127 pixels a side. A comment
/// fills it up to the least size that is examined.
inline void writeGreyJpeg(const std::filesystem::path& file, char width, char height) {
  replaceFile(file, std::string("\xFF\xD8\xFF\xC0\0\x0B\x08\0", 8) + height + '\0' + width +
                        std::string("\x01\x01\x11\0\xFF\xFE\x01\0", 8) + std::string(254, ' ') + "\xFF\xD9");
}

}  // namespace veltrano::tests

#endif
