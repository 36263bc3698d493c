#include "veltrano/dib_section.h"

#include <climits>

#include "images.h"

namespace veltrano::tests {
namespace {

TEST(DibSection, LaysRowsOutInMultiplesOfFourAndRefusesWhatCannotBeHeld) {
  cDIBSection dib;
  for (const auto& [width, bytes] : {std::pair{1, 4}, {2, 8}, {3, 12}, {4, 12}, {640, 1920}}) {
    ASSERT_TRUE(dib.Create(width, 3));
    EXPECT_EQ(dib.BytesPerScanLine(), bytes) << width;
    EXPECT_EQ(dib.header().biSizeImage, static_cast<unsigned>(bytes * 3));
    EXPECT_TRUE(dib.header().biBitCount == 24 && dib.hDC() != 0 && dib.hDib() != 0);
  }
  for (const auto& [width, height] :
       {std::pair{0, 1}, {1, 0}, {-1, 5}, {5, -1}, {100000, 100000}, {INT_MAX, 1}, {1, INT_MAX}}) {
    ASSERT_TRUE(dib.Create(2, 2));
    EXPECT_EQ(dib.Resample2(height, width).hDC(), 0U) << width << 'x' << height;
    EXPECT_FALSE(dib.Create(width, height)) << width << 'x' << height;
    EXPECT_TRUE(dib.hDC() == 0 && dib.DIBSectionBitsPtr() == nullptr && dib.Width() == 0);
    EXPECT_EQ(dib.Resample2(2, 2).hDC(), 0U) << "an empty one stays empty";
  }
  GraphicsHandle handle = 0;
  ASSERT_TRUE(dib.CreateDIB(0, 5, 2, 4, handle));
  EXPECT_EQ(dib.header().biBitCount, 32);
  EXPECT_EQ(dib.BytesPerScanLine(), 16) << "24-bit formula for every depth";
  EXPECT_TRUE(dib.hDC() == 0 && handle == dib.hDib());
}

/// A pixel's channel after drawing, from the source's and the target's.
using Combination = int (*)(int source, int target);
constexpr Combination copied = [](int source, int) { return source; };

// 7 by 5 pixels drawn over 15 by 11. What is expected is worked out here a pixel at a time; on Windows GDI
// draws.
TEST(DibSection, DrawsAsGdiDoes) {
  const struct {
    const char* label;
    int x, y, width, height, sourceX, sourceY;
    unsigned operation;
    Combination combine;
    int times;  ///< stretched by
  } cases[] = {{"whole", 0, 0, 7, 5, 0, 0, copySourceOperation, copied, 1},
               {"part", 3, 2, 4, 3, 1, 2, copySourceOperation, copied, 1},
               {"off the top left", -2, -3, 7, 5, 0, 0, copySourceOperation, copied, 1},
               {"off the bottom", 12, 8, 7, 5, 0, 0, copySourceOperation, copied, 1},
               {"nothing", 1, 1, 0, 0, 0, 0, copySourceOperation, copied, 1},
               {"and", 1, 1, 7, 5, 0, 0, 0x008800C6, [](int s, int t) { return s & t; }, 1},
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
      Rgb pixel = ground.at(x, y);
      if (x < c.x || y < c.y || x >= c.x + c.width || y >= c.y + c.height) return pixel;
      const Rgb& over = brush.at(c.sourceX + (x - c.x) / c.times, c.sourceY + (y - c.y) / c.times);
      for (std::size_t i = 0; i < 3; ++i) pixel[i] = c.combine(over[i], pixel[i]);
      return pixel;
    });
    EXPECT_TRUE(contents(target) == expected) << c.label;
  }
}

TEST(DibSection, SamplesPointsByTheDocumentedScale) {
  // 799 / 400 = 1.9975: columns 0, 1 (1.9975), 3 (3.995), ... 797 (797.0025).
  const Image half = contents(section(paint(800, 6, [](int x, int) {
                                return Rgb{x % 256, x / 256, 0};
                              })).Resample2(3, 400));
  ASSERT_EQ(half.pixels.size(), 1200U);
  for (const auto& [x, column] : {std::pair{0, 0}, {1, 1}, {2, 3}, {3, 5}, {200, 399}, {399, 797}})
    EXPECT_EQ(half.at(x, 0)[0] + half.at(x, 0)[1] * 256, column) << x;
  // Which column or row (from the bottom) each new one comes from; 3 * 0.33333334 is 1 in single precision.
  for (const auto& [size, from] :
       {std::pair{3, "000111"}, {5, "0"}, {4, "0123"}, {4, "00112"}, {2, "000"}, {10, "036"}}) {
    const int last = size - 1, newSize = static_cast<int>(std::string(from).size());
    const Image source = paint(size, size, [&](int x, int y) { return Rgb{x, 77, last - y}; });
    const Image expected = paint(newSize, newSize, [&, f = from](int x, int y) {
      return Rgb{f[x] - '0', 77, f[newSize - 1 - y] - '0'};
    });
    EXPECT_TRUE(contents(section(source).Resample2(newSize, newSize)) == expected) << size << " to " << from;
  }
}

}  // namespace
}  // namespace veltrano::tests
