#include "server/com/module.h"

#include <atomic>

#include "base/os/module_windows.h"

namespace veltrano::server {

namespace {

std::atomic<long> locks{0};

}  // namespace

void lockModule() {
  ++locks;
}
void unlockModule() {
  --locks;
}
long moduleLocks() {
  return locks;
}

void pinModule() {
  [[maybe_unused]] static const HMODULE pinned = ownModule(GET_MODULE_HANDLE_EX_FLAG_PIN);
}

std::wstring modulePath() {
  return veltrano::modulePath(ownModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT)).wstring();
}

HRESULT loadTypeLibrary(ComPointer<ITypeLib>& library) {
  return LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, library.out());
}

}  // namespace veltrano::server
