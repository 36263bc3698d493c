#include "imaging/dib_section.h"

#include <gtest/gtest.h>

#include <climits>

#include "images.h"
#include "imaging/dib_backing.h"

namespace veltrano {
namespace {

using test::contents;
using test::Image;
using test::noise;
using test::paint;
using test::Rgb;
using test::section;

TEST(DibSection, LaysRowsOutInMultiplesOfFour) {
  for (const auto& [width, bytes] : {std::pair{1, 4}, {2, 8}, {3, 12}, {4, 12}, {5, 16}, {640, 1920}}) {
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(width, 3));
    EXPECT_EQ(dib.BytesPerScanLine(), bytes) << width;
    EXPECT_EQ(dib.header().biSizeImage, static_cast<unsigned>(bytes * 3));
    EXPECT_EQ(dib.header().biBitCount, 24);
    EXPECT_NE(dib.hDC(), 0U);
    EXPECT_NE(dib.hDib(), 0U);
  }
}

TEST(DibSection, RefusesSizesThatCannotBeHeld) {
  for (const auto& [width, height] :
       {std::pair{0, 1}, {1, 0}, {-1, 5}, {5, -1}, {100000, 100000}, {INT_MAX, 1}, {1, INT_MAX}, {0, 0}}) {
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(2, 2));
    EXPECT_FALSE(dib.Create(width, height)) << width << 'x' << height;
    EXPECT_EQ(dib.hDC(), 0U);
    EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
    EXPECT_EQ(dib.Width(), 0);
    EXPECT_FALSE(dib.Resample2(2, 2).hDC());
  }
}

TEST(DibSection, MakesBareSectionsOfEitherDepth) {
  for (const auto& [mode, bits] : {std::pair{3, 24}, {4, 32}, {0, 32}}) {
    cDIBSection dib;
    GraphicsHandle handle = 0;
    ASSERT_TRUE(dib.CreateDIB(0, 5, 2, mode, handle));
    EXPECT_EQ(dib.header().biBitCount, bits);
    EXPECT_EQ(dib.BytesPerScanLine(), 16) << "24-bit formula for every depth";
    EXPECT_EQ(handle, dib.hDib());
    EXPECT_EQ(dib.hDC(), 0U);
  }
}

// One picture drawn over another with `draw`, on the section's own backing and on plain pixels: both must
// agree.
struct Drawing {
  const char* label;
  std::function<void(cDIBSection& target, const cDIBSection& source)> onSection;
  std::function<void(const PixelSurface& target, const PixelSurface& source)> onPixels;
};

PixelSurface surface(const cDIBSection& dib) {
  return {dib.DIBSectionBitsPtr(), dib.Width(), dib.Height(), dib.BytesPerScanLine()};
}

Drawing blitOf(const char* label, int x, int y, int w, int h, int sx, int sy, unsigned operation) {
  return {
      label,
      [=](auto& target, auto& source) { source.PaintPicture(target.hDC(), x, y, w, h, sx, sy, operation); },
      [=](auto& target, auto& source) {
        blitPixels(target, {x, y, w < 0 ? source.width : w, h < 0 ? source.height : h}, source, sx, sy,
                   operation);
      }};
}

Drawing stretchOf(const char* label, int x, int y, int w, int h) {
  return {label, [=](auto& target, auto& source) { source.Stretch(target.hDC(), x, y, w, h); },
          [=](auto& target, auto& source) {
            stretchPixels(target, {x, y, w, h}, source, {0, 0, source.width, source.height},
                          copySourceOperation, false);
          }};
}

TEST(DibSection, DrawsTheSameOnBothBackings) {
  for (const Drawing& drawing :
       {blitOf("whole", 0, 0, -1, -1, 0, 0, 0x00CC0020), blitOf("part", 3, 2, 4, 3, 1, 2, 0x00CC0020),
        blitOf("off the left and top", -2, -3, -1, -1, 0, 0, 0x00CC0020),
        blitOf("off the right and bottom", 12, 8, -1, -1, 0, 0, 0x00CC0020),
        blitOf("beyond", 50, 50, -1, -1, 0, 0, 0x00CC0020), blitOf("nothing", 1, 1, 0, 0, 0, 0, 0x00CC0020),
        blitOf("and", 1, 1, -1, -1, 0, 0, 0x008800C6), blitOf("or", 1, 1, -1, -1, 0, 0, 0x00EE0086),
        blitOf("xor", 1, 1, -1, -1, 0, 0, 0x00660046), blitOf("inverted", 1, 1, -1, -1, 0, 0, 0x00330008),
        stretchOf("same size", 2, 1, 7, 5), stretchOf("doubled", -3, 1, 14, 10),
        stretchOf("empty", 2, 2, 0, 0), stretchOf("tripled, clipped", 4, 4, 21, 15)}) {
    cDIBSection target = section(test::scenery(15, 11));
    cDIBSection plain = section(test::scenery(15, 11));
    const cDIBSection source = section(noise(7, 5));
    drawing.onSection(target, source);
    drawing.onPixels(surface(plain), surface(source));
    EXPECT_TRUE(contents(target) == contents(plain)) << drawing.label;
  }
}

