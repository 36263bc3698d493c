// What the members do with folders, keys and values.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <pugixml.hpp>

#include "tests/file_call_log.h"
#include "tests/settings/xml_fixture.h"

namespace veltrano {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

using XmlSettings = tests::XmlFixture;

TEST_F(XmlSettings, ANewObjectWorksOnAnEmptyDocument) {
  EXPECT_EQ(xml.XML_GetSetting("A", "B", "x"), "x");
  EXPECT_EQ(xml.XML_GetSetting("A", "B"), "");
  EXPECT_THAT(xml.XML_EnumFolders(), Optional(IsEmpty()));
  EXPECT_THAT(xml.XML_EnumKeys("A"), Optional(IsEmpty()));
  xml.XML_DeleteSetting({}, "A", "B");
  xml.XML_Save();
  xml.XML_SaveSetting("A", "B", "1");
  EXPECT_EQ(xml.XML_GetSetting("A", "B", "x"), "1");
  xml.XML_Save();
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(XmlSettings, EnumeratesOneMoreThanThereIs) {
  xml.XML_SaveSetting("A", "K1", "1");
  xml.XML_SaveSetting("A", "K2", "2");
  xml.XML_SaveSetting("B", "K", "3");
  EXPECT_THAT(xml.XML_EnumFolders(), Optional(ElementsAre("A", "B", "")));
  EXPECT_THAT(xml.XML_EnumKeys("A"), Optional(ElementsAre("K1", "K2", "")));
  EXPECT_THAT(xml.XML_EnumKeys("C"), Optional(IsEmpty()));
  xml.XML_DeleteSetting("unused", "A", "K1");
  EXPECT_THAT(xml.XML_EnumKeys("A"), Optional(ElementsAre("K2", "")));
  xml.XML_DeleteSetting({}, "A", "no such key");
  xml.XML_DeleteSetting({}, "A", "K2");
  EXPECT_EQ(xml.XML_EnumKeys("A"), std::nullopt);
  xml.XML_DeleteSetting({}, "B");
  xml.XML_DeleteSetting({}, "A");
  EXPECT_EQ(xml.XML_EnumFolders(), std::nullopt);
}

TEST_F(XmlSettings, ListsEveryKindOfChildButLayout) {
  open("<XML xmlns:n='urn:n'>\n  <A> <!--c--><?pi x?>t<![CDATA[ ]]><n:K/> </A>\n  <B>\n  </B>\n</XML>");
  EXPECT_THAT(xml.XML_EnumFolders(), Optional(ElementsAre("A", "B", "")));
  EXPECT_THAT(xml.XML_EnumKeys("A"), Optional(ElementsAre("", "", "", "", "K", "")));
  EXPECT_EQ(xml.XML_EnumKeys("B"), std::nullopt);
}

TEST_F(XmlSettings, CharactersThatXmlCannotHoldAreDropped) {
  xml.XML_SaveSetting("F", "K",
                      "a\0b\x01\x1F"
                      "c\xEF\xBF\xBE"
                      "d\xFF"s);
  EXPECT_EQ(xml.XML_GetSetting("F", "K"), "abcd");
}

TEST_F(XmlSettings, NamesThatNoElementCanHaveCreateNothing) {
  const std::string names[] = {"",      " ",         "1a",       "a b",          "a<b",      "-a",
                               "a:b:c", "no:prefix", "xmlns:a",  "a:",           ":a",       "@a",
                               "a[1]",  "(",         "1+1",      "$v",           "//",       "a\0b"s,
                               "\xFF",  "a/b",       "\xC3\x97", "\xE2\x82\xAC", "a><b/></a"};
  for (const auto& name : names) {
    VeltranoXML fresh;
    fresh.XML_SaveSetting(name, "K", "1");
    fresh.XML_SaveSetting("F", name, "1");
    EXPECT_THAT(fresh.XML_EnumFolders(), Optional(IsEmpty())) << name;
    EXPECT_EQ(fresh.XML_GetSetting(name, "K", "x"), "x") << name;
    EXPECT_THAT(fresh.XML_EnumKeys(name), Optional(IsEmpty())) << name;
  }
  open("<XML xmlns:p='urn:p'/>");
  xml.XML_SaveSetting("p:f\xC3\xA9", "xml:k", "1");
  xml.XML_SaveSetting("q:f", "k", "1");
  EXPECT_EQ(saved(), "<XML xmlns:p=\"urn:p\"><p:f\xC3\xA9><xml:k>1</xml:k></p:f\xC3\xA9></XML>");
}

TEST_F(XmlSettings, NamesArePathsWhenLookedUp) {
  open("<XML>\n <?A no?>\n <A id='7'>\n  <K>1</K>\n  <K>2</K>\n </A>\n <A><L><M>3</M>4</L></A>\n</XML>");
  const struct {
    const char* folder;
    const char* key;
    const char* value;
  } cases[] = {
      {"A", "K", "1"},          {"*", "*", "1"},           {"A[1]", "K[2]", "2"},
      {"A", "@id", "7"},        {"A[2]", "L", "34"},       {"A[2]/L", "M", "3"},
      {"A[@id='7']", "K", "1"}, {"//M", "..", "34"},       {"A", "L", "absent"},
      {"a", "K", "absent"},     {"A", "text()", "absent"}, {"A", "../A[2]/L/text()", "4"},
      {"A/@id", "K", "absent"},
  };
  for (const auto& [folder_, key, value] : cases) {
    EXPECT_EQ(xml.XML_GetSetting(folder_, key, "absent"), value) << folder_ << " / " << key;
  }
  xml.XML_SaveSetting("A", "K[2]", "two");
  xml.XML_SaveSetting("A", "@id", "\n8");
  xml.XML_SaveSetting("A[2]", "L/M", "");
  xml.XML_DeleteSetting({}, "A[2]", "L/M");  // no child of the folder
  xml.XML_DeleteSetting({}, "A/K");
  xml.XML_DeleteSetting({}, "A", "K[1]");
  EXPECT_EQ(saved(),
            "<XML>\n <?A no?>\n <A id=\"&#10;8\">\n  <K>two</K>\n </A>\n <A><L><M/>4</L></A>\n</XML>");
}

TEST_F(XmlSettings, ChangesLeaveTheRestOfTheFileAsItWas) {
  const auto save = [this](const char* folder_, const char* key, const char* value) {
    return [=, this] { xml.XML_SaveSetting(folder_, key, value); };
  };
  const auto remove = [this](const char* key) { return [=, this] { xml.XML_DeleteSetting({}, "A", key); }; };
  const struct {
    std::string before;
    std::vector<std::function<void()>> changes;
    std::string after;
  } rows[] = {
      // An indented file stays indented.
      {"<XML>\n  <A>\n    <K>1</K>\n    <L>2</L>\n  </A>\n</XML>\n",
       {save("A", "M", "3"), remove("K")},
       "<XML>\n  <A>\n    <L>2</L>\n    <M>3</M>\n  </A>\n</XML>\n"},
      {"<XML>\n  <A>\n    <L>2</L>\n  </A>\n</XML>\n", {remove("L")}, "<XML>\n  <A>\n  </A>\n</XML>\n"},
      {"<XML>\n  <A>\n  </A>\n</XML>\n",
       {save("A", "K", "4"), save("B", "K", "5")},
       "<XML>\n  <A>\n  <K>4</K>\n  </A>\n  <B><K>5</K></B>\n</XML>\n"},
      // A removed key takes the blanks before it, if there are blanks on both sides.
      {"<XML><A> <K/><L/> <M/> </A></XML>", {remove("K")}, "<XML><A> <L/> <M/> </A></XML>"},
      {"<XML><A> <L/> <M/> </A></XML>", {remove("M")}, "<XML><A> <L/> </A></XML>"},
      {"<XML><A><K/> <L/></A></XML>", {remove("K")}, "<XML><A> <L/></A></XML>"},
      {"<XML><!--f--><A><?K no key?><!--K--><K>1</K><!--last--></A><?A no folder?></XML>",
       {save("A", "K", "2"), save("A", "L", "3")},
       "<XML><!--f--><A><?K no key?><!--K--><K>2</K><!--last--><L>3</L></A><?A no folder?></XML>"},
      // A new value replaces all that is in the key.
      {"<XML><A><K x='1'>\n<b>old</b><!--c--><![CDATA[old]]></K></A></XML>",
       {[this] { EXPECT_EQ(xml.XML_GetSetting("A", "K"), "oldold"); }, save("A", "K", "new")},
       "<XML><A><K x=\"1\">new</K></A></XML>"},
      // Another root takes no settings.
      {"<settings><A><K>1</K></A></settings>",
       {save("A", "K", "2"),
        [this] {
          EXPECT_EQ(xml.XML_GetSetting("A", "K", "x"), "x");
          EXPECT_THAT(xml.XML_EnumFolders(), Optional(IsEmpty()));
        }},
       "<settings><A><K>1</K></A></settings>"},
  };
  for (const auto& [before, changes, after] : rows) {
    open(before);
    for (const auto& change : changes) {
      change();
    }
    EXPECT_EQ(saved(), after);
  }
}

TEST_F(XmlSettings, AMalformedFileStaysUntilASettingIsSavedAndIsKeptThen) {
  const std::string malformed = "<XML><A><K>1</K></A>";
  xml.XML_SaveSetting("Old", "K", "1");
  open(malformed);
  EXPECT_EQ(xml.XML_GetSetting("Old", "K", "x"), "x");
  EXPECT_EQ(saved(), malformed);
  xml.XML_SaveSetting("not a name", "K", "2");
  EXPECT_EQ(saved(), malformed);
  EXPECT_FALSE(fs::exists(copy));
  // The copy is as private as the file.
  constexpr auto ownerOnly = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(file, ownerOnly);
  const auto rights = fs::status(file).permissions();
  xml.XML_SaveSetting("A", "K", "2");
  EXPECT_EQ(saved(), "<XML><A><K>2</K></A></XML>");
  EXPECT_EQ(readWholeFile(copy), malformed);
  EXPECT_EQ(fs::status(copy).permissions(), rights);
  // What was read or written as settings is no reason for another copy, nor is an empty file.
  xml.XML_SaveSetting("A", "K", "3");
  EXPECT_EQ(saved(), "<XML><A><K>3</K></A></XML>");
  xml.XML_Open(file);
  xml.XML_SaveSetting("A", "K", "4");
  xml.XML_Save();
  EXPECT_EQ(readWholeFile(copy), malformed);
  open("");
  xml.XML_SaveSetting("A", "K", "5");
  EXPECT_EQ(saved(), "<XML><A><K>5</K></A></XML>");
  EXPECT_EQ(readWholeFile(copy), malformed);
}

TEST_F(XmlSettings, WhatIsSavedIsOnTheDiskBeforeTheOldContentGoes) {
  open("<XML/>");
  xml.XML_SaveSetting("A", "K", "1");
  const tests::FileCallLog calls;
  xml.XML_Save();
  EXPECT_THAT(calls.text(), testing::MatchesRegex(".*write \\*, sync \\*, rename r.*glages.xml.*"))
      << calls.text();
  EXPECT_EQ(calls.count(FileCall::sync), 1U);
}

TEST_F(XmlSettings, AMalformedFileThatCannotBeKeptIsNotWrittenOver) {
  open("<XML>");
  fs::create_directories(copy / "in the way");
  xml.XML_SaveSetting("A", "K", "2");
  EXPECT_EQ(saved(), "<XML>");
}

bool outOfMemory = false;
void* allocateUnlessTold(std::size_t size) {
  return outOfMemory ? nullptr : std::malloc(size);
}

TEST_F(XmlSettings, ALoadErrorHidesSettingsUntilOneIsSaved) {
  const auto allocate = pugi::get_memory_allocation_function();
  const auto release = pugi::get_memory_deallocation_function();
  pugi::set_memory_management_functions(allocateUnlessTold, std::free);
  {
    std::string content = "<XML>";
    for (int i = 0; i < 5'000; ++i) {
      content += "<A>1</A>";
    }
    content += "</XML>";
    ASSERT_TRUE(replaceFile(file, content));
    VeltranoXML failing;
    outOfMemory = true;
    failing.XML_Open(file);
    outOfMemory = false;
    ASSERT_TRUE(replaceFile(file, "<XML><A><K>1</K></A></XML>"));
    failing.XML_Open(file);
    EXPECT_EQ(failing.XML_GetSetting("A", "K", "x"), "x");
    EXPECT_THAT(failing.XML_EnumFolders(), Optional(IsEmpty()));
    EXPECT_THAT(failing.XML_EnumKeys("A"), Optional(IsEmpty()));
    failing.XML_DeleteSetting({}, "A");
    failing.XML_SaveSetting("B", "K", "2");
    EXPECT_EQ(failing.XML_GetSetting("A", "K", "x"), "1");
    EXPECT_THAT(failing.XML_EnumFolders(), Optional(ElementsAre("A", "B", "")));

    ASSERT_TRUE(replaceFile(file, content));
    outOfMemory = true;
    failing.XML_Open(file);
    outOfMemory = false;
    failing.XML_SaveSetting("B", "K", "2");
    failing.XML_Save();
    EXPECT_EQ(readWholeFile(file), content) << "what could not be loaded must not be written over";
  }
  pugi::set_memory_management_functions(allocate, release);
}

}  // namespace
}  // namespace veltrano
