#ifndef VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H
#define VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H

// What a host hands to the server: objects made for one test, pictures.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host.h"
#include "server/com/com_object.h"

namespace veltrano::tests {

/// IDispatch that counts its references, from 0 on, and runs `inInvoke` whenever it is asked for something.
class DispatchFake : public server::Unknown<IDispatch> {
 public:
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override;
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
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                      UINT*) override;

 private:
  Argument value_;
  std::vector<Argument> elements_;
};

/// A sink of the Error event. Lives on the stack of a test.
class RecordingSink final : public DispatchFake {
 public:
  RecordingSink() { onHeap = false; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                      UINT*) override;
  [[nodiscard]] std::wstring last() const { return messages.empty() ? std::wstring() : messages.back(); }

  std::vector<std::wstring> messages;
  /// What the sink answers to the event.
  HRESULT answer = S_OK;
  /// False for a sink of plain dispatch.
  bool knowsEventInterface = true;

 protected:
  void* find(REFIID iid) override;
};

/// A sink connected to an object.
class Connection {
 public:
  Connection(IUnknown& object, IUnknown& sink);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { disconnect(); }
  void disconnect();

 private:
  ComPointer<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};

/// The smallest file that the PDF writer takes for a grey JPEG of that size.
void writeGreyJpeg(const std::filesystem::path& file, int width, int height);

}  // namespace veltrano::tests

#endif
