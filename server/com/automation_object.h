#ifndef VELTRANO_SERVER_COM_AUTOMATION_OBJECT_H
#define VELTRANO_SERVER_COM_AUTOMATION_OBJECT_H

// The template behind every public object: identity, lifetime, late binding, type information. A class
// derives from AutomationObject<its dual interface> and implements the interface's own members, each a line
// or two that converts and forwards to the portable class:
//
//   STDMETHODIMP ClearPath() override {
//     return run("ClearPath", [&] { kml_.ClearPath(); });
//   }

#include <atomic>
#include <exception>
#include <new>

#include "base/os/floating_point_windows.h"
#include "base/trace.h"
#include "server/classes/class_table.h"
#include "server/com/dispatch.h"
#include "server/com/module.h"

namespace veltrano::server {

/// The part of IDispatch and IProvideClassInfo2 that needs no template.
class DispatchCore {
 public:
  explicit DispatchCore(const ClassEntry& entry) : entry_(entry) {}

  [[nodiscard]] const ClassEntry& entry() const { return entry_; }
  HRESULT getTypeInfo(UINT index, ITypeInfo** type);
  HRESULT getClassInfo(ITypeInfo** type);
  HRESULT getGuid(DWORD kind, GUID* guid) const;
  HRESULT getIdsOfNames(REFIID iid, OLECHAR** names, UINT count, DISPID* ids) const;
  HRESULT invoke(IDispatch& object, DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments,
                 VARIANT* result, UINT* wrongArgument);
  /// The host's own variant of the call's kind-keeping parameter.
  const VARIANT* takeKeptKind() { return kinds_.take(); }

 private:
  const ClassEntry& entry_;
  KindKeeper kinds_;
};

/// Keeps an object alive for the time of a call: a host may release its last reference in an event.
class KeepAlive {
 public:
  explicit KeepAlive(IUnknown& object) : object_(object) { object_.AddRef(); }
  KeepAlive(const KeepAlive&) = delete;
  KeepAlive& operator=(const KeepAlive&) = delete;
  ~KeepAlive() { object_.Release(); }

 private:
  IUnknown& object_;
};

/// A new object of the class, or null when memory is short.
template <class Object>
IDispatch* createObject(const ClassEntry& entry) {
  try {
    return new Object(entry);
  } catch (const std::exception&) {
    return nullptr;
  }
}

template <class Interface>
class AutomationObject : public Interface, public IProvideClassInfo2, public ISupportErrorInfo {
 public:
  explicit AutomationObject(const ClassEntry& entry) : core_(entry) { lockModule(); }
  AutomationObject(const AutomationObject&) = delete;
  AutomationObject& operator=(const AutomationObject&) = delete;
  AutomationObject(AutomationObject&&) = delete;
  AutomationObject& operator=(AutomationObject&&) = delete;
  virtual ~AutomationObject() { unlockModule(); }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == *core_.entry().dispatchInterface) {
      *object = static_cast<Interface*>(this);
    } else if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2) {
      *object = static_cast<IProvideClassInfo2*>(this);
    } else if (iid == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else {
      *object = otherInterface(iid);
    }
    if (*object == nullptr) {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      // The object is being torn down: a sink that looks at it once more must not do so twice.
      references_ = 1;
      delete this;
    }
    return left;
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) {
      return E_POINTER;
    }
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** type) override {
    return core_.getTypeInfo(index, type);
  }
  STDMETHODIMP GetIDsOfNames(REFIID iid, OLECHAR** names, UINT count, LCID, DISPID* ids) override {
    return core_.getIdsOfNames(iid, names, count, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO*, UINT* wrongArgument) override {
    const KeepAlive alive(*static_cast<Interface*>(this));
    return core_.invoke(*static_cast<Interface*>(this), id, iid, locale, flags, arguments, result,
                        wrongArgument);
  }

  STDMETHODIMP GetClassInfo(ITypeInfo** type) override { return core_.getClassInfo(type); }
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override { return core_.getGuid(kind, guid); }
  /// No member raises an error, so there is never a description of one.
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID) override { return S_FALSE; }

 protected:
  /// An interface beyond those that every object has; null when there is none. Adds no reference.
  virtual void* otherInterface(REFIID) { return nullptr; }

  const VARIANT* takeKeptKind() { return core_.takeKeptKind(); }

  /// For a member with a result: it is an empty one when the body does not come to answer, since hosts free
  /// what they find there.
  template <class Result, class Body>
  HRESULT run(const char* member, Result* result, Body&& body) {
    return run(member, [&] {
      try {
        body();
      } catch (...) {
        if (result != nullptr) {
          *result = Result{};
        }
        throw;
      }
    });
  }

  /// Runs a member's body. Hosts never see a failure: exhausted memory ends the member with what it has done.
  template <class Body>
  HRESULT run(const char* member, Body&& body) {
    const KeepAlive alive(*static_cast<Interface*>(this));
    const LibraryArithmetic arithmetic;
    try {
      body();
    } catch (const std::exception& failure) {
      traceSkipped(member, failure.what());
    }
    return S_OK;
  }

 private:
  DispatchCore core_;
  std::atomic<ULONG> references_{1};
};

}  // namespace veltrano::server

#endif
