#include "veltrano/picture.h"

#include <cstring>
#include <limits>
#include <utility>

namespace veltrano {

Picture Picture::fromBgr(std::int32_t width, std::int32_t height, const std::uint8_t* topRow,
                         std::ptrdiff_t stride) {
  Picture picture;
  if (width < 1 || height < 1 || topRow == nullptr ||
      bytesPerScanLine(width) > std::numeric_limits<std::int32_t>::max() / height) {
    return picture;
  }
  const auto rowLength = static_cast<std::size_t>(width) * 3;
  const auto lineLength = static_cast<std::size_t>(bytesPerScanLine(width));
  auto bits = std::make_shared<std::uint8_t[]>(lineLength * static_cast<std::size_t>(height));
  for (std::int32_t y = 0; y < height; ++y) {
    std::memcpy(bits.get() + static_cast<std::size_t>(height - 1 - y) * lineLength, topRow + y * stride,
                rowLength);
  }
  picture.width_ = width;
  picture.height_ = height;
  picture.bits_ = bits.get();
  picture.owner_ = std::move(bits);
  return picture;
}

Picture Picture::ofBitmap(GraphicsHandle bitmap, std::shared_ptr<const void> owner) {
  Picture picture;
  picture.bitmap_ = bitmap;
  picture.owner_ = std::move(owner);
  return picture;
}

}  // namespace veltrano
