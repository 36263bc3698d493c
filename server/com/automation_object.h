#ifndef VELTRANO_SERVER_COM_AUTOMATION_OBJECT_H
#define VELTRANO_SERVER_COM_AUTOMATION_OBJECT_H

#include <exception>

#include "base/os/floating_point_windows.h"
#include "base/trace.h"
#include "server/com/com_object.h"
#include "server/com/dispatch/core.h"
#include "server/com/module.h"

namespace veltrano::server {

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

/// What every public object has in common: identity, lifetime, late binding, type information. A class derives from
/// AutomationObject<its dual interface> and implements the interface's own members, each a line or two that converts
/// and forwards to the portable class:
///
///   STDMETHODIMP ClearPath() override {
///     return run("ClearPath", [&] { kml_.ClearPath(); });
///   }
template <class Interface>
class AutomationObject : public ComObject<Interface, IProvideClassInfo2, ISupportErrorInfo> {
 public:
  explicit AutomationObject(const ClassEntry& entry) : core_(entry) { lockModule(); }
  AutomationObject(const AutomationObject&) = delete;
  AutomationObject& operator=(const AutomationObject&) = delete;

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
  ~AutomationObject() override { unlockModule(); }

  /// A class with further interfaces overrides it and falls back on it.
  void* find(REFIID iid) override {
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == *core_.entry().dispatchInterface) {
      return static_cast<Interface*>(this);
    }
    if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2) {
      return static_cast<IProvideClassInfo2*>(this);
    }
    return iid == IID_ISupportErrorInfo ? static_cast<ISupportErrorInfo*>(this) : nullptr;
  }

  const VARIANT* takeKeptKind() { return core_.takeKeptKind(); }

  /// For a member with a result. If the body throws, the result is cleared: hosts free what they find there.
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

  /// Runs a member's body. Hosts never see a failure: a member that runs out of memory ends with what it has done.
  template <class Body>
  HRESULT run(const char* member, Body&& body) {
    const KeepAlive alive(*static_cast<Interface*>(this));
    const LibraryArithmetic arithmetic;
    const TracedMember traced(core_.entry().name, member);
    try {
      body();
    } catch (const std::exception& failure) {
      trace("The member ended early: ", failure.what(), ".");
    }
    return S_OK;
  }

 private:
  DispatchCore core_;
};

}  // namespace veltrano::server

#endif
