#include "pdf/images/jpeg_scan.h"

#include <gtest/gtest.h>

#include <tuple>

#include "tests/pdf/jpeg_testing.h"

namespace veltrano {
namespace {

using tests::app0;
using tests::bytes;
using tests::frame;
using tests::jpeg;

JpegScan scan(std::string_view file) {
  return scanJpeg(file, {});
}

TEST(JpegScanTest, FrameHeaders) {
  for (int marker = 0xC0; marker <= 0xCF; ++marker) {
    const auto header = scan(jpeg({app0(1), frame(marker, 640, 480, 3)})).header;
    ASSERT_TRUE(header) << marker;
    const bool known = marker <= 0xC7 && marker != 0xC4;
    EXPECT_EQ(header->width, known ? 640 : 0) << marker;
    EXPECT_EQ(header->height, known ? 480 : 0) << marker;
  }
  const std::tuple<int, const char*, int> rows[] = {
      {1, "DeviceGray", 8}, {2, "", 16}, {3, "DeviceRGB", 8}, {4, "DeviceCMYK", 8}};
  for (const auto& [components, colourSpace, bits] : rows) {
    const auto header = scan(jpeg({frame(0xC2, 640, 480, components)})).header;
    EXPECT_EQ(header->colourSpace, colourSpace);
    EXPECT_EQ(header->bitsPerComponent, bits);
  }
}

TEST(JpegScanTest, SizeAndEnds) {
  const std::string file = jpeg({frame(0xC0, 9, 9, 3)}, 250);
  EXPECT_EQ(scan(file).header->densityUnit, "");
  EXPECT_EQ(scan("").message, "JPEG format invalid");
  EXPECT_EQ(scan("x" + file).message, "JPEG format invalid. Pass 2");
  const char* const units[] = {"Dots", "Dots/inch (DPI)", "Dots/cm"};
  for (int unit = 0; unit < 3; ++unit) EXPECT_EQ(scan(jpeg({app0(unit)})).header->densityUnit, units[unit]);
}

TEST(JpegScanTest, WalksWhereverTheLengthsLead) {
  const std::string wide = frame(0xC0, 640, 480, 3);
  const std::string narrow = frame(0xC0, 33, 44, 1);
  // A scan header of 8 bytes, then data whose first word happens to lead to what looks like another frame.
  const std::string scanned = bytes({0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 63, 0, 0x12, 0x34, 0, 3, 0x55});
  EXPECT_EQ(scan(jpeg({wide, scanned, narrow})).header->width, 33);
  // A frame behind fill bytes is stepped over, the one behind that is read.
  EXPECT_EQ(scan(jpeg({bytes({0xFF, 0xFF}), wide})).header->width, 0);
  EXPECT_EQ(scan(jpeg({bytes({0xFF}), wide, narrow})).header->width, 33);
  // The bits of an odd frame stay.
  const auto header = scan(jpeg({frame(0xC0, 1, 1, 2), wide})).header;
  EXPECT_EQ(header->colourSpace, "DeviceRGB");
  EXPECT_EQ(header->bitsPerComponent, 16);
}

TEST(JpegScanTest, ReadsPastTheEndAreSkipped) {
  // The frame's marker and length are the last bytes before the end marker.
  for (const std::string& tail : {bytes({0xFF, 0xC0, 0, 17}), bytes({0xFF, 0xC0}), bytes({0xFF, 0xE0, 0, 4}),
                                  bytes({0xFF, 0xFF, 0xFF, 0xFF})}) {
    std::string file =
        bytes({0xFF, 0xD8, 0xFF, 0xE1, 0, 242}) + std::string(240, '\0') + tail + bytes({0xFF, 0xD9});
    EXPECT_TRUE(scan(file).header);
  }
}

TEST(JpegScanTest, GivesTheHostATurnAtEveryMarkerAndWithinFillBytes) {
  const std::string short1 = frame(0xC0, 9, 9, 3);
  const std::tuple<std::string, std::size_t> rows[] = {
      {jpeg({}), 1},  // the comment that fills it
      {jpeg({short1}), 2},
      {jpeg({app0(1), short1, short1}), 4},
      {bytes({0xFF, 0xD8}) + std::string(300, '\0') + bytes({0xFF, 0xD9}), 150},
      {bytes({0xFF, 0xD8}) + std::string(1 << 22, '\xFF') + bytes({0xFF, 0xD9}), 1025},
  };
  for (const auto& [file, expected] : rows) {
    std::size_t turns = 0;
    EXPECT_TRUE(scanJpeg(file, [&turns] { ++turns; }).header);
    EXPECT_EQ(turns, expected) << file.size();
  }
}

}  // namespace
}  // namespace veltrano
