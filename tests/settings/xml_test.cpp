// What the members do with folders, keys and values.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <pugixml.hpp>
#include <random>

#include "tests/file_call_log.h"
#include "tests/settings/xml_fixture.h"
#include "tests/split.h"

namespace veltrano::tests {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

using XmlSettings = XmlFixture;

TEST_F(XmlSettings, WithoutAFileLiveInMemory) {
  EXPECT_EQ(run("get A B; folders; keys A; delete A B"), "none;;;");
  EXPECT_EQ(xml.XML_GetSetting("A", "B"), "");
  xml.XML_SaveSetting("A", "B", "1\0 \x01\x1F\xEF\xBF\xBE\xFF"s);
  EXPECT_EQ(run("get A B"), "1 ;") << "without what XML cannot hold";
  xml.XML_Save();
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(XmlSettings, EnumeratesOneMoreThanThereIs) {
  EXPECT_EQ(run("save A K1 1; save A K2 2; save B K 3; folders; keys A; keys C"), "A,B,,;K1,K2,,;;");
  xml.XML_DeleteSetting("unused", "A", "K1");
  EXPECT_EQ(run("keys A; delete A nokey; delete A K2; keys A; delete B; delete A; folders"),
            "K2,,;Empty;Empty;");
}

TEST_F(XmlSettings, NamesThatNoElementCanHaveCreateNothing) {
  auto names = split(
      "| |1a|a "
      "b|a<b|-a|a:b:c|no:prefix|xmlns:a|a:|:a|@a|a[1]|(|1+1|$v|//|\xFF|a/b|\xC3\x97|\xE2\x82\xAC|a><b/></a",
      '|');
  names.push_back("a\0b"s);
  for (const auto& name : names) {
    xml.XML_SaveSetting(name, "K", "1");
    xml.XML_SaveSetting("F", name, "1");
    EXPECT_EQ(run("folders"), ";") << name;
    EXPECT_EQ(xml.XML_GetSetting(name, "K", "x"), "x") << name;
    EXPECT_THAT(xml.XML_EnumKeys(name), testing::Optional(testing::IsEmpty())) << name;
  }
  open("<XML xmlns:p='urn:p'/>");
  run("save p:f\xC3\xA9 xml:k 1; save q:f k 1");
  EXPECT_EQ(saved(), "<XML xmlns:p=\"urn:p\"><p:f\xC3\xA9><xml:k>1</xml:k></p:f\xC3\xA9></XML>");
}

TEST_F(XmlSettings, ChangesLeaveTheRestOfTheFileAsItWas) {
  const std::string latin = "<?xml version='1.0' encoding='ISO-8859-1'?>";
  const std::string japanese = "<?xml version='1.0' encoding='Shift_JIS'?>";
  const struct {
    std::string before, steps, answers, after;
  } rows[] = {
      // Every kind of child is listed, but not the layout.
      {"<XML xmlns:n='urn:n'>\n <A> <!--c--><?pi x?>t<![CDATA[ ]]><n:K/> </A>\n <B>\n </B>\n</XML>",
       "folders; keys A; keys B", "A,B,,;,,,,K,,;Empty;",
       "<XML xmlns:n=\"urn:n\">\n <A> <!--c--><?pi x?>t<![CDATA[ ]]><n:K/> </A>\n <B>\n </B>\n</XML>"},
      // Names are paths; L/M is not a child of its folder.
      {"<XML>\n <?A no?>\n <A id='7'>\n  <K>1</K>\n  <K>2</K>\n </A>\n <A><L><M>3</M>4</L></A>\n</XML>",
       "get A K; get * *; get A[1] K[2]; get A @id; get A[2] L; get A[2]/L M; get A[@id='7'] K; get //M ..; "
       "get A L;"
       "get a K; get A text(); get A ../A[2]/L/text(); get A/@id K; save A @id <8; save A K[2] two;"
       "save A[2] L/M; delete A[2] L/M; delete A/K; delete A K[1]",
       "1;1;2;7;34;3;1;34;none;none;none;4;none;",
       "<XML>\n <?A no?>\n <A id=\"&lt;8\">\n  <K>two</K>\n </A>\n <A><L><M/>4</L></A>\n</XML>"},
      // An indented file stays indented.
      {"<XML>\n  <A>\n    <K>1</K>\n    <L>2</L>\n  </A>\n</XML>\n", "save A M 3; delete A K", "",
       "<XML>\n  <A>\n    <L>2</L>\n    <M>3</M>\n  </A>\n</XML>\n"},
      {"<XML>\n  <A>\n    <L>2</L>\n  </A>\n</XML>\n", "delete A L; save A K 4; save B K 5", "",
       "<XML>\n  <A>\n  <K>4</K>\n  </A>\n  <B><K>5</K></B>\n</XML>\n"},
      // A removed key takes the blanks before it, if there are blanks on both sides.
      {"<XML><A> <K/><L/> <M/> </A></XML>", "delete A K; delete A M", "", "<XML><A> <L/> </A></XML>"},
      {"<XML><!--f--><A><?K no key?><!--K--><K>1</K><!--last--></A><?A no folder?></XML>",
       "save A K 2; save A L 3", "",
       "<XML><!--f--><A><?K no key?><!--K--><K>2</K><!--last--><L>3</L></A><?A no folder?></XML>"},
      // A new value replaces all that is in the key; another root takes no settings.
      {"<XML><A><K x='1'>\n<b>old</b><!--c--><![CDATA[old]]></K></A></XML>", "get A K; save A K new",
       "oldold;", "<XML><A><K x=\"1\">new</K></A></XML>"},
      {"<settings><A><K>1</K></A></settings>", "save A K 2; get A K; folders", "none;;",
       "<settings><A><K>1</K></A></settings>"},
      // A file keeps its encoding, unless a name has letters that it lacks.
      {latin + "<XML><A><K>\xE9</K></A></XML>", "get A K; save A K \xC3\xA8\xE2\x82\xAC", "\xC3\xA9;",
       latin + "<XML><A><K>\xE8&#8364;</K></A></XML>"},
      {latin + "<XML><A><K>\xE9</K></A></XML>", "save A \xCE\xA9 1", "",
       "<?xml version='1.0' encoding='UTF-8'?><XML><A><K>\xC3\xA9</K><\xCE\xA9>1</\xCE\xA9></A></XML>"},
      {japanese + "<XML><A><K>\x83\x5C</K></A></XML>", "get A K; save A K \xE8\xA1\xA8\xC3\xA9\\",
       "\xE3\x82\xBD;", japanese + "<XML><A><K>\x95\\&#233;\\</K></A></XML>"},
      {"\xFF\xFE<\0X\0M\0L\0/\0>\0"s, "save A K \xC3\xA9", "",
       "\xFF\xFE<\0X\0M\0L\0>\0<\0A\0>\0<\0K\0>\0\xE9\0<\0/\0K\0>\0<\0/\0A\0>\0<\0/\0X\0M\0L\0>\0"s}};
  for (const auto& [before, steps, answers, after] : rows) {
    open(before);
    EXPECT_EQ(run(steps), answers) << before;
    EXPECT_EQ(saved(), after);
  }
}

TEST_F(XmlSettings, AMalformedFileStaysUntilASettingIsSavedAndIsKeptThen) {
  const std::string malformed = "<XML><A><K>1</K></A>";
  run("save Old K 1");
  open(malformed);
  EXPECT_EQ(run("get Old K"), "none;");
  EXPECT_EQ(saved(), malformed);
  run("save 1 K 2");  // not a name
  EXPECT_EQ(saved(), malformed);
  EXPECT_FALSE(fs::exists(copy));
  // The copy is as private as the file.
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
  const auto rights = fs::status(file).permissions();
  run("save A K 2");
  EXPECT_EQ(saved(), "<XML><A><K>2</K></A></XML>");
  EXPECT_EQ(readWholeFile(copy), malformed);
  EXPECT_EQ(fs::status(copy).permissions(), rights);
  // What was read or written as settings is no reason for another copy, nor is an empty file.
  for (const char* again : {"save A K 3", "open; save A K 4"}) {
    run(again);
    xml.XML_Save();
    EXPECT_EQ(readWholeFile(copy), malformed);
  }
  open("");
  run("save A K 5");
  EXPECT_EQ(saved(), "<XML><A><K>5</K></A></XML>");
  EXPECT_EQ(readWholeFile(copy), malformed);
  // A file that cannot be kept is not written over.
  fs::remove(copy);
  fs::create_directories(copy / "in the way");
  open(malformed);
  run("save A K 2");
  EXPECT_EQ(saved(), malformed);
}

TEST_F(XmlSettings, WhatIsSavedIsOnTheDiskBeforeTheOldContentGoes) {
  open("<XML/>");
  run("save A K 1");
  const FileCallLog calls;
  xml.XML_Save();
  EXPECT_THAT(calls.text(), testing::MatchesRegex(".*write \\*, sync \\*, rename r.*glages.xml.*"));
  EXPECT_EQ(calls.count(FileCall::sync), 1U);
}

TEST_F(XmlSettings, AFileThatCannotBeReadStays) {
  const std::string before = "<XML><A><K>1</K></A></XML>";
  ASSERT_TRUE(replaceFile(file, before));
  {
    const FileCallLog unreadable([](FileCall call, const std::filesystem::path&) {
      return call == FileCall::read ? Failure::other : Failure::none;
    });
    run("open; save B K 2");
    xml.XML_Save();
  }
  EXPECT_EQ(saved(), before);
}

// Beyond some two dozen children a table of names finds them: it must answer as going through them does.
TEST_F(XmlSettings, LargeFoldersAnswerAsAModelDoes) {
  std::map<std::string, std::map<std::string, std::deque<std::string>>> model;  // equal keys in their order
  std::string content = "<XML><F0><?K7 no key?>";
  for (int i = 0; i < 150; ++i) {
    const std::string key = "K" + std::to_string(i % 50), value = std::to_string(i);
    content.append("<" + key + ">").append(value).append("</" + key + ">");
    model["F0"][key].push_back(value);
  }
  open(content + "</F0></XML>");
  std::mt19937 random(11);
  for (int step = 0; step < 50'000; ++step) {
    // Elements that are made may lie where removed ones lay.
    const std::string parent = "F" + std::to_string(random() % 6), key = "K" + std::to_string(random() % 60);
    auto& keys = model[parent];
    auto& values = keys[key];
    const auto action = random() % 1000;
    if (action == 0) {
      xml.XML_DeleteSetting({}, parent);
      keys.clear();
    } else if (action == 1) {
      xml.XML_SaveSetting(".", parent, "a value takes the place of all its keys");
      keys.clear();
    } else if (action < 200) {
      xml.XML_DeleteSetting({}, parent, key);
      if (!values.empty()) values.pop_front();
    } else if (action < 500) {
      if (values.empty()) values.emplace_back();
      xml.XML_SaveSetting(parent, key, values.front() = std::to_string(step));
    } else {
      ASSERT_EQ(xml.XML_GetSetting(parent, key, "none"), values.empty() ? "none" : values.front()) << step;
    }
  }
}

bool outOfMemory = false;
void* allocateUnlessTold(std::size_t size) {
  return outOfMemory ? nullptr : std::malloc(size);
}

TEST_F(XmlSettings, ALoadErrorHidesSettingsUntilOneIsSaved) {
  const auto allocate = pugi::get_memory_allocation_function();
  const auto release = pugi::get_memory_deallocation_function();
  pugi::set_memory_management_functions(allocateUnlessTold, std::free);
  std::string large = "<XML>";
  for (int i = 0; i < 5'000; ++i) large += "<A>1</A>";
  large += "</XML>";
  const auto openInShortMemory = [&] {
    outOfMemory = true;
    open(large);
    outOfMemory = false;
  };
  openInShortMemory();
  open("<XML><A><K>1</K></A></XML>");
  EXPECT_EQ(run("get A K; folders; keys A; delete A; save B K 2; get A K; folders"), "none;;;1;A,B,,;");
  openInShortMemory();
  run("save B K 2");
  EXPECT_EQ(saved(), large) << "what could not be loaded must not be written over";
  xml = VeltranoXML();
  pugi::set_memory_management_functions(allocate, release);
}

}  // namespace
}  // namespace veltrano::tests
