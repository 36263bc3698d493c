#include "server/com/class_factory.h"

#include <new>

#include "server/com/com_object.h"
#include "server/com/module.h"

namespace veltrano::server {

namespace {

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(const ClassEntry& entry) : entry_(entry) { lockModule(); }
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

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
  ~ClassFactory() override { unlockModule(); }

  const ClassEntry& entry_;
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
