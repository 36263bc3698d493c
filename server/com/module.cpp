#include "server/com/module.h"

#include <atomic>

namespace veltrano::server {

namespace {

std::atomic<long> locks{0};

/// The module that this code is in. The flags say what becomes of its reference count.
HMODULE ownModule(DWORD flags) {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, reinterpret_cast<const wchar_t*>(&locks),
                     &module);
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

void pinModule() {
  static const HMODULE pinned = ownModule(GET_MODULE_HANDLE_EX_FLAG_PIN);
  static_cast<void>(pinned);
}

std::wstring modulePath() {
  const HMODULE module = ownModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
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
