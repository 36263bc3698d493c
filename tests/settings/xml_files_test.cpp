// Files as other programs write them: what is loaded and saved again keeps what it held, byte for byte where
// the file has one way to say it only.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/os/files.h"
#include "settings/veltrano_xml.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using namespace std::string_literals;
using testing::IsEmpty;
using testing::Optional;

class XmlFiles : public testing::Test {
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
  std::filesystem::path file = folder / "settings.xml";
  VeltranoXML xml;
};

std::string utf16(std::u16string_view text, bool big) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char parts[] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    bytes.append({parts[big ? 1 : 0], parts[big ? 0 : 1]});
  }
  return bytes;
}

TEST_F(XmlFiles, UntouchedFilesAreSavedAsTheyWere) {
  const std::string pretty =
      "<!-- by hand -->\n<?app mode=\"1\"?>\n<XML version=\"2\" note=\"a&amp;b &quot;&lt;&#10;&#9;\">\n"
      "  <A>\n    <K><![CDATA[<x> ]] ]]></K> <!-- k\n k -->\n    <L>a\n  b&#13;</L>\n    <M> </M>\n  "
      "</A>\n</XML>\n";
  std::string crlf;
  for (const char c : pretty) {
    crlf += c == '\n' ? "\r\n"s : std::string(1, c);
  }
  const std::u16string wide =
      u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n<XML><\u00E9>\u20AC\U0001F600</\u00E9></XML>";
  const std::string files[] = {
      "<XML/>",
      pretty,
      crlf,
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone='yes' ?>\n" + pretty,
      "\xEF\xBB\xBF<?xml version=\"1.0\"?><XML><K>\xE2\x82\xAC</K></XML>",
      "\xFF\xFE" + utf16(wide, false),
      "\xFE\xFF" + utf16(wide, true),
      utf16(wide, false),
      utf16(wide, true),
      "<?xml version='1.0' encoding='ISO-8859-1'?><XML><\xE9>\x80\xFF</\xE9></XML>",
      "<?xml version='1.0' encoding=\"Windows-1252\"?><XML><!-- \x80 --><K>\x93\xE9\x94</K></XML>",
      "<?xml version='1.0' encoding='us-ascii'?><XML><K>&#233;</K></XML>",
      "<?xml version=\"1.0\" encoding=\"UTF-16\"?><XML>\xC3\xA9</XML>",
      "<?xml version='1.0' encoding='iso-8859-15'?><XML><K>\xA4 \xE9</K></XML>",
      "<?xml version='1.0' encoding='KOI8-R'?><XML><\xD0>\xD2</\xD0></XML>",
  };
  for (const auto& content : files) {
    open(content);
    EXPECT_EQ(saved(), content);
  }
}

TEST_F(XmlFiles, AChangedFileKeepsItsEncoding) {
  const std::string declaration = "<?xml version='1.0' encoding='ISO-8859-1'?>";
  open(declaration + "<XML><A><K>\xE9</K></A></XML>");
  EXPECT_EQ(xml.XML_GetSetting("A", "K"), "\xC3\xA9");
  xml.XML_SaveSetting("A", "K", "\xC3\xA8\xE2\x82\xAC");
  EXPECT_EQ(saved(), declaration + "<XML><A><K>\xE8&#8364;</K></A></XML>");
  xml.XML_SaveSetting("A", "\xCE\xA9", "1");
  EXPECT_EQ(saved(),
            "<?xml version='1.0' encoding='UTF-8'?><XML><A><K>\xC3\xA8\xE2\x82\xAC</K>"
            "<\xCE\xA9>1</\xCE\xA9></A></XML>");

  open("\xFF\xFE" + utf16(u"<XML><A/></XML>", false));
  xml.XML_SaveSetting("A", "K", "\xF0\x9F\x98\x80");
  EXPECT_EQ(saved(), "\xFF\xFE" + utf16(u"<XML><A><K>\U0001F600</K></A></XML>", false));
}

std::string nested(std::size_t depth) {
  std::string text = "<XML>";
  for (std::size_t i = 1; i < depth; ++i) {
    text += "<a>";
  }
  for (std::size_t i = 1; i < depth; ++i) {
    text += "</a>";
  }
  return text + "</XML>";
}

TEST_F(XmlFiles, WhatIsNotWellFormedLoadsAsEmptyAndStays) {
  const std::string files[] = {
      "",
      "text",
      "<XML>",
      "<XML></xml>",
      "<XML/><XML/>",
      "<XML/>text",
      "&#32;<XML/>",
      "<XML/>&#32;",
      "text<XML/>",
      "<!-- only -->",
      "<XML>&nbsp;</XML>",
      "<XML>&#0;</XML>",
      "<XML>&#xD800;</XML>",
      "<XML>& </XML>",
      "<XML>]]></XML>",
      "<XML a='1' a='2'/>",
      "<XML a='1'b='2'/>",
      "<XML a='<'/>",
      "<XML a=1/>",
      "<XML><!-- -- --></XML>",
      "<XML><![CDATA[</XML>",
      "<XML><?xml version='1.0'?></XML>",
      " <?xml version='1.0'?><XML/>",
      "<?xml encoding='UTF-8'?><XML/>",
      "<?xml version='1.0' encoding='Shift_JIS'?><XML/>",
      "<XML>\x01</XML>",
      "<XML/>\0"s,
      "<XML>\xFF</XML>",
      "<XML>\xC0\xBC</XML>",
      "<XML>\xEF\xBF\xBF</XML>",
      "\xFF\xFE<\0X\0M\0L\0/\0>"s,
      "\xFF\xFE" + utf16(u"<XML>\xD800</XML>", false),
      "<!DOCTYPE XML><XML/>",
      "<!DOCTYPE XML [<!ENTITY a 'b'>]><XML>&a;</XML>",
      "<!DOCTYPE XML SYSTEM 'file:///etc/passwd'><XML/>",
      nested(257),
      nested(1'000'000),
  };
  for (const auto& content : files) {
    open(content);
    EXPECT_THAT(xml.XML_EnumFolders(), Optional(IsEmpty())) << content.substr(0, 60);
    EXPECT_EQ(saved(), content) << content.substr(0, 60);
  }
}

TEST_F(XmlFiles, AsDeepAsAllowedButNotDeeper) {
  open(nested(256));
  xml.XML_SaveSetting("//a[not(*)]", "K", "1");
  xml.XML_SaveSetting("//a[count(ancestor::*)=254]", "K", "1");
  xml.XML_SaveSetting("New", "K", "1");
  EXPECT_NE(saved().find("<a/><K>1</K></a>"), std::string::npos);
  xml.XML_Open(file);
  EXPECT_EQ(xml.XML_GetSetting("New", "K"), "1");
  xml.XML_DeleteSetting({}, "a");
  EXPECT_EQ(saved(), "<XML><New><K>1</K></New></XML>");
}

TEST_F(XmlFiles, CutAnywhereAFileIsEmptyOrWhole) {
  const std::string whole = "<?xml version='1.0'?>\n<XML a='1'><A><K>&lt;\xC3\xA9</K><!--c--></A></XML>\n";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    open(whole.substr(0, size));
    EXPECT_EQ(xml.XML_GetSetting("A", "K", "x"), size + 1 >= whole.size() ? "<\xC3\xA9" : "x") << size;
  }
}

}  // namespace
}  // namespace veltrano
