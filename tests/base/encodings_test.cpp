#include "base/text/encodings.h"

#include <gtest/gtest.h>

namespace veltrano {
namespace {

TEST(Encodings, AreFoundByTheNamesThatFilesUse) {
  const struct {
    const char* name;
    std::string bytes;
    std::u16string text;
  } cases[] = {{"ISO-8859-15", "\xA4", u"\u20AC"},
               {"iso-8859-2", "\xA1", u"\u0104"},
               {"Windows-1252", "\x80\x81", u"\u20AC\u0081"},
               {"Windows-1253", "\xC1", u"\u0391"},
               {"windows-1254", "\xFD", u"\u0131"},
               {"koi8-r", "\xD0", u"\u043F"},
               {"IBM850", "\x82", u"\u00E9"},
               {"Shift_JIS", "\\~\x83\x41\x81\x60", u"\\~\u30A2\uFF5E"},
               {"windows-932", "\x83\x5C", u"\u30BD"},
               {"Big5", "\xA4\xA4", u"\u4E2D"},
               {"GBK", "\xD6\xD0", u"\u4E2D"},
               {"euc-kr", "\xC7\xD1", u"\uD55C"},
#ifndef _WIN32
               // Of these Windows has tables and Wine does not.
               {"EUC-JP", "\xA5\xA2", u"\u30A2"},
               {"GB18030", "\x81\x30\x84\x36\xD6\xD0", u"\u00A5\u4E2D"},
               {"ISO-2022-JP", "a\x1B$B%\"\x1B(B", u"a\u30A2"},
#endif
               {"us-ascii", "abc", u"abc"}};
  for (const auto& c : cases) {
    EXPECT_TRUE(isKnownEncoding(c.name)) << c.name;
    EXPECT_EQ(decodeText(c.name, c.bytes), c.text) << c.name;
    EXPECT_EQ(encodeText(c.name, c.text), c.bytes) << c.name;
  }
  // No ASCII below, no such thing, more than a name.
  for (const char* name :
       {"UTF-16", "IBM037", "UTF-7", "ISO-8859-99", "windows-", "", "ISO-8859-15//TRANSLIT"}) {
    EXPECT_FALSE(isKnownEncoding(name)) << name;
  }
}

TEST(Encodings, RefuseWhatTheyCannotSay) {
  EXPECT_FALSE(decodeText("Shift_JIS", "a\x83"));
  EXPECT_FALSE(decodeText("ISO-8859-7", "\xFF"));
  EXPECT_FALSE(encodeText("ISO-8859-1", u"\u20AC"));
  EXPECT_FALSE(encodeText("Shift_JIS", u"\u00E9"));
}

}  // namespace
}  // namespace veltrano
