// What is left of the DLL in a process that loads it and lets it go. A program of its own: the first object keeps it.

#include <gtest/gtest.h>

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
  std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
  GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  for (const HANDLE heap : heaps) {
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry) != FALSE)
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
  callMethod(*pdf.get(), L"PDFBeginDoc");
  callMethod(*pdf.get(), L"PDFTextOut", {L"text"});
  for (const server::ClassEntry& entry : server::classTable()) {
    const auto object = dll.create(*entry.clsid);
    callMethod(*object.get(), L"OpenDB", {L"C:\\no such.mdb"});
  }
}

// Objects come last: the first keeps the DLL for good.
TEST(Unloading, HappensUntilTheFirstObjectIsMade) {
  struct Row {
    const char* use;
    bool stays;
    SIZE_T bytes;  ///< left by a round, at most
    void (*round)(const Dll&);
  };
  // The compiler's runtime leaves as much of a DLL of ten lines: its reserve for exceptions, above all, which has 73 KB
  // in 64 bits.
  constexpr SIZE_T runtime = sizeof(void*) == 8 ? 80000 : 20000;
  const Row rows[] = {{"registration", false, runtime,
                       [](const Dll& dll) {
                         for (const BOOL install : {TRUE, FALSE})
                           EXPECT_EQ(S_OK, dll.call("DllInstall", install, L"user"));
                       }},
                      {"class factory", false, runtime,
                       [](const Dll& dll) {
                         ComPointer<IClassFactory> factory;
                         EXPECT_EQ(S_OK, dll.classObject(CLSID_VeltranoPDF, IID_IClassFactory, factory));
                       }},
                      {"objects", true, 0, [](const Dll& dll) {
                         useObjects(dll);
                         std::thread([&] { useObjects(dll); }).join();
                       }}};
  for (const auto& [use, stays, bytes, round] : rows) {
    constexpr int first = 5, last = 25;  // at first what is kept once is filled
    Holdings before;
    for (int i = 0; i < last; ++i) {
      if (i == first) before = holdings();
      const Dll dll;
      round(dll);
      EXPECT_EQ(S_OK, dll.canUnloadNow());
    }
    const Holdings after = holdings();
    EXPECT_EQ(stays, GetModuleHandleW(dllFile.filename().c_str()) != nullptr) << use;
    EXPECT_GE((last - first) * bytes, after.bytes - before.bytes) << use;
    // The system may have opened some of its own.
    EXPECT_GE(stays ? 3 : 4 * (last - first), after.handles - before.handles) << use;
  }
}

}  // namespace

}  // namespace veltrano::tests
