#include "veltrano/png.h"

#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "images.h"

namespace veltrano::tests {
namespace {

TEST(VeltranoPng, KeepsEveryPixelWhereItIs) {
  const TemporaryFolder folder;
  VeltranoPNG png;
  png.Init("any text");
  EXPECT_EQ(png.initString(), "any text");
  // Widths with every row padding; 700 by 500 of noise is more than one chunk of output.
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 3}, {3, 2}, {4, 4}, {5, 7}, {700, 500}}) {
    const Image image = noise(width, height);
    ASSERT_TRUE(png.SavePNG(picture(image), folder / "a.png")) << width;
    EXPECT_TRUE(readPng(folder / "a.png") == image) << width;
  }
}

TEST(VeltranoPng, WritesTheDocumentedHeader) {
  const TemporaryFolder folder;
  ASSERT_TRUE(VeltranoPNG().SavePNG(picture(scenery(258, 3)), folder / "a.png"));
  const std::string bytes = readWholeFile(folder / "a.png").value();
  using namespace std::string_literals;
  // Signature; IHDR of 13 bytes: 258 by 3, 8 bits, RGB, deflate, default filters, not interlaced.
  EXPECT_EQ(bytes.substr(0, 29), "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\x01\x02\0\0\0\x03\x08\x02\0\0\0"s);
  EXPECT_EQ(bytes.substr(33, 11), "\0\0\0\x03sBIT\x08\x08\x08"s);
}

TEST(VeltranoPng, LeavesNoHalfFile) {
  const TemporaryFolder folder;
  VeltranoPNG png;
  const Picture good = picture(noise(300, 200));
  EXPECT_FALSE(png.SavePNG(good, folder / "missing" / "a.png"));
  EXPECT_FALSE(png.SavePNG(good, std::filesystem::path()));
  ASSERT_TRUE(replaceFile(folder / "kept.png", "kept"));
  EXPECT_FALSE(png.SavePNG(Picture(), folder / "kept.png"));
  EXPECT_FALSE(png.SavePNG(Picture::ofBitmap(12), folder / "new.png")) << "no such bitmap";
  EXPECT_EQ(readWholeFile(folder / "kept.png"), "kept");
  EXPECT_EQ(filesIn(folder), 1);
}

}  // namespace
}  // namespace veltrano::tests
