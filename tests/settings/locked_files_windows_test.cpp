// Files that another program has locked for a moment, as a backup or a virus scanner does.

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/settings/xml_fixture.h"
#include "veltrano/ini.h"

namespace veltrano::tests {
namespace {

using LockedFiles = XmlFixture;

TEST_F(LockedFiles, AreNeitherReadNorWrittenOver) {
  const std::string before = "<XML><A>\r\n<K>old</K></A></XML>";
  ASSERT_TRUE(replaceFile(file, before));
  VeltranoINI ini;
  const HANDLE other = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  xml.XML_Open(file);
  EXPECT_EQ(ini.GetIniValue(file, u"<K", u"default"), u"default");
  ini.SetIniValue(file, u"<K", u"2");
  CloseHandle(other);
  EXPECT_EQ(run("get A K; save B K new"), "none;");
  EXPECT_EQ(saved(), before);
  EXPECT_EQ(run("open; save B K new; get A K"), "old;");
  EXPECT_EQ(saved(), "<XML><A>\r\n<K>old</K></A><B><K>new</K></B></XML>");
}

}  // namespace
}  // namespace veltrano::tests
