// What is left of the DLL in a process that loads it and lets it go. A program of its own: the first object keeps it.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <thread>

#include "host.h"
#include "server/com/class_table.h"

namespace veltrano::tests {

namespace {

/// What this process holds: bytes of all heaps, and open handles.
struct Holdings {
  SIZE_T bytes = 0;
  int handles = 0;
};

Holdings holdings() {
  Holdings held;
  std::array<HANDLE, 64> heaps{};
  const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  EXPECT_LE(count, heaps.size());
  for (DWORD i = 0; i < std::min<std::size_t>(count, heaps.size()); ++i) {
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heaps[i], &entry) != FALSE)
      held.bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
  }
  // One by one, as Wine does not count them.
  for (ULONG_PTR handle = 4; handle < 0x10000; handle += 4) {
    DWORD flags = 0;
    held.handles += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != FALSE ? 1 : 0;
  }
  return held;
}

/// Uses what a thread may leave something of: locks, static variables, exceptions, the database engine.
void useObjects(const Dll& dll) {
  const auto pdf = dll.createPdf();
  EXPECT_EQ(S_OK, callMethod(*pdf.get(), L"PDFBeginDoc").status);
  EXPECT_EQ(S_OK, callMethod(*pdf.get(), L"PDFTextOut", {L"text"}).status);
  for (const server::ClassEntry& entry : server::classTable()) {
    const auto object = dll.create(*entry.clsid);
    callMethod(*object.get(), L"OpenDB", {L"C:\\no such.mdb"});
  }
}

/// What `rounds` rounds leave in the process, after some that fill what is kept once.
Holdings leftBy(int rounds, const std::function<void()>& round) {
  for (int i = 0; i < 5; ++i) round();
  const Holdings before = holdings();
  for (int i = 0; i < rounds; ++i) round();
  const Holdings after = holdings();
  return {after.bytes - before.bytes, after.handles - before.handles};
}

bool isLoaded() {
  return GetModuleHandleW(dllFile().filename().c_str()) != nullptr;
}

// In this order: an object keeps the DLL for good.
TEST(Unloading, HappensUntilTheFirstObjectIsMade) {
  const std::pair<const char*, void (*)(const Dll&)> uses[] = {
      {"type library", [](const Dll& dll) { EXPECT_TRUE(dll.typeLibrary()); }},
      {"registration",
       [](const Dll& dll) {
         for (const BOOL install : {TRUE, FALSE}) EXPECT_EQ(S_OK, dll.call("DllInstall", install, L"user"));
       }},
      {"class factory", [](const Dll& dll) {
         ComPointer<IClassFactory> factory;
         EXPECT_EQ(S_OK, dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, factory));
       }}};
  constexpr int rounds = 20;
  for (const auto& [name, use] : uses) {
    const Holdings left = leftBy(rounds, [use = use] {
      const Dll dll;
      use(dll);
      EXPECT_EQ(S_OK, dll.canUnloadNow());
    });
    EXPECT_FALSE(isLoaded()) << name;
    // The compiler's runtime leaves as much of a DLL of ten lines: its reserve for exceptions, above all, which has
    // 73 KB in 64 bits.
    EXPECT_GE(rounds * (sizeof(void*) == 8 ? 80000U : 20000U), left.bytes) << name;
    EXPECT_GE(rounds * 4, left.handles) << name;
  }
}

TEST(Unloading, IsAskedForWithoutEffectAfterwards) {
  const Holdings left = leftBy(50, [] {
    const Dll dll;
    useObjects(dll);
    std::thread([&] { useObjects(dll); }).join();
    EXPECT_EQ(S_OK, dll.canUnloadNow());
  });
  EXPECT_TRUE(isLoaded());
  EXPECT_EQ(0U, left.bytes);
  EXPECT_GE(3, left.handles) << "the system may have opened one of its own";
}

}  // namespace

}  // namespace veltrano::tests
