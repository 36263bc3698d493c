#ifndef VELTRANO_TESTS_IMAGING_IMAGES_H
#define VELTRANO_TESTS_IMAGING_IMAGES_H

// Pictures to test with.

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

#include "tests/temporary_folder.h"
#include "veltrano/dib_section.h"

namespace veltrano::tests {

using Rgb = std::array<int, 3>;  ///< red, green, blue

/// A picture as seen, from the top left.
struct Image {
  int width = 0, height = 0;
  std::vector<Rgb> pixels{};
  [[nodiscard]] const Rgb& at(int x, int y) const {
    return pixels.at(static_cast<std::size_t>(y * width + x));
  }
  friend bool operator==(const Image&, const Image&) = default;
};

/// Calls `painter` for each pixel, row by row.
inline Image paint(int width, int height, const std::function<Rgb(int x, int y)>& painter) {
  Image image{width, height};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) image.pixels.push_back(painter(x, y));
  return image;
}

/// Smooth colours with a disc; a different colour in each corner.
inline Image scenery(int width, int height) {
  return paint(width, height, [=](int x, int y) {
    const int dx = x - width / 2, dy = y - height / 3;
    const bool disc = dx * dx + dy * dy < width * height / 20;
    return Rgb{disc ? 250 : 200 * x / width, 40 + 180 * y / height, 220 - 200 * (x + y) / (width + height)};
  });
}

/// Every pixel another; the same on each run.
inline Image noise(int width, int height) {
  return paint(width, height, [state = 12345U](int, int) mutable {
    state = state * 1664525 + 1013904223;
    return Rgb{static_cast<int>(state >> 24), static_cast<int>(state >> 16 & 255),
               static_cast<int>(state >> 8 & 255)};
  });
}

inline Picture picture(const Image& image) {
  std::vector<std::uint8_t> rows;
  for (const auto& [red, green, blue] : image.pixels)
    for (const int channel : {blue, green, red}) rows.push_back(static_cast<std::uint8_t>(channel));
  return Picture::fromBgr(image.width, image.height, rows.data(), std::ptrdiff_t{3} * image.width);
}

inline cDIBSection section(const Picture& picture) {
  cDIBSection dib;
  EXPECT_TRUE(dib.CreateFromPicture(picture));
  return dib;
}
inline cDIBSection section(const Image& image) {
  return section(picture(image));
}

inline Image contents(const cDIBSection& dib) {
  const std::uint8_t* const bits = dib.DIBSectionBitsPtr();
  return paint(dib.Width(), dib.Height(), [&](int x, int y) {
    const std::uint8_t* pixel = bits + dib.BytesPerScanLine() * (dib.Height() - 1 - y) + 3 * x;
    return Rgb{pixel[2], pixel[1], pixel[0]};
  });
}

inline int filesIn(const TemporaryFolder& folder) {
  return static_cast<int>(std::distance(std::filesystem::directory_iterator(folder.path()), {}));
}

}  // namespace veltrano::tests

#endif
