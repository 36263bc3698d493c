// Every copy of the scan that this processor can run, at all places where its steps begin and end.

#include "settings/ini_lines.h"

#include <gtest/gtest.h>

#include <string>

namespace veltrano {
namespace {

constexpr std::size_t mostSteps = 5 * iniWindow;

class IniScan : public testing::TestWithParam<std::size_t> {
 protected:
  /// Where the line of the key is found in a text at any alignment, or npos.
  std::size_t lineBegin(const std::string& key, const std::string& text, std::size_t from = 0) {
    const auto line = IniKey(key, usableIniKeyScans()[GetParam()]).findLine(text, from);
    return line ? line->begin : std::string::npos;
  }
};

TEST_P(IniScan, FindsTheLineWhereverItBegins) {
  for (const std::string key : {"", "k", "LastKey", "K\xC9y"}) {
    const std::string line = "\r\n" + key + "=";
    for (std::size_t begin = 2; begin < mostSteps; ++begin) {
      for (const std::size_t behind : {std::size_t{0}, std::size_t{1}, mostSteps}) {
        const std::string text = std::string(begin - 2, 'x') + line + std::string(behind, 'x');
        ASSERT_EQ(lineBegin(key, text), begin) << key << " before " << behind;
        ASSERT_EQ(lineBegin(key, text, begin), begin) << key << " before " << behind;
        ASSERT_EQ(lineBegin(key + "2", text), std::string::npos) << key << " before " << behind;
      }
    }
  }
}

TEST_P(IniScan, KeepsToTheText) {
  // What lies behind the text must not be taken for its end.
  const std::string memory = std::string(mostSteps, 'x') + "\r\nkey=1";
  const std::size_t sign = memory.find('=');
  for (std::size_t begin = 0; begin < mostSteps; ++begin) {
    const std::string_view text = std::string_view(memory).substr(begin, sign - begin);
    ASSERT_FALSE(IniKey("key", usableIniKeyScans()[GetParam()]).findLine(text)) << begin;
  }
}

TEST_P(IniScan, IsNotMisledByTextThatLooksAlike) {
  // Ends like the key, holds it behind a lone line feed, or is longer: each more often than steps are wide.
  std::string text;
  while (text.size() < 3 * mostSteps) {
    text += "my key=0\r\n\nkey=0\r\nkeykey=0\r\nkey =0\r\n";
  }
  EXPECT_EQ(lineBegin("key", text), std::string::npos);
  EXPECT_EQ(lineBegin("key", text + "KEY=1"), text.size());
}

INSTANTIATE_TEST_SUITE_P(EveryWidth, IniScan, testing::Range(std::size_t{0}, usableIniKeyScans().size()));

}  // namespace
}  // namespace veltrano
