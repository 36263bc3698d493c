#ifndef VELTRANO_PICTURE_H
#define VELTRANO_PICTURE_H

// A picture as hosts hand it over: a bitmap handle of the system (Windows), pixels in memory, or nothing.
//
// The value is cheap to copy: pixels are shared and never change. A bitmap handle is borrowed; `owner` keeps
// what it belongs to (an automation picture, for instance) alive for as long as a copy of the Picture lives.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "veltrano/export.h"

namespace veltrano {

/// A handle of the system's graphics (HBITMAP, HDC) as a number of pointer width; 0 is none.
using GraphicsHandle = std::uintptr_t;

/// Bytes from one row of 24-bit pixels to the next: the row's length rounded up to a multiple of 4.
constexpr std::int64_t bytesPerScanLine(std::int64_t width) {
  return (width * 3 + 3) & ~std::int64_t{3};
}

class VELTRANO_API Picture {
 public:
  /// Nothing: every member that is handed it fails as documented.
  Picture() = default;

  /// Copies `height` rows of `width` blue-green-red pixels. `topRow` is the first row of the picture as seen;
  /// the following rows are `stride` bytes apart (negative: they precede it). Nothing if a size is below 1,
  /// the pixels would take 2^31 bytes or more, or the address is null.
  static Picture fromBgr(std::int32_t width, std::int32_t height, const std::uint8_t* topRow,
                         std::ptrdiff_t stride);

  /// A bitmap of the system, of any depth, DIB or device bitmap; its pixels are read when the picture is
  /// used, and it must not be selected into a device context then. An icon or metafile picture has no such
  /// handle: hand over Nothing. Without GDI the result behaves as Nothing.
  static Picture ofBitmap(GraphicsHandle bitmap, std::shared_ptr<const void> owner = {});

  /// The borrowed bitmap, or 0.
  [[nodiscard]] GraphicsHandle bitmap() const { return bitmap_; }
  /// Size of the pixels in memory; 0 by 0 for a bitmap handle and for Nothing.
  [[nodiscard]] std::int32_t width() const { return width_; }
  [[nodiscard]] std::int32_t height() const { return height_; }
  /// The pixels as a DIB section has them: rows bottom-up, bytesPerScanLine(width()) apart. Null without
  /// pixels.
  [[nodiscard]] const std::uint8_t* bits() const { return bits_; }

 private:
  GraphicsHandle bitmap_ = 0;
  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  const std::uint8_t* bits_ = nullptr;
  std::shared_ptr<const void> owner_;
};

}  // namespace veltrano

#endif
