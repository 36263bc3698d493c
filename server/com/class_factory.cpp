#include "server/com/class_factory.h"

#include <atomic>
#include <new>

#include "server/com/module.h"

namespace veltrano::server {

namespace {

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const ClassEntry& entry) : entry_(entry) { lockModule(); }
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;
  ClassFactory(ClassFactory&&) = delete;
  ClassFactory& operator=(ClassFactory&&) = delete;
  virtual ~ClassFactory() { unlockModule(); }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) {
      return E_NOINTERFACE;
    }
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    pinModule();
    IDispatch* created = entry_.create(entry_);
    if (created == nullptr) {
      return E_OUTOFMEMORY;
    }
    const HRESULT result = created->QueryInterface(iid, object);
    created->Release();
    return result;
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock != FALSE) {
      lockModule();
    } else {
      unlockModule();
    }
    return S_OK;
  }

 private:
  const ClassEntry& entry_;
  std::atomic<ULONG> references_{1};
};

}  // namespace

HRESULT createClassFactory(const ClassEntry& entry, REFIID iid, void** object) {
  auto* factory = new (std::nothrow) ClassFactory(entry);
  if (factory == nullptr) {
    return E_OUTOFMEMORY;
  }
  const HRESULT result = factory->QueryInterface(iid, object);
  factory->Release();
  return result;
}

}  // namespace veltrano::server
