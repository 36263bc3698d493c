// Files that another program has locked for a moment, as a backup or a virus scanner does.

#include <windows.h>

#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "tests/temporary_folder.h"
#include "veltrano/ini.h"
#include "veltrano/xml.h"

namespace veltrano {
namespace {

class Lock {
 public:
  explicit Lock(const std::filesystem::path& file)
      : handle_(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {}
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock() { CloseHandle(handle_); }

 private:
  HANDLE handle_;
};

TEST(LockedFiles, SettingsThatCouldNotBeReadAreNotWrittenOver) {
  const tests::TemporaryFolder folder;
  const auto file = folder / "settings.xml";
  const std::string before = "<XML><A><K>old</K></A></XML>";
  ASSERT_TRUE(replaceFile(file, before));
  VeltranoXML xml;
  {
    const Lock lock(file);
    xml.XML_Open(file);
  }
  EXPECT_EQ(xml.XML_GetSetting("A", "K", "default"), "default");
  xml.XML_SaveSetting("B", "K", "new");
  xml.XML_Save();
  EXPECT_EQ(readWholeFile(file), before);
  xml.XML_Open(file);
  xml.XML_SaveSetting("B", "K", "new");
  xml.XML_Save();
  EXPECT_EQ(readWholeFile(file), "<XML><A><K>old</K></A><B><K>new</K></B></XML>");
}

TEST(LockedFiles, IniFilesAnswerDefaultsAndStay) {
  const tests::TemporaryFolder folder;
  const auto file = folder / "settings.ini";
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
}  // namespace veltrano
