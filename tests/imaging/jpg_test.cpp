#include "veltrano/jpg.h"

#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "images.h"
#include "imaging/jpeg/intel_jpeg_library.h"

namespace veltrano::tests {
namespace {

std::string sizeOf(const std::string& jpeg) {
  const Image image = readJpeg(jpeg);
  return std::to_string(image.width) + "x" + std::to_string(image.height);
}

class VeltranoJpg : public testing::Test {
 protected:
  const std::string jpeg_ = mIntelJPEGLibrary::saveDibToJpegString(section(scenery(80, 60)), 60);
  const std::uintptr_t address_ = reinterpret_cast<std::uintptr_t>(jpeg_.data());
  const std::int32_t size_ = static_cast<std::int32_t>(jpeg_.size());
  TemporaryFolder folder_;
  VeltranoJPG jpg_;
};

TEST_F(VeltranoJpg, ResizesFilesWhenBothSizesAreGiven) {
  ASSERT_TRUE(replaceFile(folder_ / "in.jpg", jpeg_));
  constexpr std::tuple<int, int, const char*> rows[] = {
      {0, 0, "80x60"}, {320, 0, "80x60"}, {0, 240, "80x60"}, {32, 48, "32x48"}, {160, 10, "160x10"}};
  for (const auto& [width, height, size] : rows) {
    // Names of their own, so that no row reads the file of the row before it.
    const std::string name = std::to_string(width) + "x" + std::to_string(height);
    const auto saved = folder_ / (name + ".jpg");
    const auto resampled = folder_ / (name + " resampled.jpg");
    jpg_.SaveJPEG(picture(scenery(80, 60)), saved, 50, width, height);
    jpg_.SaveJPEGResampled(folder_ / "in.jpg", resampled, 50, width, height);
    EXPECT_EQ(sizeOf(readWholeFile(saved).value_or("")), size) << name;
    EXPECT_EQ(sizeOf(readWholeFile(resampled).value_or("")), size) << name;
  }
}

TEST_F(VeltranoJpg, MakesBytesWithinTheBudget) {
  ASSERT_TRUE(replaceFile(folder_ / "in.jpg", jpeg_));
  EXPECT_EQ(sizeOf(jpg_.SaveJPEGToMemory(picture(scenery(80, 60)), 60, 40, 30)), "80x60") << "never resized";
  EXPECT_EQ(sizeOf(jpg_.SaveJPEGToMemoryResampled(folder_ / "in.jpg", 30, 120, 90)), "120x90");
  EXPECT_EQ(jpg_.JPEGWidth, 0) << "not from files";
  EXPECT_EQ(sizeOf(jpg_.SaveJPEGFromRAMToMemoryResampled(jpeg_, 30, 120, 90)), "120x90");
  EXPECT_EQ(jpg_.JPEGWidth, 80) << "the size decoded, not the size asked for";
  EXPECT_EQ(jpg_.JPEGHeight, 60);
  EXPECT_EQ(jpg_.SaveJPEGFromRAMToMemoryResampled(jpeg_, 50, 10, 10).size(), 26U)
      << "no room: 10 * 10 / 4 + 1";
}

TEST_F(VeltranoJpg, SavesNothingFromNothing) {
  ASSERT_TRUE(replaceFile(folder_ / "kept.jpg", "kept"));
  jpg_.SaveJPEG(Picture(), folder_ / "kept.jpg");
  jpg_.SaveJPEG(Picture(), folder_ / "kept.jpg", 50, 10, 10);
  jpg_.SaveJPEG(picture(scenery(8, 8)), folder_ / "kept.jpg", 50, -10, 10);
  jpg_.SaveJPEGResampled(folder_ / "missing.jpg", folder_ / "kept.jpg", 50, 20, 20);
  jpg_.SaveJPEGResampled(folder_ / "kept.jpg", folder_ / "new.jpg");  // not a JPEG
  EXPECT_EQ(readWholeFile(folder_ / "kept.jpg"), "kept");
  EXPECT_EQ(filesIn(folder_), 1);
  EXPECT_EQ(jpg_.SaveJPEGToMemory(Picture()).size(), 1U);
  EXPECT_EQ(jpg_.SaveJPEGFromRAMToMemoryResampled(jpeg_.substr(0, jpeg_.size() - 100)).size(), 1U)
      << "a part of a picture";
  EXPECT_EQ(jpg_.SaveJPEGToMemoryResampled(folder_ / "missing.jpg").size(), 1U);
  EXPECT_EQ(jpg_.LoadJPEGFromRAMToPicture(address_, size_, 1, 1).bits(), nullptr);
}

// Where on a canvas of 200 by 150 the picture of 80 by 60 shows.
TEST_F(VeltranoJpg, DrawsOntoADeviceContext) {
  constexpr Rgb ground{1, 2, 3};
  // How it is placed, and the half-open box that is drawn.
  constexpr std::tuple<const char*, bool, int, int, int, int, int, int, int, int> cases[] = {
      {"own size", false, 0, 0, 0, 0, 0, 0, 80, 60},
      {"stretched", false, 0, 0, 160, 120, 0, 0, 160, 120},
      {"shrunk", false, 0, 0, 40, 30, 0, 0, 40, 30},
      {"one size missing: no area", false, 0, 0, 40, 0, 0, 0, 0, 0},
      {"placed, own size", true, 50, 20, 0, 0, 50, 20, 130, 80},
      {"placed, stretched", true, 30, 40, 100, 90, 30, 40, 130, 130},
      {"placed, clipped", true, -40, 120, 0, 0, 0, 120, 40, 150}};
  for (const auto& [label, xy, x1, y1, width, height, left, top, right, bottom] : cases) {
    cDIBSection canvas = section(paint(200, 150, [](int, int) { return ground; }));
    VeltranoJPG jpg;
    EXPECT_FALSE(xy ? jpg.LoadJPEGFromRAM2PictureXY(canvas.hDC(), address_, size_, x1, y1, width, height)
                    : jpg.LoadJPEGFromRAM2Picture(canvas.hDC(), address_, size_, width, height));
    EXPECT_EQ(jpg.JPEGWidth, xy ? 0 : 80) << label;
    EXPECT_EQ(jpg.JPEGHeight, xy ? 0 : 60) << label;
    const Image drawn = contents(canvas);
    for (int y = 0; y < 150; ++y) {
      for (int x = 0; x < 200; ++x) {
        const bool inside = x >= left && x < right && y >= top && y < bottom;
        ASSERT_EQ(drawn.at(x, y) != ground, inside) << label << ' ' << x << ',' << y;
      }
    }
    EXPECT_TRUE(right - left < 80 || drawn.at(left, top).green < 60) << label << ": top is dark green";
  }
}

TEST_F(VeltranoJpg, DrawsNothingFromWhatIsNotAJpeg) {
  cDIBSection canvas;
  ASSERT_TRUE(canvas.Create(10, 10));
  const Image before = contents(canvas);
  jpg_.JPEGWidth = 7;
  for (const auto& [address, size] :
       {std::pair{std::uintptr_t{0}, 100}, {address_, 0}, {address_, -1}, {address_ + 1, size_ - 1}})
    EXPECT_FALSE(jpg_.LoadJPEGFromRAM2Picture(canvas.hDC(), address, size, 0, 0));
  EXPECT_TRUE(contents(canvas) == before);
  EXPECT_EQ(jpg_.JPEGWidth, 7) << "left as the host set it";
  jpg_.LoadJPEGFromRAM2Picture(0, address_, size_, 5, 5);  // decoded, drawn nowhere
  EXPECT_EQ(jpg_.JPEGWidth, 80);
}

}  // namespace
}  // namespace veltrano::tests
