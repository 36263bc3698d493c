#ifndef VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H
#define VELTRANO_TESTS_SERVER_FAKE_OBJECTS_H

// Objects that a host hands to the server, made for one test and counting their references.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host.h"

namespace veltrano::tests {

/// IDispatch without members but those that a test gives it. Starts without a reference of its own.
class DispatchFake : public IDispatch {
 public:
  DispatchFake() = default;
  DispatchFake(const DispatchFake&) = delete;
  DispatchFake& operator=(const DispatchFake&) = delete;
  DispatchFake(DispatchFake&&) = delete;
  DispatchFake& operator=(DispatchFake&&) = delete;
  virtual ~DispatchFake() = default;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }

  ULONG references = 0;
  bool onHeap = true;
};

/// An object with a default property, and the elements of a list if it has any.
class FakeObject final : public DispatchFake {
 public:
  explicit FakeObject(Argument value, std::vector<Argument> elements = {})
      : value_(std::move(value)), elements_(std::move(elements)) {}
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                      UINT*) override;

  /// Runs whenever the object is asked for a value.
  std::function<void()> inInvoke;

 private:
  Argument value_;
  std::vector<Argument> elements_;
};

/// A sink of the Error event. Lives on the stack of a test.
class RecordingSink final : public DispatchFake {
 public:
  RecordingSink() { onHeap = false; }
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                      UINT*) override;

  [[nodiscard]] std::wstring last() const { return messages.empty() ? std::wstring() : messages.back(); }
  void clear() { messages.clear(); }

  std::vector<std::wstring> messages;
  /// Runs in the event.
  std::function<void()> inEvent;
  /// What the sink answers.
  HRESULT answer = S_OK;
  /// Answers to plain dispatch alone.
  bool knowsEventInterface = true;
};

/// A sink connected to an object.
class Connection {
 public:
  Connection(IUnknown& object, IUnknown& sink);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  Connection(Connection&&) = delete;
  Connection& operator=(Connection&&) = delete;
  ~Connection() { disconnect(); }
  void disconnect();
  [[nodiscard]] HRESULT status() const { return status_; }

 private:
  ComPointer<IConnectionPoint> point_;
  DWORD cookie_ = 0;
  HRESULT status_ = E_FAIL;
};

/// What the processor does with floating-point numbers in this thread: the control words of both units. Changes
/// them for the time of a scope.
class ArithmeticOfHost {
 public:
  struct Settings {
    unsigned vector = 0;
    unsigned short stack = 0;
    bool operator==(const Settings&) const = default;
  };
  /// A division by zero raises; the stack unit rounds to single precision.
  static constexpr Settings unusual = {0x1D80, 0x007B};

  ArithmeticOfHost() { set(unusual); }
  ArithmeticOfHost(const ArithmeticOfHost&) = delete;
  ArithmeticOfHost& operator=(const ArithmeticOfHost&) = delete;
  ArithmeticOfHost(ArithmeticOfHost&&) = delete;
  ArithmeticOfHost& operator=(ArithmeticOfHost&&) = delete;
  ~ArithmeticOfHost() { set(before_); }

  static Settings now();

 private:
  static void set(const Settings& settings);
  Settings before_ = now();
};

/// The smallest file that the PDF writer takes for a grey JPEG of that size.
void writeGreyJpeg(const std::filesystem::path& file, int width, int height);

}  // namespace veltrano::tests

#endif
