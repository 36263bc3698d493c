#include "settings/veltrano_xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pugixml.hpp>

#include "base/os/files.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

class XmlSettings : public testing::Test {
 protected:
  void open(std::string_view content) {
    ASSERT_TRUE(replaceFile(file, content));
    xml.XML_Open(file);
  }
  std::string saved() {
    xml.XML_Save();
    return readWholeFile(file).value_or("(no file)");
  }

  tests::TemporaryFolder folder;
  fs::path file = folder / u"r\u00E9glages.xml";
  VeltranoXML xml;
};

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

TEST_F(XmlSettings, SavesTheBareTree) {
  xml.XML_Open(file);
  EXPECT_EQ(xml.XML_GetSetting("A", "B", "x"), "x");
  EXPECT_EQ(saved(), "(no file)");
  xml.XML_SaveSetting("Display", "Width", "800");
  xml.XML_SaveSetting("Display", "Height", "1");
  xml.XML_SaveSetting("Display", "Height", "600");
  xml.XML_SaveSetting("User", "Name", "");
  EXPECT_EQ(saved(),
            "<XML><Display><Width>800</Width><Height>600</Height></Display><User><Name/></User></XML>");
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

TEST_F(XmlSettings, ValuesSurvive) {
  const std::string values[] = {
      " ",        "  two  ", "\t",  "a\nb",     "a\r\nb",           "\r", "\n",   "\r\n", "\n\r",
      "<a>&amp;", "]]>",     "\"'", "\xC3\xA9", "\xF0\x9F\x98\x80", "--", "<!--", "%"};
  for (const auto& value : values) {
    xml = VeltranoXML();
    xml.XML_Open(file);
    xml.XML_SaveSetting("F", "K", value);
    xml.XML_SaveSetting("F", "L", "next");
    xml.XML_Save();
    xml.XML_Open(file);
    EXPECT_EQ(xml.XML_GetSetting("F", "K", "x"), value);
  }
}

TEST_F(XmlSettings, CharactersThatXmlCannotHoldAreDropped) {
  xml.XML_SaveSetting("F", "K",
                      "a\0b\x01\x1F"
                      "c\xEF\xBF\xBE"
                      "d\xFF"s);
  EXPECT_EQ(xml.XML_GetSetting("F", "K"), "abcd");
}

TEST_F(XmlSettings, NamesThatNoElementCanHaveCreateNothing) {
  const std::string names[] = {"",          " ",       "1a", "a b",   "a<b",  "-a",   "a:b:c",
                               "no:prefix", "xmlns:a", "a:", ":a",    "@a",   "a[1]", "(",
                               "1+1",       "$v",      "//", "a\0b"s, "\xFF", "a/b",  "\xC3\x97"};
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

TEST_F(XmlSettings, SettingAKeyReplacesAllThatIsInIt) {
  open("<XML><A><K x='1'>\n<b>old</b><!--c--><![CDATA[old]]></K></A></XML>");
  EXPECT_EQ(xml.XML_GetSetting("A", "K"), "oldold");
  xml.XML_SaveSetting("A", "K", "new");
  EXPECT_EQ(saved(), "<XML><A><K x=\"1\">new</K></A></XML>");
}

TEST_F(XmlSettings, AnotherRootTakesNoSettings) {
  open("<settings><A><K>1</K></A></settings>");
  xml.XML_SaveSetting("A", "K", "2");
  EXPECT_EQ(xml.XML_GetSetting("A", "K", "x"), "x");
  EXPECT_THAT(xml.XML_EnumFolders(), Optional(IsEmpty()));
  EXPECT_EQ(saved(), "<settings><A><K>1</K></A></settings>");
}

TEST_F(XmlSettings, AMalformedFileLoadsAsEmptyAndStaysUntilASettingIsSaved) {
  xml.XML_SaveSetting("Old", "K", "1");
  open("<XML><A><K>1</K></A>");
  EXPECT_EQ(xml.XML_GetSetting("Old", "K", "x"), "x");
  EXPECT_EQ(saved(), "<XML><A><K>1</K></A>");
  xml.XML_SaveSetting("not a name", "K", "2");
  EXPECT_EQ(saved(), "<XML><A><K>1</K></A>");
  xml.XML_SaveSetting("A", "K", "2");
  EXPECT_EQ(saved(), "<XML><A><K>2</K></A></XML>");
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
