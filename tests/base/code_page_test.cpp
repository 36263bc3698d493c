#include "base/text/code_page.h"

#include <gtest/gtest.h>

namespace veltrano {
namespace {

// On Windows these hold for the Western code page, which is Wine's and this project's test machines' own.

TEST(CodePage, EveryByteSurvivesTheTripThroughUnicode) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) {
    bytes.push_back(static_cast<char>(i));
  }
  EXPECT_EQ(utf16ToAnsi(ansiToUtf16(bytes)), bytes);
  EXPECT_EQ(utf8ToAnsi(ansiToUtf8(bytes)), bytes);
}

TEST(CodePage, KnowsWindows1252) {
  EXPECT_EQ(utf8ToAnsi("Zo\xC3\xAB \xE2\x82\xAC"), "Zo\xEB \x80");
  EXPECT_EQ(ansiToUtf8("\x93\xC9\x94"), "\xE2\x80\x9C\xC3\x89\xE2\x80\x9D");
  EXPECT_EQ(utf16ToAnsi(u"\u4E2D"), "?");
}

#ifndef _WIN32
TEST(CodePage, MayTakeSeveralBytesACharacter) {
  ASSERT_FALSE(setCodePage("no such page"));
  ASSERT_TRUE(setCodePage("CP932"));
  EXPECT_EQ(utf16ToAnsi(u"a\u30A2\u00E9\U0001F600\\"), "a\x83\x41??\\");
  EXPECT_EQ(ansiToUtf16("\x83\x61\xFF.\x83"), u"\u30C2\uFFFD.\uFFFD");
  ASSERT_TRUE(setCodePage("windows-1251"));
  EXPECT_EQ(utf16ToAnsi(u"\u0416"), "\xC6");
  EXPECT_TRUE(setCodePage("windows-1252"));
}
#endif

}  // namespace
}  // namespace veltrano
