// Files as other programs write them: what is loaded and saved again keeps what it held, byte for byte where
// the file has one way to say it only.

#include "tests/settings/xml_fixture.h"
#include "tests/split.h"

namespace veltrano::tests {
namespace {

using namespace std::string_literals;
using XmlFiles = XmlFixture;

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
      "<!-- by hand -->\n<?app mode=\n\"1\"?>\n<XML version=\"2\" note=\"a&amp;b &quot;&lt;&#10;&#9;\">\n"
      "  <A>\n    <K><![CDATA[<x> ]] ]]></K> <!-- k\n k -->\n    <L>a\n  b&#13;</L>\n    <M> </M>\n  "
      "</A>\n</XML>\n";
  std::string crlf;
  for (const char c : pretty) crlf += c == '\n' ? "\r\n"s : std::string(1, c);
  const std::u16string wide =
      u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n<XML><\u00E9>\u20AC\U0001F600</\u00E9></XML>";
  auto files = split(
      "<XML/>|<?xml version='1.0' encoding=\"Windows-1252\"?><XML><!-- \x80 --><K>\x93\xE9\x94</K></XML>|"
      "\xEF\xBB\xBF<?xml version=\"1.0\"?><XML><K>\xE2\x82\xAC</K></XML>|"
      "<?xml version=\"1.0\" encoding=\"UTF-16\"?><XML>\xC3\xA9</XML>",
      '|');
  files.push_back(pretty);
  files.push_back(crlf);
  files.push_back("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone='yes' ?>\n" + pretty);
  for (const bool big : {false, true}) {
    files.push_back(utf16(wide, big));
    files.push_back((big ? "\xFE\xFF" : "\xFF\xFE") + utf16(wide, big));
  }
  files.push_back("\xFF\xFE" + utf16(u"<?xml version='1.0' encoding='utf-16le'?><XML>\u4E2D</XML>", false));
  const std::string encodings =
      "ISO-8859-1=<\xE9>\x80\xFF</\xE9>|us-ascii=&#233;|Shift_JIS=<\x83\x5C>\\ \x95\\ \xB1</\x83\x5C>|"
      "GBK=\xD6\xD0|utf-16le=\xC3\xA9";
  for (const std::string& row : split(encodings, '|')) {
    const auto parts = split(row, '=');
    files.push_back("<?xml version='1.0' encoding='" + parts[0] + "'?><XML>" + parts[1] + "</XML>");
  }
  for (const auto& content : files) {
    open(content);
    EXPECT_EQ(saved(), content);
  }
}

std::string nested(std::size_t depth) {
  std::string text = "<XML>";
  for (std::size_t i = 1; i < depth; ++i) text += "<a>";
  for (std::size_t i = 1; i < depth; ++i) text += "</a>";
  return text + "</XML>";
}

TEST_F(XmlFiles, WhatIsNotWellFormedLoadsAsEmptyAndStays) {
  auto files = split(
      "|text|<XML/>text|&#32;<XML/>|<!-- only -->|<XML a='1' b='2' a='3'/>|<XML><?xml version='1.0'?></XML>|"
      " <?xml version='1.0'?><XML/>|<?xml version='1.0'?><?xml version='1.0'?><XML/>|"
      "<?xml encoding='UTF-8'?><XML/>|<?xml version='1.0' encoding='no such encoding'?><XML/>|"
      "<?xml version='1.0' encoding='Shift_JIS'?><XML>\x83</XML>|"
      "<!DOCTYPE XML [<!ENTITY a 'b'>]><XML>&a;</XML>|<!DOCTYPE XML SYSTEM 'file:///etc/passwd'><XML/>",
      '|');
  files.insert(files.end(),
               {"<XML/>\0"s, "\xFF\xFE<\0X\0M\0L\0/\0>"s, "\xFF\xFE" + utf16(u"<XML>\xD800</XML>", false),
                nested(257), nested(1'000'000)});
  for (const auto& content : files) {
    open(content);
    EXPECT_EQ(run("folders"), ";") << content.substr(0, 60);
    EXPECT_EQ(saved(), content) << content.substr(0, 60);
  }
}

TEST_F(XmlFiles, AsDeepAsAllowedButNotDeeper) {
  open(nested(256));
  run("save //a[not(*)] K 1; save //a[count(ancestor::*)=254] K 1; save New K 1");
  EXPECT_NE(saved().find("<a/><K>1</K></a>"), std::string::npos);
  EXPECT_EQ(run("open; get New K; delete a"), "1;");
  EXPECT_EQ(saved(), "<XML><New><K>1</K></New></XML>");
}

}  // namespace
}  // namespace veltrano::tests
