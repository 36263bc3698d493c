// Faults anywhere in long documents, which the scan of plain ones looks at by large blocks.

#include <gtest/gtest.h>

#include <string>

#include "settings/xml_well_formed.h"

namespace veltrano {
namespace {

using namespace std::string_literals;

class XmlPlainText : public testing::TestWithParam<std::size_t> {
 protected:
  static bool isAcceptable(const std::string& text) {
    return isAcceptableXml(text, usableXmlPlainTextScans()[GetParam()]);
  }
  static bool isPlain(const std::string& text) {
    return usableXmlPlainTextScans()[GetParam()](text.data(), text.data() + text.size());
  }
};

/// Puts the piece around the end of the first block, among `filling`; much of it follows, or nothing.
template <typename Check>
void putAnywhere(const std::string& piece, std::string_view filling, Check check) {
  constexpr std::size_t first = 430;
  constexpr std::size_t last = 570;
  const std::string begin = "<XML>";
  std::string around;
  while (around.size() < 2 * last) {
    around += filling;
  }
  for (std::size_t i = first; i < last; ++i) {
    std::string text = begin;
    text.append(around, 0, i / filling.size() * filling.size());
    text.resize(begin.size() + i, 'x');
    text += piece;
    check(text + "</XML>");
    text += around;
    check(text + "</XML>");
  }
}

constexpr std::string_view fillings[] = {"x", "<K>1</K>\r\n", "<K>\xC3\xA9 &amp;</K>",
                                         "it's &lt; \xE2\x82\xAC"};

TEST_P(XmlPlainText, TakesWhatIsPlain) {
  for (const std::string piece :
       {"&amp;&lt;&gt;&quot;&apos;&#13;", "\xC3\xA9", "\xEF\xBF\xBD", "\xF0\x9F\x98\x80", "\"it's\" 1 > 0!?",
        "] ]", "<K\t>\t</K\n>", "<K/>", "\x7F"}) {
    for (const auto& filling : fillings) {
      putAnywhere(piece, filling, [&](const std::string& text) { ASSERT_TRUE(isPlain(text)) << text; });
    }
  }
}

TEST_P(XmlPlainText, RefusesAFaultAnywhere) {
  const std::string faults[] = {"&am;",
                                "&ampx",
                                "&lt ",
                                "&",
                                "&#1;",
                                "]]>",
                                "<!DOCTYPE a>",
                                "<?xml a?>",
                                "<K a='1' a='2'/>",
                                "\x1F"s,
                                "\0"s,
                                "\xC3",
                                "\xA9",
                                "\xC3\xA9\xA9",
                                "\xC1\xA9",
                                "\xE2\x82",
                                "\xEF\xBF\xBF",
                                "<K\xC3\x97/>"};
  for (const auto& fault : faults) {
    for (const auto& filling : fillings) {
      putAnywhere(fault, filling, [&](const std::string& text) { ASSERT_FALSE(isAcceptable(text)) << text; });
    }
  }
}

TEST_P(XmlPlainText, RefusesDeepNestingInLongText) {
  for (const std::string between : {"", "x", "\xC3\xA9"}) {
    for (std::size_t length = 0; length < 40; ++length) {
      std::string text = "<a>";
      for (std::size_t depth = 1; depth < deepestNesting; ++depth) {
        text.append(length, ' ').append(between).append("<a>");
      }
      std::string ends;
      for (std::size_t depth = 0; depth < deepestNesting; ++depth) {
        ends += "</a>";
      }
      ASSERT_TRUE(isAcceptable(text + ends));
      text += "<a></a>";
      ASSERT_FALSE(isAcceptable(text + ends)) << length;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryWidth, XmlPlainText,
                         testing::Range(std::size_t{0}, usableXmlPlainTextScans().size()));

}  // namespace
}  // namespace veltrano
