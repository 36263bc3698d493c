#include "settings/veltrano_ini.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "base/os/files.h"
#include "base/text/code_page.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

const std::string absent = "(absent)";

TEST(IniGetValue, Table) {
  const struct {
    std::string buffer;
    std::string key;
    std::string value;
  } cases[] = {
      {"Width=800", "width", "800"},
      {"Width=800", "Wid", absent},
      {"Width = 800", "Width", absent},
      {"A=x=y", "A", "x=y"},
      {"A=1\r\na=2", "A", "1"},
      {"[Main]\r\n; A=0\r\n A=0\r\nA= 1 \r\n", "A", " 1 "},
      {"AA=1\r\nA=2", "A", "2"},
      {"A=1\r\nB=2\nA=3\rA=4\r\nC=5", "B", "2\nA=3\rA=4"},
      {"x\r\r\nA=1\r", "A", "1\r"},
      {"x\nA=1", "A", absent},
      {"\xEF\xBB\xBF"
       "A=1",
       "A", absent},
      {"A\0B=1\0\x1A\xFF\r\n"s, "a\0b"s, "1\0\x1A\xFF"s},
      {"\xC9t\xE9=1", "\xE9T\xC9", "1"},
      {"=1", "", "1"},
      {"A=\r\nA=2", "A", ""},
      {"A=1\r\nB=2", "A=1\r\nB", absent},
      {"x=1\r\nB\r=2", "B\r", "2"},
      {"A=B=1", "A=B", "1"},
      {"", "A", absent},
      {"A", "A", absent},
  };
  for (const auto& [buffer, key, value] : cases) {
    EXPECT_EQ(VeltranoINI().GetValue(buffer, key, absent), value) << buffer << " / " << key;
  }
  EXPECT_EQ(VeltranoINI().GetValue("A=1", "B"), "");
}

TEST(IniChangeValue, Table) {
  const struct {
    std::string buffer;
    std::string key;
    std::string value;
    std::string changed;
  } cases[] = {
      {"A=1\r\nA=2", "a", "3", "a=3\r\na=3"},
      {"", "A", "1", "\r\nA=1"},
      {"B=1\r\n", "A", "1", "B=1\r\n\r\nA=1"},
      {"x\r\nA=1\r\n\r\ny\n\0\r"s, "A", "2", "x\r\nA=2\r\n\r\ny\n\0\r"s},
      {"A=1\r\nB=2\r\nA=3\r\n", "A", "", "A=\r\nB=2\r\nA=\r\n"},
      {"A=1", "A=", "2", "A=1\r\nA==2"},
      {"=1", "", "2", "=2"},
  };
  for (const auto& [buffer, key, value, changed] : cases) {
    EXPECT_EQ(VeltranoINI().ChangeValue(buffer, key, value), changed) << buffer << " / " << key;
  }
}

// The rules said once more in the plainest way: cut at every CR LF, compare line by line.
std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    lines.push_back(text.substr(begin, end - begin));
  }
  lines.push_back(text.substr(begin));
  return lines;
}

bool belongsTo(const std::string& line, const std::string& key) {
  return ansiLower(line.substr(0, key.size() + 1)) == ansiLower(key) + "=";
}

class IniFiles : public testing::Test {
 protected:
  void put(std::string_view content) { ASSERT_TRUE(replaceFile(file, content)); }
  std::string content() { return readWholeFile(file).value_or("(no file)"); }

  tests::TemporaryFolder folder;
  fs::path file = folder / u"r\u00E9glages.ini";
  VeltranoINI ini;
};

