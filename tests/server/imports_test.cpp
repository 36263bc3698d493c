// The DLL needs nothing but Windows, offers what a host asks for, and is hardened.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>

#include "host.h"

namespace veltrano::tests {

namespace {

/// The DLL as the loader has mapped it.
class LoadedImage {
 public:
  [[nodiscard]] WORD characteristics() const { return headers_.OptionalHeader.DllCharacteristics; }

  [[nodiscard]] std::set<std::string> imports() const {
    std::set<std::string> names;
    for (const auto* entry = directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
         entry->Name != 0; ++entry) {
      std::string name = at<char>(entry->Name);
      std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
      names.insert(name);
    }
    return names;
  }
  [[nodiscard]] std::set<std::string> exports() const {
    const auto* table = directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    std::set<std::string> names;
    for (DWORD i = 0; i < table->NumberOfNames; ++i) {
      names.insert(at<char>(at<DWORD>(table->AddressOfNames)[i]));
    }
    return names;
  }

 private:
  template <class T>
  [[nodiscard]] const T* at(DWORD address) const {
    return reinterpret_cast<const T*>(base_ + address);
  }
  template <class T>
  [[nodiscard]] const T* directory(int index) const {
    return at<T>(headers_.OptionalHeader.DataDirectory[index].VirtualAddress);
  }

  Dll dll_;
  const char* base_ = reinterpret_cast<const char*>(GetModuleHandleW(dllFile().c_str()));
  const IMAGE_NT_HEADERS& headers_ =
      *at<IMAGE_NT_HEADERS>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
};

TEST(DllFile, ImportsWindowsAlone) {
  const std::set<std::string> ofWindows = {"advapi32.dll", "gdi32.dll",    "kernel32.dll", "msvcrt.dll",
                                           "ole32.dll",    "oleaut32.dll", "shell32.dll",  "shlwapi.dll",
                                           "user32.dll",   "version.dll"};
  for (const std::string& name : LoadedImage().imports()) {
    EXPECT_EQ(1U, ofWindows.count(name)) << name << " is no part of Windows";
  }
}

TEST(DllFile, ExportsWhatHostsAskFor) {
  const std::set<std::string> expected = {"DllCanUnloadNow", "DllGetClassObject", "DllInstall",
                                          "DllRegisterServer", "DllUnregisterServer"};
  EXPECT_EQ(expected, LoadedImage().exports());
}

TEST(DllFile, IsHardened) {
  WORD expected = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  if (sizeof(void*) == 8) {
    expected |= 0x20;  // high-entropy addresses
  }
  EXPECT_EQ(expected, LoadedImage().characteristics() & expected);
}

}  // namespace

}  // namespace veltrano::tests
