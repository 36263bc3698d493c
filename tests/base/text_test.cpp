#include <gtest/gtest.h>

#include "base/text/code_page.h"
#include "base/text/encodings.h"
#include "base/text/excerpt.h"
#include "base/text/lower_case.h"
#include "base/text/utf.h"
#include "base/text/wtf8.h"
#include "tests/split.h"

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
    std::size_t i = 0, j = 0;
    ASSERT_TRUE(nextCharacter(utf8, i, lone) == c && nextCharacter(utf16, j, lone) == c);
    ASSERT_TRUE(i == utf8.size() && j == utf16.size());
  }
  EXPECT_EQ(utf8ToUtf16("a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"), u"a\u00E9\u4E2D\U0001F600");
  EXPECT_EQ(utf16ToUtf8(u"a\u00E9\u4E2D\U0001F600"), "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
}

TEST(Unicode, Wtf8KeepsLoneSurrogates) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"Zo\u00eb \U0001F600", "Zo\xC3\xAB \xF0\x9F\x98\x80"},
      {{0xDE00, u'\uD55C', 0xD83D, 0xD83D, 0xDE00, 0xDFFF},
       "\xED\xB8\x80\xED\x95\x9C\xED\xA0\xBD\xF0\x9F\x98\x80\xED\xBF\xBF"}};
  for (const auto& [utf16, wtf8] : cases) {
    EXPECT_EQ(utf16ToWtf8(utf16), wtf8);
    EXPECT_EQ(wtf8ToUtf16(wtf8), utf16);
  }
  EXPECT_EQ(wtf8ToUtf16("\xED\xA0"), u"\uFFFD");
  EXPECT_TRUE(isWtf8("\xED\xA0\x80 \xC3\xAB") && !isWtf8("\xC3") && !isWtf8("\xED\xA0\xBD\xED\xB8\x80"));
}

TEST(Unicode, MalformedTextBecomesReplacementCharacters) {
  const std::pair<std::string, std::u16string> cases[] = {
      {"a\x80z\xE2\x82", u"a\uFFFDz\uFFFD"},
      {"\xC0\xAF", u"\uFFFD\uFFFD"},            // an overlong slash
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},  // a surrogate
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}};
  for (const auto& [utf8, utf16] : cases) EXPECT_EQ(utf8ToUtf16(utf8), utf16) << utf8;
  EXPECT_EQ(utf16ToUtf8(std::u16string({0xD800, u'.', 0xDC00})), "\xEF\xBF\xBD.\xEF\xBF\xBD");
}

TEST(Excerpt, IsShortAndPrintable) {
  const std::string x39(39, 'x');
  EXPECT_EQ(excerpt("a\x1B[2J\r\n\x7F"), "\"a?[2J???\"");
  EXPECT_EQ(excerpt(x39 + "\xC3\xAB"), "\"" + x39 + "...\"") << "not within a character";
  EXPECT_EQ(excerpt(std::string(50, '\x80')), "\"...\"");
}

TEST(LowerCase, NamesAreComparedByCharacters) {
  EXPECT_TRUE(sameName("Num\xC3\x89ro", "nUM\xC3\xA9RO") && !sameName("Num\xC3\x89ro", "numero"));
  EXPECT_TRUE(sameAsciiName("UTF-8", "utf-8") && sameAsciiName<wchar_t>(L"Name", L"nAME"));
  for (const auto& [one, other] : {std::pair("UTF-8", "utf-16"), {"\xC3\x89", "\xC3\xA9"}, {"[", "{"}})
    EXPECT_FALSE(sameAsciiName(one, other)) << one;
}

// On Windows these hold for the Western code page, which is Wine's and this project's test machines' own.

TEST(CodePage, IsWindows1252AndKeepsEveryByte) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<char>(i));
  EXPECT_EQ(utf16ToAnsi(ansiToUtf16(bytes)), bytes);
  EXPECT_EQ(utf8ToAnsi(ansiToUtf8(bytes)), bytes);
  EXPECT_EQ(ansiToUtf8("\x93\xC9\x80"), "\xE2\x80\x9C\xC3\x89\xE2\x82\xAC");
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

TEST(Encodings, AreFoundByTheNamesThatFilesUse) {
  // A name, bytes, and the same in UTF-8.
  const std::string rows =
      "ISO-8859-15 \xA4 €; iso-8859-2 \xA1 Ą; Windows-1252 \x80\x81 €\u0081; windows-1254 \xFD ı; koi8-r "
      "\xD0 п;"
      "IBM850 \x82 é; Shift_JIS \\~\x83\x41\x81\x60 \\~ア～; windows-932 \x83\x5C ソ; Big5 \xA4\xA4 中;"
      "GBK \xD6\xD0 中; euc-kr \xC7\xD1 한; us-ascii abc abc";
  for (const auto& row : tests::table(rows)) {
    const std::u16string text = utf8ToUtf16(row[2]);
    EXPECT_TRUE(isKnownEncoding(row[0])) << row[0];
    EXPECT_EQ(decodeText(row[0], row[1]), text) << row[0];
    EXPECT_EQ(encodeText(row[0], text), row[1]) << row[0];
  }
  // No ASCII below, no such thing, more than a name.
  for (const char* name :
       {"UTF-16", "IBM037", "UTF-7", "ISO-8859-99", "windows-", "", "ISO-8859-15//TRANSLIT"})
    EXPECT_FALSE(isKnownEncoding(name)) << name;
}

TEST(Encodings, RefuseWhatTheyCannotSay) {
  EXPECT_FALSE(decodeText("Shift_JIS", "a\x83"));
  EXPECT_FALSE(decodeText("ISO-8859-7", "\xFF"));
  EXPECT_FALSE(encodeText("ISO-8859-1", u"\u20AC"));
  EXPECT_FALSE(encodeText("Shift_JIS", u"\u00E9"));
}

}  // namespace
}  // namespace veltrano
