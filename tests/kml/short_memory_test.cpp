// What the writer does with a text that the memory cannot hold.

#include "tests/short_memory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "kml/markup.h"
#include "tests/temporary_folder.h"
#include "veltrano/kml.h"

namespace veltrano::tests {
namespace {

TEST(KmlInShortMemory, LosesTheLineAndNoOther) {
  constexpr std::size_t limit = 100'000;
  const TemporaryFolder folder;
  const std::string longText(2 * limit, 'x');
  VeltranoKML kml;
  kml.CreateKML(folder / "a.kml", {});
  largestBlock = limit;
  kml.CreateStreetView("a.jpg", 1, 2, 3, "n", longText);
  kml.CreatePlaceMark(1, 2, 3, longText, "d");
  // The path buffer grows as far as it can.
  for (int i = 0; i < 20'000; ++i) kml.CreatePathPoint(48.123456, 2.123456, 100);
  kml.CreatePlaceMark(1, 2, 3, "last", "");
  largestBlock = memoryEnough;
  kml.CreatePathFromPlaceMarks(1, "");
  kml.CloseKML();
  const std::string text = readWholeFile(folder / "a.kml").value_or("");
  for (const char* part : {"<name>n</name>\r\n      <Camera>",
                           "  </PhotoOverlay>\r\n  <Placemark>\r\n      <description>d</description>\r\n",
                           "<name>last</name>\r\n      \r\n      <Point>\r\n          "
                           "<coordinates>2,1,3</coordinates>\r\n      </Point>\r\n  </Placemark>",
                           "2.123456,48.123456,100\r\n      </coordinates>"})
    EXPECT_THAT(text, testing::HasSubstr(part));
  EXPECT_TRUE(text.ends_with("  </Placemark>\r\n</Document>\r\n</kml>\r\n"));
}

TEST(KmlMarkup, TextsOfTheWriterAreAsciiCharacterData) {
  EXPECT_EQ(characterData("Caf\xE9 <R&D> \x80"), "Caf&#233; &#60;R&#38;D&#62; &#8364;");
  EXPECT_EQ(characterData(std::string("a\x01\0\tb", 5)), "ab");
}

}  // namespace
}  // namespace veltrano::tests
