#ifndef VELTRANO_TESTS_SETTINGS_XML_FIXTURE_H
#define VELTRANO_TESTS_SETTINGS_XML_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "base/files/whole.h"
#include "tests/temporary_folder.h"
#include "veltrano/xml.h"

namespace veltrano::tests {

/// Settings and their file.
class XmlFixture : public testing::Test {
 protected:
  void open(std::string_view content) {
    ASSERT_TRUE(replaceFile(file, content));
    xml.XML_Open(file);
  }
  std::string saved() {
    xml.XML_Save();
    return content();
  }
  std::string content() { return readWholeFile(file).value_or("(no file)"); }

  TemporaryFolder folder;
  std::filesystem::path file = folder / u"r\u00E9glages.xml";
  std::filesystem::path copy = folder / u"r\u00E9glages.xml.bak";
  VeltranoXML xml;
};

}  // namespace veltrano::tests

#endif
