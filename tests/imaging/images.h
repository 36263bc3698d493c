#ifndef VELTRANO_TESTS_IMAGING_IMAGES_H
#define VELTRANO_TESTS_IMAGING_IMAGES_H

// Pictures to test with, and readers of others for what the library wrote.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/temporary_folder.h"
#include "veltrano/dib_section.h"

namespace veltrano::tests {

struct Rgb {
  int red = 0, green = 0, blue = 0;
  friend bool operator==(const Rgb&, const Rgb&) = default;
};
using Painter = std::function<Rgb(int x, int y)>;

/// A picture as seen, from the top left.
struct Image {
  int width = 0, height = 0;
  std::vector<Rgb> pixels;
  [[nodiscard]] Rgb at(int x, int y) const {
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                     static_cast<std::size_t>(x));
  }
  friend bool operator==(const Image&, const Image&) = default;
};

Image paint(int width, int height, const Painter& painter);
/// Smooth colours with some shapes; a different colour in each corner.
Image scenery(int width, int height);
/// Every pixel another; the same on each run.
Image noise(int width, int height);

Picture picture(const Image& image);
cDIBSection section(const Image& image);
Image contents(const cDIBSection& dib);

/// Decibels; both of one size.
double psnr(const Image& a, const Image& b);

/// libpng's and libjpeg's own reading; an empty image when they refuse.
Image readPng(const std::filesystem::path& file);
Image readJpeg(const std::string& bytes);
/// libjpeg's own encoding of flat four-channel samples.
std::string flatInksJpeg(const std::uint8_t (&inks)[4], bool adobe, bool ycck);

inline int filesIn(const TemporaryFolder& folder) {
  return static_cast<int>(std::distance(std::filesystem::directory_iterator(folder.path()), {}));
}

}  // namespace veltrano::tests

#endif
