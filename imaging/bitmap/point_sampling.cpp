#include "imaging/bitmap/point_sampling.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace veltrano {
namespace {

// Scale and product are both rounded to single precision: for some sizes that moves a sample to the next
// pixel, and the pixels are part of the contract. Double arithmetic in between is exact enough not to change
// the rounding.
class SampledAxis {
 public:
  SampledAxis(std::int32_t sourceSize, std::int32_t newSize)
      : last_(sourceSize - 1), scale_(static_cast<float>(static_cast<double>(last_) / newSize)) {}

  [[nodiscard]] std::int32_t at(std::int32_t i) const {
    const auto position = static_cast<float>(static_cast<double>(i) * static_cast<double>(scale_));
    // Beyond 2^23 pixels the rounding can pass the last one.
    return static_cast<std::int32_t>(std::min<std::int64_t>(static_cast<std::int64_t>(position), last_));
  }

 private:
  std::int32_t last_;
  float scale_;
};

// Pixels are moved as four bytes each, the fourth being overwritten by the next pixel; `wide` says for how
// many of them reading and writing four bytes stays inside the rows.
void sampleRow(std::uint8_t* target, const std::uint8_t* source, const std::vector<std::uint32_t>& offsets,
               std::size_t wide) {
  const std::uint32_t* offset = offsets.data();
  std::size_t i = 0;
  for (; i < wide; ++i) {
    std::uint32_t pixel;
    std::memcpy(&pixel, source + offset[i], 4);
    std::memcpy(target + i * 3, &pixel, 4);
  }
  for (; i < offsets.size(); ++i) std::memcpy(target + i * 3, source + offset[i], 3);
}

}  // namespace

void samplePoints(const PixelSurface& target, const PixelSurface& source) {
  const SampledAxis columns(source.width, target.width);
  const SampledAxis rows(source.height, target.height);

  std::vector<std::uint32_t> offsets(static_cast<std::size_t>(target.width));
  for (std::int32_t x = 0; x < target.width; ++x) {
    offsets[static_cast<std::size_t>(x)] = static_cast<std::uint32_t>(columns.at(x)) * 3;
  }
  // Offsets never decrease, so those that allow a wide read come first; the last pixel is never written wide.
  const auto limit = static_cast<std::uint32_t>(source.width) * 3 - 3;
  const auto wide =
      static_cast<std::size_t>(std::lower_bound(offsets.begin(), offsets.end() - 1, limit) - offsets.begin());

  std::int32_t previous = -1;
  for (std::int32_t y = 0; y < target.height; ++y) {
    std::uint8_t* line = target.bits + y * target.stride;
    const std::int32_t row = rows.at(y);
    if (row == previous) {
      std::memcpy(line, line - target.stride, static_cast<std::size_t>(target.width) * 3);
    } else {
      sampleRow(line, source.bits + row * source.stride, offsets, wide);
    }
    previous = row;
  }
}

}  // namespace veltrano
