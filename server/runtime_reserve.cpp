// The compiler's runtime keeps two things for the life of the process: a block of memory for exceptions when
// memory is short, and the thread-local slot of its threads. A host may load and unload the DLL any number of
// times, so both are given back here; without it a process has no slots left after about a thousand rounds,
// and the runtime aborts.

#include <windows.h>

#include <array>
#include <atomic>
#include <cstddef>

namespace __gnu_cxx {
/// Of the runtime, which declares it nowhere.
void __freeres();
}  // namespace __gnu_cxx

namespace {

std::array<std::atomic<DWORD>, 8> slots;
std::atomic<std::size_t> slotCount{0};

DWORD WINAPI allocateSlot() {
  using Function = DWORD(WINAPI*)();
  // No static variable: the runtime that guards it is what is being started here.
  const auto systems = reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc")));
  const DWORD slot = systems();
  const std::size_t index = slotCount++;
  if (slot != TLS_OUT_OF_INDEXES && index < slots.size()) {
    slots[index] = slot;
  }
  return slot;
}

/// The lowest priority runs last, behind every other destructor.
__attribute__((destructor(101))) void giveBack() {
  __gnu_cxx::__freeres();
  const std::size_t count = slotCount;
  for (std::size_t i = 0; i < count && i < slots.size(); ++i) {
    TlsFree(slots[i]);
  }
}

}  // namespace

// The statically linked runtime calls TlsAlloc through this entry, which is ours instead of the import
// library's.
#ifdef _WIN64
#define IMPORTED_TLS_ALLOC "__imp_TlsAlloc"
#else
#define IMPORTED_TLS_ALLOC "__imp__TlsAlloc@0"
#endif
extern "C" {
extern DWORD(WINAPI* const importedTlsAlloc)() __asm__(IMPORTED_TLS_ALLOC);
DWORD(WINAPI* const importedTlsAlloc)() = allocateSlot;
}
