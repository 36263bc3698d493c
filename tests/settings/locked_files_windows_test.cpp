// Files that another program has locked for a moment, as a backup or a virus scanner does.

#include <windows.h>

#include <gtest/gtest.h>

#include "base/os/owned.h"
#include "tests/settings/xml_fixture.h"
#include "veltrano/ini.h"

namespace veltrano::tests {
namespace {

using LockedFiles = XmlFixture;

/// Keeps others from the file.
class Lock : Owned<HANDLE, [](HANDLE handle) { CloseHandle(handle); }> {
 public:
  explicit Lock(const std::filesystem::path& file)
      : Owned(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {}
};

TEST_F(LockedFiles, SettingsThatCouldNotBeReadAreNotWrittenOver) {
  const std::string before = "<XML><A><K>old</K></A></XML>";
  ASSERT_TRUE(replaceFile(file, before));
  {
    const Lock lock(file);
    xml.XML_Open(file);
  }
  EXPECT_EQ(xml.XML_GetSetting("A", "K", "default"), "default");
  xml.XML_SaveSetting("B", "K", "new");
  EXPECT_EQ(saved(), before);
  xml.XML_Open(file);
  xml.XML_SaveSetting("B", "K", "new");
  EXPECT_EQ(saved(), "<XML><A><K>old</K></A><B><K>new</K></B></XML>");
}

TEST_F(LockedFiles, IniFilesAnswerDefaultsAndStay) {
  ASSERT_TRUE(replaceFile(file, "A=1\r\n"));
  VeltranoINI ini;
  {
    const Lock lock(file);
    EXPECT_EQ(ini.GetIniValue(file, u"A", u"default"), u"default");
    ini.SetIniValue(file, u"A", u"2");
  }
  EXPECT_EQ(readWholeFile(file), "A=1\r\n");
}

}  // namespace
}  // namespace veltrano::tests
