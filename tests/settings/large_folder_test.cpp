// A folder so large that its keys are found by a table of names: it must answer as going through the children
// does.

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "tests/settings/xml_fixture.h"

namespace veltrano::tests {
namespace {

using LargeFolder = XmlFixture;

std::string keyName(unsigned number) {
  return "K" + std::to_string(number);
}

TEST_F(LargeFolder, AnswersAsAMapDoesWhateverIsAddedAndRemoved) {
  constexpr unsigned names = 3000;
  std::map<std::string, std::string> model;
  std::mt19937 random(11);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same steps each time
  for (unsigned i = 0; i < names; ++i) {
    xml.XML_SaveSetting("F", keyName(i), "first");
    model[keyName(i)] = "first";
  }
  for (unsigned step = 0; step < 20'000; ++step) {
    const std::string key = keyName(static_cast<unsigned>(random()) % names);
    const auto action = static_cast<unsigned>(random()) % 4;
    if (action == 0) {
      xml.XML_DeleteSetting({}, "F", key);
      model.erase(key);
    } else if (action == 1) {
      model[key] = std::to_string(step);
      xml.XML_SaveSetting("F", key, model[key]);
    } else {
      const auto found = model.find(key);
      ASSERT_EQ(xml.XML_GetSetting("F", key, "none"), found == model.end() ? "none" : found->second) << step;
    }
  }
  EXPECT_EQ(xml.XML_EnumKeys("F")->size(), model.size() + 1);
  xml.XML_DeleteSetting({}, "F");
  EXPECT_EQ(xml.XML_GetSetting("F", model.begin()->first, "none"), "none");
}

TEST_F(LargeFolder, AnEmptiedFolderLeavesNothingOfItsTable) {
  // Elements made later may lie where removed ones lay.
  for (int round = 0; round < 20; ++round) {
    for (unsigned i = 0; i < 100; ++i) xml.XML_SaveSetting("F", keyName(i), "1");
    for (unsigned i = 0; i < 100; ++i) {
      xml.XML_DeleteSetting({}, "F", keyName(i));
      ASSERT_EQ(xml.XML_GetSetting("F", keyName(i), "none"), "none");
    }
    xml.XML_DeleteSetting({}, "F");
    for (unsigned i = 0; i < 30; ++i) {
      xml.XML_SaveSetting("G" + keyName(i), "K", "2");
      ASSERT_EQ(xml.XML_GetSetting("G" + keyName(i), "K"), "2");
    }
    for (unsigned i = 0; i < 30; ++i) xml.XML_DeleteSetting({}, "G" + keyName(i));
  }
}

TEST_F(LargeFolder, TheFirstOfEqualKeysCountsAlsoWhenOneIsGone) {
  std::string content = "<XML><F>";
  for (unsigned i = 0; i < 2000; ++i) content += "<?K" + std::to_string(i) + " no key?>";
  for (const char* round : {"1", "2", "3"}) {
    for (unsigned i = 0; i < 2000; ++i)
      content.append("<").append(keyName(i)).append(">").append(round).append("</").append(keyName(i) + ">");
  }
  open(content + "</F><G><a><K0>in G</K0></a></G></XML>");
  const auto expectAll = [this](const std::string& seventh) {
    for (unsigned i = 0; i < 2000; ++i)
      ASSERT_EQ(xml.XML_GetSetting("F", keyName(i)), i == 7 ? seventh : "1") << i;
  };
  expectAll("1");
  xml.XML_DeleteSetting({}, "F", "K7");
  expectAll("2");
  // A value takes the place of what the key held, a large folder of another level included.
  xml.XML_SaveSetting(".", "F", "text");
  EXPECT_EQ(xml.XML_GetSetting("F", "K8", "none"), "none");
  EXPECT_EQ(xml.XML_GetSetting("G/a", "K0"), "in G");
}

}  // namespace
}  // namespace veltrano::tests
