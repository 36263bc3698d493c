#include "veltrano/dib_section.h"

#include <gtest/gtest.h>

#include <climits>

#include "images.h"
#include "imaging/bitmap/pixel_surface.h"

namespace veltrano::tests {
namespace {

TEST(DibSection, LaysRowsOutInMultiplesOfFour) {
  for (const auto& [width, bytes] : {std::pair{1, 4}, {2, 8}, {3, 12}, {4, 12}, {5, 16}, {640, 1920}}) {
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(width, 3));
    EXPECT_EQ(dib.BytesPerScanLine(), bytes) << width;
    EXPECT_EQ(dib.header().biSizeImage, static_cast<unsigned>(bytes * 3));
    EXPECT_TRUE(dib.header().biBitCount == 24 && dib.hDC() != 0 && dib.hDib() != 0);
  }
  for (const auto& [mode, bits] : {std::pair{3, 24}, {4, 32}, {0, 32}}) {
    cDIBSection bare;
    GraphicsHandle handle = 0;
    ASSERT_TRUE(bare.CreateDIB(0, 5, 2, mode, handle));
    EXPECT_EQ(bare.header().biBitCount, bits);
    EXPECT_EQ(bare.BytesPerScanLine(), 16) << "24-bit formula for every depth";
    EXPECT_TRUE(bare.hDC() == 0 && handle == bare.hDib());
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

PixelSurface surface(const cDIBSection& dib) {
  return {dib.DIBSectionBitsPtr(), dib.Width(), dib.Height(), dib.BytesPerScanLine()};
}

/// A pixel's channel after drawing, from the source's and the target's.
using Combination = int (*)(int source, int target);
constexpr Combination copied = [](int source, int) { return source; };

// 7 by 5 pixels drawn over 15 by 11. What is expected is worked out here a pixel at a time; on Windows GDI
// draws.
TEST(DibSection, DrawsAsGdiDoes) {
  struct {
    const char* label;
    int x, y, width, height, sourceX, sourceY;
    unsigned operation;
    Combination combine;
    int times;  ///< stretched by
  } const cases[] = {{"whole", 0, 0, 7, 5, 0, 0, copySourceOperation, copied, 1},
                     {"part", 3, 2, 4, 3, 1, 2, copySourceOperation, copied, 1},
                     {"off the top left", -2, -3, 7, 5, 0, 0, copySourceOperation, copied, 1},
                     {"off the bottom", 12, 8, 7, 5, 0, 0, copySourceOperation, copied, 1},
                     {"beyond", 50, 50, 7, 5, 0, 0, copySourceOperation, copied, 1},
                     {"nothing", 1, 1, 0, 0, 0, 0, copySourceOperation, copied, 1},
                     {"and", 1, 1, 7, 5, 0, 0, 0x008800C6, [](int s, int t) { return s & t; }, 1},
                     {"or", 1, 1, 7, 5, 0, 0, 0x00EE0086, [](int s, int t) { return s | t; }, 1},
                     {"xor", 1, 1, 7, 5, 0, 0, 0x00660046, [](int s, int t) { return s ^ t; }, 1},
                     {"inverted", 1, 1, 7, 5, 0, 0, 0x00330008, [](int s, int) { return 255 - s; }, 1},
                     {"doubled", -3, 1, 14, 10, 0, 0, copySourceOperation, copied, 2},
                     {"tripled, clipped", 4, 4, 21, 15, 0, 0, copySourceOperation, copied, 3}};
  const Image ground = scenery(15, 11), brush = noise(7, 5);
  const cDIBSection source = section(brush);
  for (const auto& c : cases) {
    cDIBSection target = section(ground);
    if (c.times > 1) {
      source.Stretch(target.hDC(), c.x, c.y, c.width, c.height);
    } else {
      source.PaintPicture(target.hDC(), c.x, c.y, c.width, c.height, c.sourceX, c.sourceY, c.operation);
    }
    const Image expected = paint(15, 11, [&](int x, int y) {
      const Rgb under = ground.at(x, y);
      if (x < c.x || y < c.y || x >= c.x + c.width || y >= c.y + c.height) return under;
      const Rgb over = brush.at(c.sourceX + (x - c.x) / c.times, c.sourceY + (y - c.y) / c.times);
      return Rgb{c.combine(over.red, under.red), c.combine(over.green, under.green),
                 c.combine(over.blue, under.blue)};
    });
    EXPECT_TRUE(contents(target) == expected) << c.label;
  }
}

TEST(DibSection, LoadsFromADeviceContext) {
  cDIBSection dib = section(noise(4, 4));
  const Rgb moved = contents(dib).at(2, 3);
  dib.LoadPictureBlt(dib.hDC(), 1, 2, 2, 2);  // onto itself
  EXPECT_EQ(contents(dib).at(1, 1), moved);
  dib.PaintPicture(0);  // no device context: nothing happens
}

TEST(DibSection, CopiesOntoItselfWithoutSmearing) {
  for (const auto& [from, to, rows] : {std::tuple{0, 1, "0012"}, {1, 0, "1233"}}) {  // down and up by one
    cDIBSection dib = section(paint(3, 4, [](int, int y) { return Rgb{y, y, y}; }));
    blitPixels(surface(dib), {0, to, 3, 3}, surface(dib), 0, from, copySourceOperation);
    for (int y = 0; y < 4; ++y) EXPECT_EQ(contents(dib).at(1, y).red, rows[y] - '0') << rows;
  }
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
  // 799 / 400 = 1.9975: columns 0, 1 (1.9975), 3 (3.995), ... 797 (797.0025).
  const Image half = contents(section(paint(800, 6, [](int x, int) {
                                return Rgb{x % 256, x / 256, 0};
                              })).Resample2(3, 400));
  ASSERT_EQ(half.pixels.size(), 1200U);
  for (const auto& [x, column] : {std::pair{0, 0}, {1, 1}, {2, 3}, {3, 5}, {200, 399}, {399, 797}})
    EXPECT_EQ(half.at(x, 0).red + half.at(x, 0).green * 256, column) << x;
  // Which column or row (from the bottom) each new one comes from; 3 * 0.33333334 is 1 in single precision.
  for (const auto& [size, from] :
       {std::pair{3, "000111"}, {5, "0"}, {4, "0123"}, {4, "00112"}, {2, "000"}, {10, "036"}}) {
    const int newSize = static_cast<int>(std::string(from).size());
    const cDIBSection source = section(paint(size, size, [size = size](int x, int y) {
      return Rgb{x, 77, size - 1 - y};
    }));
    const Image expected = paint(newSize, newSize, [&, from = from](int x, int y) {
      return Rgb{from[x] - '0', 77, from[newSize - 1 - y] - '0'};
    });
    EXPECT_TRUE(contents(source.Resample2(newSize, newSize)) == expected) << size << " to " << from;
    EXPECT_EQ(source.Resample2(-1, 4).hDC(), 0U);
    EXPECT_EQ(source.Resample2(4, 0).hDC(), 0U);
  }
}

}  // namespace
}  // namespace veltrano::tests
