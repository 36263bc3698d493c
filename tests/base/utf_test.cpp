#include "base/text/utf.h"

#include <gtest/gtest.h>

#include "base/text/lower_case.h"
#include "base/text/wtf8.h"

namespace veltrano {
namespace {

TEST(Unicode, EveryCharacterSurvivesTheTrip) {
  for (char32_t c = 0; c <= 0x10FFFF; c += c < 0x10100 || c > 0x10FF00 ? 1 : 251) {
    const bool surrogate = isHighSurrogate(c) || isLowSurrogate(c);
    const auto lone = surrogate ? LoneSurrogate::kept : LoneSurrogate::replaced;
    std::string utf8;
    std::u16string utf16;
    appendUtf8(utf8, c);
    appendUtf16(utf16, c);
    std::size_t i = 0;
    std::size_t j = 0;
    ASSERT_EQ(nextCharacter(utf8, i, lone), c);
    ASSERT_EQ(nextCharacter(utf16, j, lone), c);
    ASSERT_EQ(i, utf8.size());
    ASSERT_EQ(j, utf16.size());
  }
  EXPECT_EQ(utf8ToUtf16("a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"), u"a\u00E9\u4E2D\U0001F600");
  EXPECT_EQ(utf16ToUtf8(u"a\u00E9\u4E2D\U0001F600"), "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
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
  EXPECT_EQ(wtf8ToUtf16("\xED\xA0"), u"\uFFFD");
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
}

TEST(LowerCase, NamesAreComparedByCharacters) {
  EXPECT_TRUE(sameName("Num\xC3\x89ro", "nUM\xC3\xA9RO"));
  EXPECT_FALSE(sameName("Num\xC3\x89ro", "numero"));
  EXPECT_TRUE(sameAsciiName("UTF-8", "utf-8"));
  EXPECT_FALSE(sameAsciiName("UTF-8", "utf-16"));
  EXPECT_FALSE(sameAsciiName("\xC3\x89", "\xC3\xA9"));
  EXPECT_FALSE(sameAsciiName("[", "{")) << "not letters";
  EXPECT_TRUE(sameAsciiName<wchar_t>(L"Name", L"nAME"));
}

}  // namespace
}  // namespace veltrano