TEST(DibSection, BlitsWhatIsAskedFor) {
  cDIBSection target;
  ASSERT_TRUE(target.Create(4, 4));
  const cDIBSection source = section(paint(2, 2, [](int x, int y) { return Rgb{200 + x, 100 + y, 50}; }));
  source.PaintPicture(target.hDC(), 1, 2);
  const Image expected = paint(4, 4, [](int x, int y) {
    return (x == 1 || x == 2) && y >= 2 ? Rgb{199 + x, 98 + y, 50} : Rgb{};
  });
  EXPECT_TRUE(contents(target) == expected);
  target.LoadPictureBlt(target.hDC(), 1, 2, 2, 2);  // onto itself
  EXPECT_EQ(contents(target).at(1, 1), (Rgb{201, 101, 50}));
  source.PaintPicture(0);  // no device context: nothing happens
}

TEST(DibSection, CopiesOntoItselfWithoutSmearing) {
  const PixelSurface pixels = {nullptr, 3, 4, 12};
  std::uint8_t bytes[48];
  for (int i = 0; i < 48; ++i)
    bytes[i] = static_cast<std::uint8_t>(i / 12);  // the bottom row holds 0, the top row 3
  PixelSurface own = pixels;
  own.bits = bytes;
  blitPixels(own, {0, 1, 3, 3}, own, 0, 0, copySourceOperation);  // down by one
  for (const auto& [row, value] : {std::pair{0, 1}, {1, 2}, {2, 3}, {3, 3}})
    EXPECT_EQ(bytes[std::size_t{12} * static_cast<std::size_t>(row)], value) << row;
}

TEST(DibSection, AveragesWhenItShrinks) {
  // Blocks of 2 by 2: the mean of 0, 0, 200, 200 is 100.
  cDIBSection target;
  ASSERT_TRUE(target.Create(4, 2));
  section(paint(8, 4, [](int x, int) { return Rgb{x % 2 * 200, 60, 7}; })).Stretch(target.hDC(), 0, 0, 4, 2);
  const Rgb pixel = contents(target).at(1, 1);
  EXPECT_EQ(pixel.green, 60);
  EXPECT_EQ(pixel.blue, 7);
#ifndef _WIN32  // how exactly HALFTONE averages is GDI's affair
  EXPECT_EQ(pixel.red, 100);
#endif
}

TEST(DibSection, SamplesPointsByTheDocumentedScale) {
  // 799 / 400 = 1.9975: columns 0, 1 (1.9975), 3 (3.995), ... 797 (797.0025). Rows likewise, from the bottom.
  const cDIBSection source = section(paint(800, 6, [](int x, int y) {
    return Rgb{x % 256, x / 256, 5 - y};
  }));  // blue: row from the bottom
  const Image image = contents(source.Resample2(3, 400));
  ASSERT_EQ(image.width, 400);
  ASSERT_EQ(image.height, 3);
  for (const auto& [x, column] : {std::pair{0, 0}, {1, 1}, {2, 3}, {3, 5}, {200, 399}, {399, 797}}) {
    EXPECT_EQ(image.at(x, 0).red + image.at(x, 0).green * 256, column) << x;
  }
  // 5 / 3 = 1.67: rows 0, 1 and 3 from the bottom.
  for (const auto& [y, row] : {std::pair{2, 0}, {1, 1}, {0, 3}}) EXPECT_EQ(image.at(0, y).blue, row) << y;
}

TEST(DibSection, SamplesPointsToLargerAndOddSizes) {
  const cDIBSection source = section(noise(5, 4));
  const Image from = contents(source);
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {13, 1}, {12, 11}, {6, 4}, {5, 4}, {64, 64}}) {
    const Image to = contents(source.Resample2(height, width));
    ASSERT_EQ(to.pixels.size(), static_cast<std::size_t>(width * height));
    const bool same = width == 5 && height == 4;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const int column =
            same ? x : static_cast<int>(static_cast<float>(x) * (4.0F / static_cast<float>(width)));
        const int row =
            same ? y : static_cast<int>(static_cast<float>(y) * (3.0F / static_cast<float>(height)));
        ASSERT_EQ(to.at(x, height - 1 - y), from.at(column, 3 - row))
            << width << 'x' << height << ' ' << x << ',' << y;
      }
    }
  }
  for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, 4}}) {
    EXPECT_EQ(source.Resample2(height, width).hDC(), 0U);
  }
}

TEST(DibSection, LosesNoHandles) {
  const std::int64_t before = openGraphicsHandles();
  {
    cDIBSection dib;
    const Picture small = picture(noise(3, 3));
    // GDI has some ten thousand handles: losing one a round ends in a failure.
    for (int round = 0; round < 100'000; ++round) {
      ASSERT_TRUE(round % 4 == 0 ? dib.CreateFromPicture(small) : dib.Create(8, 8)) << round;
      if (round % 16 == 0) dib = dib.Resample2(5, 5);
      dib.ClearUp();
      ASSERT_EQ(openGraphicsHandles(), before);
    }
    dib.Create(1, 1);
    EXPECT_GT(openGraphicsHandles(), before) << "the count counts";
  }
  EXPECT_EQ(openGraphicsHandles(), before);
}

}  // namespace
}  // namespace veltrano
