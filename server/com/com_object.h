#ifndef VELTRANO_SERVER_COM_COM_OBJECT_H
#define VELTRANO_SERVER_COM_COM_OBJECT_H

#include <atomic>

#include "server/com/automation.h"

namespace veltrano::server {

/// Hands the reference that `make` returns to the host.
template <class Interface, class Make>
HRESULT handOver(Interface** result, Make&& make) {
  if (result == nullptr) {
    return E_POINTER;
  }
  *result = nullptr;
  return guarded([&] {
    *result = make();
    return S_OK;
  });
}

/// The search for interfaces that IUnknown begins with; a derived class counts the references.
template <class First, class... Others>
class Unknown : public First, public Others... {
 public:
  Unknown() = default;
  Unknown(const Unknown&) = delete;
  Unknown& operator=(const Unknown&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = find(iid);
    if (*object == nullptr) {
      return E_NOINTERFACE;
    }
    static_cast<First*>(this)->AddRef();
    return S_OK;
  }

 protected:
  virtual ~Unknown() = default;

  /// The interface of that identifier, cast to it, without a further reference; null if the object lacks it. An object
  /// of several interfaces says here which identifiers mean them.
  virtual void* find(REFIID iid) {
    return iid == IID_IUnknown || iid == __uuidof(First) ? static_cast<First*>(this) : nullptr;
  }
};

/// An object on the heap: counts its references, starting with one, and is deleted with the last.
template <class... Interfaces>
class ComObject : public Unknown<Interfaces...> {
 public:
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      // While the object is being destroyed it may be referred to and released again, by a sink for example.
      references_ = 1;
      delete this;
    }
    return left;
  }

 protected:
  ~ComObject() override = default;

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace veltrano::server

#endif
