// The DLL needs nothing but Windows, offers what a host asks for, and is hardened.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <set>

#include "host.h"

namespace veltrano::tests {

namespace {

/// A DLL file, read as the loader reads it.
class PortableExecutable {
 public:
  explicit PortableExecutable(const std::filesystem::path& file) : bytes_(readFile(file)) {
    headers_ = reinterpret_cast<const IMAGE_NT_HEADERS*>(bytes_.data() + at<IMAGE_DOS_HEADER>(0).e_lfanew);
  }
  [[nodiscard]] WORD characteristics() const { return headers_->OptionalHeader.DllCharacteristics; }

  [[nodiscard]] std::set<std::string> imports() const {
    std::set<std::string> names;
    for (DWORD entry = fileOffset(directory(IMAGE_DIRECTORY_ENTRY_IMPORT));
         at<IMAGE_IMPORT_DESCRIPTOR>(entry).Name != 0; entry += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
      std::string name = text(at<IMAGE_IMPORT_DESCRIPTOR>(entry).Name);
      std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
      names.insert(name);
    }
    return names;
  }
  [[nodiscard]] std::set<std::string> exports() const {
    const auto& table = at<IMAGE_EXPORT_DIRECTORY>(fileOffset(directory(IMAGE_DIRECTORY_ENTRY_EXPORT)));
    std::set<std::string> names;
    for (DWORD i = 0; i < table.NumberOfNames; ++i) {
      names.insert(text(at<DWORD>(fileOffset(table.AddressOfNames) + i * 4)));
    }
    return names;
  }

 private:
  template <class T>
  const T& at(std::size_t offset) const {
    return *reinterpret_cast<const T*>(bytes_.data() + offset);
  }
  [[nodiscard]] DWORD directory(int index) const {
    return headers_->OptionalHeader.DataDirectory[index].VirtualAddress;
  }
  [[nodiscard]] DWORD fileOffset(DWORD address) const {
    const auto* section = reinterpret_cast<const IMAGE_SECTION_HEADER*>(
        reinterpret_cast<const char*>(&headers_->OptionalHeader) + headers_->FileHeader.SizeOfOptionalHeader);
    for (WORD i = 0; i < headers_->FileHeader.NumberOfSections; ++i, ++section) {
      if (address >= section->VirtualAddress &&
          address < section->VirtualAddress + section->Misc.VirtualSize) {
        return address - section->VirtualAddress + section->PointerToRawData;
      }
    }
    return 0;
  }
  [[nodiscard]] std::string text(DWORD address) const { return bytes_.data() + fileOffset(address); }

  std::string bytes_;
  const IMAGE_NT_HEADERS* headers_;
};

TEST(DllFile, ImportsWindowsAlone) {
  const std::set<std::string> ofWindows = {"advapi32.dll", "gdi32.dll",    "kernel32.dll", "msvcrt.dll",
                                           "ole32.dll",    "oleaut32.dll", "shell32.dll",  "shlwapi.dll",
                                           "user32.dll",   "version.dll"};
  for (const std::string& name : PortableExecutable(dllFile()).imports()) {
    EXPECT_EQ(1U, ofWindows.count(name)) << name << " is no part of Windows";
  }
}

TEST(DllFile, ExportsWhatHostsAskFor) {
  const std::set<std::string> expected = {"DllCanUnloadNow", "DllGetClassObject", "DllInstall",
                                          "DllRegisterServer", "DllUnregisterServer"};
  EXPECT_EQ(expected, PortableExecutable(dllFile()).exports());
}

TEST(DllFile, IsHardened) {
  WORD expected = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  if (sizeof(void*) == 8) {
    expected |= 0x20;  // high-entropy addresses
  }
  EXPECT_EQ(expected, PortableExecutable(dllFile()).characteristics() & expected);
}

}  // namespace

}  // namespace veltrano::tests
