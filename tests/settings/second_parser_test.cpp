// What is saved, read by a parser of other hands.

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <algorithm>
#include <memory>
#include <random>

#include "tests/settings/xml_fixture.h"
#include "tests/split.h"

namespace veltrano::tests {
namespace {

using SecondParser = XmlFixture;
template <class T>
using Owned = std::unique_ptr<T, void (*)(T*)>;
constexpr int quietly = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

/// Text of the key K in the folder F.
std::string read(const std::filesystem::path& file) {
  const Owned<xmlDoc> document(xmlReadFile(file.c_str(), nullptr, quietly), xmlFreeDoc);
  if (!document) return "(malformed)";
  const Owned<xmlXPathContext> context(xmlXPathNewContext(document.get()), xmlXPathFreeContext);
  const auto* expression = reinterpret_cast<const xmlChar*>("string(/XML/F/K)");
  const Owned<xmlXPathObject> text(xmlXPathEvalExpression(expression, context.get()), xmlXPathFreeObject);
  return reinterpret_cast<const char*>(text->stringval);
}

bool isWellFormed(const std::string& text) {
  // The letters of names as the earlier editions of XML have them.
  xmlDoc* const document =
      xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8", XML_PARSE_OLD10 | quietly);
  return Owned<xmlDoc>(document, xmlFreeDoc) != nullptr;
}

TEST_F(SecondParser, ReadsTheValuesThatWereSaved) {
  auto frames = split(
      "|<XML/>|<?xml version='1.0' encoding='ISO-8859-1'?><XML/>|<XML>\r\n  <F>\r\n  </F>\r\n</XML>|"
      "<?xml version='1.0' encoding='us-ascii'?>\n<XML>\n</XML>",
      '|');
  frames.emplace_back("\xFF\xFE<\0X\0M\0L\0/\0>\0", 14);
  frames.emplace_back("\xFE\xFF\0<\0X\0M\0L\0/\0>", 14);
  const auto atoms =
      split("a| |\r|\n|\t|<|&|>|]]>|\"|\xC3\xA9|\xE2\x82\xAC|\xF0\x9F\x98\x80|&amp;|--|%", '|');
  std::mt19937 random(7);
  for (int round = 0; round < 150; ++round) {
    std::string value;
    for (auto i = random() % 12; i > 0; --i) value += atoms[random() % std::size(atoms)];
    open(frames[random() % std::size(frames)]);
    xml.XML_SaveSetting("F", "K", value);
    xml.XML_SaveSetting("F\xC3\xA9", "@none", value);
    xml.XML_Save();
    ASSERT_EQ(read(file), value) << round;
    xml.XML_Open(file);
    ASSERT_EQ(xml.XML_GetSetting("F", "K"), value) << round;
  }
}

// Right documents and such with a fault anywhere.
TEST_F(SecondParser, TakesAndRefusesTheSameDocuments) {
  const auto plain = split(
      "<Key>|<K>800</K>|<K />|&amp;|&#x20AC;|it's \"so\"|a > b|[x]|\x7F\t\r\n|\xC3\xA9|\xE2\x82\xAC|"
      "\xED\x9F\xBF|\xF0\x9F\x98\x80|\xF4\x8F\xBF\xBF|long text, long text, long text, long text",
      '|');
  const auto rich = split(
      "<!-- ' -->|<![CDATA[<&]]>|<?p i?>|<A a='\xC3\xA9' b=\"'>]]>\"/>|<\xC3\xA9>1</\xC3\xA9>|"
      "<K\xCC\x81\xE2\x82\xAC/>|<\xF0\x9F\x98\x80/>",
      '|');
  const auto bad = split(
      "&|&amp|&nbsp;|&#0;|&#xFFFE;|&#-1;|&#32;|]]>|<|</Key>|<Key>|<1/>|<K a=1/>|<K\xC3\x97/>|<!-- -- -->|"
      "\x01|\x0B|\x80|\xC3|\xE2\x82|\xF0\x9F\x98|\xC1\xBF|\xE0\x9F\xBF|\xF0\x8F\xBF\xBF|\xED\xA0\x80|"
      "\xF4\x90\x80\x80|\xF5\x80\x80\x80|\xEF\xBF\xBE|\xEF\xBF\xBF",
      '|');
  std::mt19937 random(11);
  const auto pick = [&](const auto& from) { return from[random() % std::size(from)]; };
  int taken = 0;
  for (int round = 0; round < 4000; ++round) {
    const bool allPlain = random() % 2 == 0;
    std::string text = "<XML><F/>", ends = "</XML>\n";
    for (auto i = random() % 60; i > 0; --i) {
      text += allPlain || random() % 8 != 0 ? pick(plain) : pick(rich);
      if (text.ends_with("<Key>")) ends.insert(0, "</Key>\n");
    }
    text += ends;
    if (random() % 2 == 0) text.insert(random() % (text.size() + 1), pick(bad));
    std::filesystem::remove(file);  // putting a file in place of another waits for the disk
    open(text);
    const bool loaded = run("folders") != ";";
    ASSERT_EQ(loaded, isWellFormed(text)) << round << ": " << testing::PrintToString(text);
    taken += loaded ? 1 : 0;
  }
  EXPECT_TRUE(taken > 1000 && taken < 3000) << taken;
}

}  // namespace
}  // namespace veltrano::tests
