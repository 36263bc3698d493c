#ifndef VELTRANO_SERVER_COM_COM_OBJECT_H
#define VELTRANO_SERVER_COM_COM_OBJECT_H

#include <atomic>

#include "server/com/automation.h"

namespace veltrano::server {

/// IUnknown of an object on the heap: counts its references, starting with one, and deletes it with the last. A class
/// derives from it with the interfaces that it implements, and says in find() which identifiers mean them.
template <class... Interfaces>
class ComObject : public Interfaces... {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = find(iid);
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
      // While the object is being destroyed it may be referred to and released again, by a sink for example.
      references_ = 1;
      delete this;
    }
    return left;
  }

 protected:
  virtual ~ComObject() = default;

  /// The interface of that identifier, cast to it, without a further reference; null if the object lacks it.
  virtual void* find(REFIID iid) = 0;

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace veltrano::server

#endif
