#ifndef VELTRANO_TESTS_SETTINGS_XML_FIXTURE_H
#define VELTRANO_TESTS_SETTINGS_XML_FIXTURE_H

#include <gtest/gtest.h>

#include <sstream>
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

  /// Takes steps like "save A K 1; get A K; delete A K; delete A; folders; keys A; open". The result is what they
  /// answer, each answer followed by ";": a setting or "none"; each name and ","; "Empty" for no list at all.
  std::string run(const std::string& steps) {
    std::string answers;
    std::istringstream all(steps);
    for (std::string step; std::getline(all, step, ';');) {
      std::string verb, name, key, value;
      std::istringstream(step) >> verb >> name >> key >> value;
      if (verb == "open") xml.XML_Open(file);
      if (verb == "save") xml.XML_SaveSetting(name, key, value);
      if (verb == "delete") xml.XML_DeleteSetting({}, name, key);
      if (verb == "get") answers += xml.XML_GetSetting(name, key, "none") + ";";
      if (verb == "folders") answers += listed(xml.XML_EnumFolders());
      if (verb == "keys") answers += listed(xml.XML_EnumKeys(name));
    }
    return answers;
  }

  TemporaryFolder folder;
  std::filesystem::path file = folder / u"r\u00E9glages.xml";
  std::filesystem::path copy = folder / u"r\u00E9glages.xml.bak";
  VeltranoXML xml;

 private:
  static std::string listed(const std::optional<std::vector<std::string>>& names) {
    std::string text = names ? "" : "Empty";
    for (const std::string& name : names.value_or(std::vector<std::string>())) text += name + ",";
    return text + ";";
  }
};

}  // namespace veltrano::tests

#endif
