#include "veltrano/png.h"

#include <png.h>

#include "base/files/whole.h"
#include "images.h"

namespace veltrano::tests {
namespace {

/// libpng's own reading of a file; an empty image if it refuses.
Image readPng(const std::string& file) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&png, file.data(), file.size()) == 0) return {};
  png.format = PNG_FORMAT_RGB;
  std::vector<std::uint8_t> bytes(PNG_IMAGE_SIZE(png));
  if (png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr) == 0) return {};
  const std::uint8_t* next = bytes.data();
  return paint(static_cast<int>(png.width), static_cast<int>(png.height), [&](int, int) {
    next += 3;
    return Rgb{next[-3], next[-2], next[-1]};
  });
}

TEST(VeltranoPng, KeepsEveryPixelAndWritesTheDocumentedHeader) {
  const TemporaryFolder folder;
  VeltranoPNG png;
  png.Init("any text");
  EXPECT_EQ(png.initString(), "any text");
  std::string bytes;
  // Widths with every row padding; 700 by 500 of noise is more than one chunk of output.
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 3}, {5, 7}, {700, 500}, {258, 4}, {259, 3}}) {
    const Image image = noise(width, height);
    ASSERT_TRUE(png.SavePNG(picture(image), folder / "a.png")) << width;
    bytes = readWholeFile(folder / "a.png").value();
    EXPECT_TRUE(readPng(bytes) == image) << width;
  }
  using namespace std::string_literals;
  // Signature; IHDR of 13 bytes: 259 by 3, 8 bits, RGB, deflate, default filters, not interlaced.
  EXPECT_EQ(bytes.substr(0, 29), "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\x01\x03\0\0\0\x03\x08\x02\0\0\0"s);
  EXPECT_EQ(bytes.substr(33, 11), "\0\0\0\x03sBIT\x08\x08\x08"s);
}

TEST(VeltranoPng, LeavesNoHalfFile) {
  const TemporaryFolder folder;
  VeltranoPNG png;
  const Picture good = picture(noise(300, 200));
  EXPECT_FALSE(png.SavePNG(good, folder / "missing" / "a.png"));
  ASSERT_TRUE(replaceFile(folder / "kept.png", "kept"));
  EXPECT_FALSE(png.SavePNG(Picture(), folder / "kept.png"));
  EXPECT_FALSE(png.SavePNG(Picture::ofBitmap(12), folder / "new.png")) << "no such bitmap";
  EXPECT_EQ(readWholeFile(folder / "kept.png"), "kept");
  EXPECT_EQ(filesIn(folder), 1);
}

}  // namespace
}  // namespace veltrano::tests
