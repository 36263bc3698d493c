#include "base/text/code_page.h"

#include <gtest/gtest.h>

#include "base/text/wtf8.h"

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

TEST(Unicode, MalformedTextBecomesReplacementCharacters) {
  struct Case {
    const char* label;
    std::string utf8;
    std::u16string utf16;
  };
  const Case cases[] = {
      {"lone continuation", "a\x80z", u"a\uFFFDz"},
      {"overlong slash", "\xC0\xAF", u"\uFFFD\uFFFD"},
      {"surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"cut at the end", "\xE2\x82", u"\uFFFD"},
      {"above U+10FFFF", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(utf8ToUtf16(c.utf8), c.utf16) << c.label;
  }
  EXPECT_EQ(utf16ToUtf8(std::u16string({0xD800, u'a', 0xDC00})),
            "\xEF\xBF\xBD"
            "a\xEF\xBF\xBD");
  EXPECT_EQ(utf8ToUtf16("\xF0\x9F\x98\x80"), u"\U0001F600");
  EXPECT_EQ(utf16ToUtf8(u"\U0001F600"), "\xF0\x9F\x98\x80");
}

TEST(Unicode, Wtf8KeepsLoneSurrogates) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"Zo\u00eb \U0001F600", "Zo\xC3\xAB \xF0\x9F\x98\x80"},
      {{0xD800, u'a', 0xDFFF},
       "\xED\xA0\x80"
       "a\xED\xBF\xBF"},
      {{0xDE00, 0xD83D}, "\xED\xB8\x80\xED\xA0\xBD"},
      {{0xD83D, 0xD83D, 0xDE00, u'\u00e9'}, "\xED\xA0\xBD\xF0\x9F\x98\x80\xC3\xA9"},
      {u"\uD55C", "\xED\x95\x9C"},  // a letter with the same first byte
  };
  for (const auto& [utf16, wtf8] : cases) {
    EXPECT_EQ(utf16ToWtf8(utf16), wtf8);
    EXPECT_EQ(wtf8ToUtf16(wtf8), utf16);
  }
  EXPECT_EQ(wtf8ToUtf16("\xED\xA0"), u"\uFFFD\uFFFD");
}

}  // namespace
}  // namespace veltrano
