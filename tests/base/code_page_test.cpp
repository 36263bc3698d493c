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

TEST(CodePage, LowersAccentedLetters) {
  EXPECT_EQ(ansiLower("\xC9T\xC9 \x8A \x9F \xD7 1A"), "\xE9t\xE9 \x9A \xFF \xD7 1a");
}

TEST(CodePage, OthersAreFoundByName) {
  const struct {
    const char* name;
    unsigned code;
    char16_t character;
  } cases[] = {{"ISO-8859-15", 0xA4, 0x20AC},  {"iso-8859-2", 0xA1, 0x0104}, {"Windows-1253", 0xC1, 0x0391},
               {"windows-1254", 0xFD, 0x0131}, {"koi8-r", 0xD0, 0x043F},     {"IBM850", 0x82, 0x00E9}};
  for (const auto& c : cases) {
    const auto table = codePageNamed(c.name);
    ASSERT_TRUE(table) << c.name;
    EXPECT_EQ(static_cast<unsigned>((*table)[c.code - 128]), static_cast<unsigned>(c.character)) << c.name;
  }
  // Several bytes a character, no ASCII below, states, no such thing, more than a name.
  for (const char* name : {"Shift_JIS", "GB18030", "UTF-8", "IBM037", "UTF-7", "ISO-2022-JP", "ISO-8859-99",
                           "windows-", "", "ISO-8859-15//TRANSLIT"}) {
    EXPECT_FALSE(codePageNamed(name)) << name;
  }
}

}  // namespace
}  // namespace veltrano
