// What is saved, read by a parser of other hands.

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <memory>
#include <random>

#include "base/files.h"
#include "settings/veltrano_xml.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

/// Text of the element of that path, or "(none)".
std::string read(const std::filesystem::path& file, const std::string& path) {
  const std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> document(
      xmlReadFile(file.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
      xmlFreeDoc);
  if (!document) {
    return "(malformed)";
  }
  const std::unique_ptr<xmlXPathContext, void (*)(xmlXPathContextPtr)> context(
      xmlXPathNewContext(document.get()), xmlXPathFreeContext);
  const std::unique_ptr<xmlXPathObject, void (*)(xmlXPathObjectPtr)> found(
      xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path.c_str()), context.get()),
      xmlXPathFreeObject);
  if (!found || !found->nodesetval || found->nodesetval->nodeNr == 0) {
    return "(none)";
  }
  const std::unique_ptr<xmlChar, void (*)(void*)> text(xmlNodeGetContent(found->nodesetval->nodeTab[0]),
                                                       xmlFree);
  return reinterpret_cast<const char*>(text.get());
}

TEST(SecondParser, ReadsTheValuesThatWereSaved) {
  const tests::TemporaryFolder folder;
  const auto file = folder / "settings.xml";
  const std::string frames[] = {"",
                                "<XML/>",
                                "<?xml version='1.0' encoding='ISO-8859-1'?><XML/>",
                                "<XML>\r\n  <F>\r\n  </F>\r\n</XML>",
                                "<?xml version='1.0' encoding='us-ascii'?>\n<XML>\n</XML>",
                                std::string("\xFF\xFE<\0X\0M\0L\0/\0>\0", 14),
                                std::string("\xFE\xFF\0<\0X\0M\0L\0/\0>", 14)};
  const std::string atoms[] = {"a",
                               " ",
                               "\r",
                               "\n",
                               "\t",
                               "<",
                               "&",
                               ">",
                               "]]>",
                               "\"",
                               "\xC3\xA9",
                               "\xE2\x82\xAC",
                               "\xF0\x9F\x98\x80",
                               "&amp;"};
  std::mt19937 random(7);
  for (int round = 0; round < 150; ++round) {
    std::string value;
    for (auto i = random() % 12; i > 0; --i) {
      value += atoms[random() % std::size(atoms)];
    }
    ASSERT_TRUE(replaceFile(file, frames[random() % std::size(frames)]));
    VeltranoXML xml;
    xml.XML_Open(file);
    xml.XML_SaveSetting("F", "K", value);
    xml.XML_SaveSetting("F\xC3\xA9", "@none", value);
    xml.XML_Save();
    ASSERT_EQ(read(file, "/XML/F/K"), value) << round;
    xml.XML_Open(file);
    ASSERT_EQ(xml.XML_GetSetting("F", "K"), value) << round;
  }
}

}  // namespace
}  // namespace veltrano
