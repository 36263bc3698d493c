// The DLL needs nothing but Windows, offers what a host asks for, and is hardened.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "host.h"

namespace veltrano::tests {

namespace {

/// The DLL as the loader has mapped it.
class DllFile : public testing::Test {
 protected:
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

TEST_F(DllFile, ImportsWindowsAlone) {
  const std::set<std::string> ofWindows = {"advapi32.dll", "gdi32.dll",    "kernel32.dll", "msvcrt.dll",
                                           "ole32.dll",    "oleaut32.dll", "shell32.dll",  "shlwapi.dll",
                                           "user32.dll",   "version.dll"};
  for (const auto* entry = directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT); entry->Name != 0;
       ++entry) {
    std::string name = at<char>(entry->Name);
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
    EXPECT_EQ(1U, ofWindows.count(name)) << name << " is not a part of Windows";
  }
}

TEST_F(DllFile, ExportsWhatHostsAskFor) {
  const auto* table = directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
  std::string names;
  for (DWORD i = 0; i < table->NumberOfNames; ++i)
    names += at<char>(at<DWORD>(table->AddressOfNames)[i]) + std::string(" ");
  EXPECT_EQ("DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer DllUnregisterServer ", names);
}

TEST_F(DllFile, IsHardened) {
  constexpr WORD highEntropyAddresses = 0x20;
  const WORD expected = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                        (sizeof(void*) == 8 ? highEntropyAddresses : 0);
  EXPECT_EQ(expected, headers_.OptionalHeader.DllCharacteristics & expected);
}

}  // namespace

}  // namespace veltrano::tests
