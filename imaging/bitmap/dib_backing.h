#ifndef VELTRANO_IMAGING_BITMAP_DIB_BACKING_H
#define VELTRANO_IMAGING_BITMAP_DIB_BACKING_H

// What backs a DIB section: GDI (dib_backing_windows.cpp) or a pixel buffer (dib_backing_posix.cpp).
// Internal to imaging/.

#include <cstdint>
#include <memory>
#include <optional>

#include "imaging/bitmap/pixel_surface.h"
#include "veltrano/dib_section.h"
#include "veltrano/picture.h"

namespace veltrano {

/// Owns the section, its device context if it has one, and nothing else.
class DibBacking {
 public:
  DibBacking() = default;
  DibBacking(const DibBacking&) = delete;
  DibBacking& operator=(const DibBacking&) = delete;
  virtual ~DibBacking() = default;

  /// Makes the device context and selects the section into it. Called at most once.
  virtual bool attachContext() = 0;
  [[nodiscard]] virtual GraphicsHandle context() const = 0;
  [[nodiscard]] virtual GraphicsHandle section() const = 0;
  /// Address of the pixels, all drawing done.
  [[nodiscard]] virtual std::uint8_t* bits() const = 0;
};

/// The section that `header` describes, its pixels zero; null if the system has no memory or handle for it.
/// `dc` may be 0.
std::unique_ptr<DibBacking> makeDibBacking(GraphicsHandle dc, const BitmapInfoHeader& header);

/// GDI's BitBlt and StretchBlt; a context that is 0 draws nothing.
void blitContext(GraphicsHandle target, PixelRectangle rectangle, GraphicsHandle source, std::int64_t sourceX,
                 std::int64_t sourceY, std::uint32_t operation);
void stretchContext(GraphicsHandle target, PixelRectangle to, GraphicsHandle source, PixelRectangle from,
                    std::uint32_t operation, bool halftone);

struct BitmapSize {
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// Empty if the handle is not a bitmap.
std::optional<BitmapSize> bitmapSize(GraphicsHandle bitmap);
/// Copies the whole bitmap to the top left of a device context. False if that is impossible: the bitmap is
/// selected into another device context, for instance.
bool copyBitmap(GraphicsHandle bitmap, BitmapSize size, GraphicsHandle target);

}  // namespace veltrano

#endif