// Random texts of few different bytes, with runs of other lines that are longer than what is searched at a
// time.
TEST_F(IniFiles, RandomTextsObeyTheRules) {
  std::mt19937 random(4);
  const auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
  };
  const std::vector<std::string> atoms = {
      "\r\n", "\r\n", "\r", "\n", "=", "K1=", "k1=", "K2=", "K", "1", "é="s, "\xE9", "\xC9=", "\0"s};
  const std::vector<std::string> keys = {"k1", "K2", "", "\xE9", "=", "1", "k1=k", "\r", "\n"};
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (std::size_t i = pick(40); i > 0; --i) {
      text += atoms[pick(atoms.size())];
      if (pick(20) == 0) {
        text.append(pick(700), pick(2) == 0 ? 'x' : '1');
      }
    }
    const std::string& key = keys[pick(keys.size())];
    const auto lines = split(text);
    const auto match =
        std::find_if(lines.begin(), lines.end(), [&](auto& line) { return belongsTo(line, key); });
    const std::string expected = match == lines.end() ? absent : match->substr(key.size() + 1);
    ASSERT_EQ(ini.GetValue(text, key, absent), expected) << round;
    if (round % 10 == 0) {
      put(text);
      ASSERT_EQ(ini.GetIniValue(file, key, absent), expected) << round;
    }
    const auto changed = split(ini.ChangeValue(text, key, "new"));
    ASSERT_EQ(changed.size(), lines.size() + (match == lines.end() ? 1 : 0)) << round;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      ASSERT_EQ(changed[i], belongsTo(lines[i], key) ? key + "=new" : lines[i]) << round;
    }
  }
}

TEST_F(IniFiles, LinesAcrossThePiecesOfALargeFile) {
  // Around the places where reading and searching pause: every split of the line break and of the key.
  for (const std::size_t boundary : {256U * 1024U, 2U * 256U * 1024U}) {
    for (std::size_t shift = 0; shift < 12; ++shift) {
      const std::string before(boundary - shift, 'x');
      put(before + "\r\nkey=va\rlue\r\nkey=2");
      ASSERT_EQ(ini.GetIniValue(file, "KEY", absent), "va\rlue") << boundary << " - " << shift;
      put(before + "\r\nkey=at the end");
      ASSERT_EQ(ini.GetIniValue(file, "KEY", absent), "at the end") << boundary << " - " << shift;
      ASSERT_EQ(ini.ChangeValue(before + "\r\nkey=a\r\nkey=b", "key", "c"), before + "\r\nkey=c\r\nkey=c");
    }
  }
}

TEST_F(IniFiles, SetIniValueKeepsTheRestOfTheFile) {
  ini.SetIniValue(file, "A", "1");
  EXPECT_EQ(content(), "\r\nA=1\r\n");
  ini.SetIniValue(file, "a", "2");
  EXPECT_EQ(content(), "\r\na=2\r\n");
  put("; keep\n\0\x1A\r\nA=1\r\n[x]"s);
  ini.SetIniValue(file, "A", "\xE9");
  EXPECT_EQ(content(), "; keep\n\0\x1A\r\nA=\xE9\r\n[x]\r\n"s);
}

TEST_F(IniFiles, OpenAndClose) {
  EXPECT_EQ(ini.OpenFile(file), "");
  for (const auto& [text, written] : {std::pair{"A=1\r\n"s, "A=1\r\n"s},
                                      {"A=1"s, "A=1\r\n"s},
                                      {""s, "\r\n"s},
                                      {"\0\n\r"s, "\0\n\r\r\n"s},
                                      {"\r\n\r\n"s, "\r\n\r\n"s}}) {
    ini.CloseFile(file, text);
    EXPECT_EQ(ini.OpenFile(file), written);
  }
}

TEST_F(IniFiles, WhatCannotBeReadOrWrittenIsNoError) {
  for (const auto& name : {folder.path(), folder / "no such folder/x.ini", fs::path()}) {
    EXPECT_EQ(ini.GetIniValue(name, "A", absent), absent);
    EXPECT_EQ(ini.OpenFile(name), "");
    ini.SetIniValue(name, "A", "1");
    ini.CloseFile(name, "A=1");
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
  put("A=1");
  fs::permissions(file, fs::perms::owner_read);
  ini.SetIniValue(file, "A", "2");
  fs::permissions(file, fs::perms::owner_all);
#ifdef _WIN32
  EXPECT_EQ(content(), "A=1");
#endif
}

}  // namespace
}  // namespace veltrano
