#include "veltrano/ini.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "base/files/whole.h"
#include "base/text/code_page.h"
#include "base/text/lower_case.h"
#include "tests/file_call_log.h"
#include "tests/temporary_folder.h"

namespace veltrano::tests {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

const std::u16string absent = u"(absent)";

// What the random texts below do not hold.
TEST(IniBuffers, Table) {
  const struct {
    std::u16string buffer, key, value, changed;  ///< changed: the key's value to 2
  } cases[] = {{u"Width = 800", u"Width", absent, u"Width = 800\r\nWidth=2"},
               {u"[Main]\r\n; A=0\r\n A=0\r\nA= 1 \r\n", u"A", u" 1 ", u"[Main]\r\n; A=0\r\n A=0\r\nA=2\r\n"},
               {u"\uFEFFA=1", u"A", absent, u"\uFEFFA=1\r\nA=2"},
               {u"A\0B=1\0\x1A\u00FF\r\n"s, u"a\0b"s, u"1\0\x1A\u00FF"s, u"a\0b=2\r\n"s},
               {u"\u4E2D=1\r\n\u0416=2", u"\u0436", u"2", u"\u4E2D=1\r\n\u0436=2"},
               {u"\u0142=\u4E2D", u"\u0141", u"\u4E2D", u"\u0141=2"},
               {u"\u0141=1", u"L", absent, u"\u0141=1\r\nL=2"},
               {u"k="s + char16_t{0xD800}, u"k", {char16_t{0xD800}}, u"k=2"}};
  for (const auto& [buffer, key, value, changed] : cases) {
    EXPECT_EQ(VeltranoINI().GetValue(buffer, key, absent), value) << utf16ToUtf8(buffer + u" / " + key);
    EXPECT_EQ(VeltranoINI().ChangeValue(buffer, key, u"2"), changed) << utf16ToUtf8(buffer + u" / " + key);
  }
  EXPECT_EQ(VeltranoINI().GetValue(u"A=1", u"B"), u"");
  EXPECT_EQ(VeltranoINI().ChangeValue(u"", u"A", u"\u4E2D"), u"\r\nA=\u4E2D");
}

// The rules said once more in the plainest way: cut at every CR LF, compare line by line.
std::vector<std::u16string> linesOf(const std::u16string& text) {
  std::vector<std::u16string> lines;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = text.find(u"\r\n", begin)) != std::string::npos; begin = end + 2)
    lines.push_back(text.substr(begin, end - begin));
  lines.push_back(text.substr(begin));
  return lines;
}

bool belongsTo(const std::u16string& line, const std::u16string& key) {
  const std::u16string start = key + u"=";
  return std::equal(start.begin(), start.end(), line.begin(),
                    line.begin() + std::min(start.size(), line.size()),
                    [](char16_t a, char16_t b) { return lowerCase(a) == lowerCase(b); });
}

class IniFiles : public testing::Test {
 protected:
  void put(std::string_view content) { ASSERT_TRUE(replaceFile(file, content)); }
  std::string content() { return readWholeFile(file).value_or("(no file)"); }

  TemporaryFolder folder;
  fs::path file = folder / u"r\u00E9glages.ini";
  VeltranoINI ini;
};

// Random texts of few different characters, as buffers and as files.
TEST_F(IniFiles, RandomTextsObeyTheRules) {
  std::mt19937 random(4);
  const auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
  };
  const std::vector<std::u16string> atoms = {u"\r\n", u"\r\n", u"\r", u"\n", u"=",      u"K1=",     u"k1=",
                                             u"K2=",  u"K",    u"1",  u"x",  u"\u00E9", u"\u00C9=", u"\0"s};
  const std::vector<std::u16string> keys = {u"k1", u"K2",   u"",   u"\u00E9", u"=",
                                            u"1",  u"k1=k", u"\r", u"\n",     u"k\u00C9"};
  for (int round = 0; round < 3000; ++round) {
    std::u16string text;
    for (std::size_t i = pick(40); i > 0; --i) text += atoms[pick(atoms.size())];
    const std::u16string& key = keys[pick(keys.size())];
    const auto lines = linesOf(text);
    const auto match =
        std::find_if(lines.begin(), lines.end(), [&](auto& line) { return belongsTo(line, key); });
    const std::u16string expected = match == lines.end() ? absent : match->substr(key.size() + 1);
    ASSERT_EQ(ini.GetValue(text, key, absent), expected) << round;
    const std::u16string changed = ini.ChangeValue(text, key, u"new");
    const auto changedLines = linesOf(changed);
    ASSERT_EQ(changedLines.size(), lines.size() + (match == lines.end() ? 1 : 0)) << round;
    for (std::size_t i = 0; i < lines.size(); ++i)
      ASSERT_EQ(changedLines[i], belongsTo(lines[i], key) ? key + u"=new" : lines[i]) << round;
    if (round % 50 == 0) {  // each waits for the disk
      put(utf16ToAnsi(text));
      ASSERT_EQ(ini.GetIniValue(file, key, absent), expected) << round;
      ini.SetIniValue(file, key, u"new");
      ASSERT_EQ(content(), utf16ToAnsi(changed.ends_with(u"\r\n") ? changed : changed + u"\r\n")) << round;
    }
  }
}

