#include "server/com/module.h"

#include <atomic>

namespace veltrano::server {

namespace {

std::atomic<long> locks{0};

HMODULE ownModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(&locks), &module);
  return module;
}

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

std::wstring modulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(ownModule(), path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

HRESULT loadTypeLibrary(ComPointer<ITypeLib>& library) {
  return LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, library.out());
}

}  // namespace veltrano::server
