#ifndef VELTRANO_IMAGING_BITMAP_PIXEL_SURFACE_H
#define VELTRANO_IMAGING_BITMAP_PIXEL_SURFACE_H

// Blit and stretch on 24-bit pixels in memory, as GDI does them: coordinates from the top left, everything
// clipped to both surfaces, raster operations by their GDI number.

#include <cstdint>

namespace veltrano {

/// Borrowed pixels: bottom-up rows of 3 bytes a pixel, `stride` bytes apart.
struct PixelSurface {
  std::uint8_t* bits = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int64_t stride = 0;

  /// Row `y` counted from the top.
  [[nodiscard]] std::uint8_t* row(std::int64_t y) const { return bits + (height - 1 - y) * stride; }
};

struct PixelRectangle {
  std::int64_t x = 0;
  std::int64_t y = 0;
  std::int64_t width = 0;
  std::int64_t height = 0;
};

/// Copies the rectangle of `target` from (sourceX, sourceY). Source and target may be the same pixels.
/// Operations that need a pattern brush draw nothing.
void blitPixels(const PixelSurface& target, PixelRectangle rectangle, const PixelSurface& source,
                std::int64_t sourceX, std::int64_t sourceY, std::uint32_t operation);

/// Draws the rectangle `from` of the source into the rectangle `to` of the target; what would come from
/// outside the source is left as it was. Averaging takes the mean of the source pixels under a target pixel,
/// otherwise the first of them is taken. The surfaces must not overlap.
void stretchPixels(const PixelSurface& target, PixelRectangle to, const PixelSurface& source,
                   PixelRectangle from, std::uint32_t operation, bool averaging);

}  // namespace veltrano

#endif