TEST_F(IniFiles, KeepTheRestAsItIs) {
  ini.SetIniValue(file, u"A", u"1");
  EXPECT_EQ(content(), "\r\nA=1\r\n");
  put("; k\n\0\x1A\x81\r\nA=1\r\n[x]"s);
  ini.SetIniValue(file, u"A", u"\u00E9");
  EXPECT_EQ(content(), "; k\n\0\x1A\x81\r\nA=\xE9\r\n[x]\r\n"s);
  // A key that the code page lacks is on no line, not on those of its likenesses either.
  put("?=1\r\nL=2\r\n");
  for (const auto& key : {u"\u0141", u"\u4E2D"}) EXPECT_EQ(ini.GetIniValue(file, key, absent), absent);
  ini.SetIniValue(file, u"\u4E2D", u"3");
  EXPECT_EQ(content(), "?=1\r\nL=2\r\n\r\n?=3\r\n");
}

TEST_F(IniFiles, WhatIsWrittenIsOnTheDiskBeforeTheOldContentGoes) {
  put("A=1");
  const FileCallLog calls;
  ini.SetIniValue(file, u"A", u"2");
  EXPECT_EQ(calls.count(FileCall::sync), 1U) << calls.text();
  ini.CloseFile(file, u"A=3");
  EXPECT_EQ(calls.count(FileCall::sync), 2U) << calls.text();
}

#ifndef _WIN32
// Windows has one code page for all of a machine's programs; this one has none of its own.
TEST_F(IniFiles, KeysAreCharactersWhereThoseTakeTwoBytes) {
  ASSERT_TRUE(setCodePage("CP932"));
  // The second byte of one letter is "A", of another "a"; a lone lead byte stays what it is.
  const std::string before = "\x83\x61=1\r\n\x83\x5C=\x95\\\r\n\x82\x60=3\r\n\x83\r\n";
  put(before);
  for (const auto& [key, value] :
       {std::pair(u"\u30A2", absent), {u"\u30C2", u"1"}, {u"\u30BD", u"\u8868"}, {u"\uFF41", u"3"}})
    EXPECT_EQ(ini.GetIniValue(file, key, absent), value);
  ini.SetIniValue(file, u"\u30A2", u"\u30C2");
  EXPECT_EQ(content(), before + "\r\n\x83\x41=\x83\x61\r\n");
  EXPECT_TRUE(setCodePage("windows-1252"));
}
#endif

TEST_F(IniFiles, OpenAndClose) {
  EXPECT_EQ(ini.OpenFile(file), u"");
  for (const std::u16string& text : {u"A=1\r\n"s, u"A=1"s, u""s, u"\0\u20AC\r"s}) {
    ini.CloseFile(file, text);
    EXPECT_EQ(ini.OpenFile(file), text.ends_with(u"\r\n") ? text : text + u"\r\n");
  }
}

TEST_F(IniFiles, WhatCannotBeReadOrWrittenIsNoError) {
  for (const auto& name : {folder.path(), folder / "no such folder/x.ini", fs::path()}) {
    EXPECT_EQ(ini.GetIniValue(name, u"A", absent), absent);
    EXPECT_EQ(ini.OpenFile(name), u"");
    ini.SetIniValue(name, u"A", u"1");
    ini.CloseFile(name, u"A=1");
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
  put("A=1");
  {
    const FileCallLog unreadable([](FileCall call, const fs::path&) {
      return call == FileCall::read ? Failure::other : Failure::none;
    });
    ini.SetIniValue(file, u"B", u"2");
  }
  EXPECT_EQ(content(), "A=1") << "the other settings would be lost";
}

}  // namespace
}  // namespace veltrano::tests
