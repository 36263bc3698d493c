#ifndef VELTRANO_DIB_SECTION_H
#define VELTRANO_DIB_SECTION_H

// The uncompressed image of the JPEG and PNG classes: a bottom-up section of 24-bit blue-green-red pixels,
// rows padded to a multiple of 4 bytes, with a memory device context selected onto it.
//
// Two backings: on Windows a real DIB section of GDI, so that hosts can draw on it and from it with any GDI
// call; elsewhere a plain pixel buffer, whose "device context" is the address of that buffer and is
// understood by this class only. A device context handed to these members must be a live one: a number cannot
// be checked.
//
// Nothing here throws but std::bad_alloc. A failed drawing call leaves the target as it was.

#include <cstdint>
#include <memory>

#include "veltrano/export.h"
#include "veltrano/picture.h"

namespace veltrano {

class DibBacking;

/// How source and target pixels are combined, as GDI numbers it (this one is its SRCCOPY). The plain backing
/// knows every operation that needs no pattern brush and draws nothing for the others.
inline constexpr std::uint32_t copySourceOperation = 0x00CC0020;

/// The header of a section, field for field as Windows lays it out.
struct BitmapInfoHeader {
  std::uint32_t biSize = 40;
  std::int32_t biWidth = 0;
  std::int32_t biHeight = 0;  ///< positive: the first row in memory is the bottom of the image
  std::uint16_t biPlanes = 1;
  std::uint16_t biBitCount = 24;
  std::uint32_t biCompression = 0;
  std::uint32_t biSizeImage = 0;
  std::int32_t biXPelsPerMeter = 0;
  std::int32_t biYPelsPerMeter = 0;
  std::uint32_t biClrUsed = 0;
  std::uint32_t biClrImportant = 0;
};
static_assert(sizeof(BitmapInfoHeader) == 40, "handed to GDI as it stands");

class VELTRANO_API cDIBSection {
 public:
  cDIBSection();
  cDIBSection(cDIBSection&&) noexcept;
  cDIBSection& operator=(cDIBSection&&) noexcept;
  cDIBSection(const cDIBSection&) = delete;
  cDIBSection& operator=(const cDIBSection&) = delete;
  ~cDIBSection();

  /// The memory device context that holds the section; 0 without one.
  [[nodiscard]] GraphicsHandle hDC() const;
  /// The section's own handle; 0 without one. Owned by this object.
  [[nodiscard]] GraphicsHandle hDib() const;
  /// First byte of the bottom row; null without a section, valid until the next Create or ClearUp. GDI's
  /// pending drawing is finished before the address is returned.
  [[nodiscard]] std::uint8_t* DIBSectionBitsPtr() const;
  [[nodiscard]] std::int32_t Width() const { return header_.biWidth; }
  [[nodiscard]] std::int32_t Height() const { return header_.biHeight; }
  /// The 24-bit formula, whatever bit count the section was made with.
  [[nodiscard]] std::int32_t BytesPerScanLine() const;
  [[nodiscard]] const BitmapInfoHeader& header() const { return header_; }

  /// Makes the bare section, without device context, in place of what was held; `bitMode` 3 gives 24 bits,
  /// anything else 32. `dc` may be 0. `dib` receives the section's handle, which stays owned by this object,
  /// or 0. The pixels are zero. False if the size is not positive, more than 2^31 - 1 bytes, or more than the
  /// system has.
  bool CreateDIB(GraphicsHandle dc, std::int32_t width, std::int32_t height, int bitMode,
                 GraphicsHandle& dib);

  /// A new black 24-bit section with its device context. False, and nothing held, if that is impossible.
  bool Create(std::int32_t width, std::int32_t height);

  /// A section of the picture's size with its pixels. False, and nothing held, for Nothing, for what is not a
  /// bitmap and for a bitmap that is selected into another device context.
  bool CreateFromPicture(const Picture& picture);

  /// Copies from a device context to this section's top left. A negative width or height means the section's
  /// own.
  void LoadPictureBlt(GraphicsHandle sourceDC, std::int32_t sourceX = 0, std::int32_t sourceY = 0,
                      std::int32_t width = -1, std::int32_t height = -1,
                      std::uint32_t operation = copySourceOperation);

  /// Copies to a device context. A negative width or height means the section's own; 0 draws nothing.
  void PaintPicture(GraphicsHandle destinationDC, std::int32_t x = 0, std::int32_t y = 0,
                    std::int32_t width = -1, std::int32_t height = -1, std::int32_t sourceX = 0,
                    std::int32_t sourceY = 0, std::uint32_t operation = copySourceOperation) const;

  /// Draws the whole section into a rectangle. Negative sizes as above. With `halftone`, or if the rectangle
  /// is narrower or lower than the section, the target's stretch mode becomes HALFTONE (and stays so); the
  /// plain backing averages the source pixels then and takes the nearest one otherwise.
  void Stretch(GraphicsHandle destinationDC, std::int32_t x, std::int32_t y, std::int32_t width,
               std::int32_t height, std::int32_t sourceX = 0, std::int32_t sourceY = 0,
               std::uint32_t operation = copySourceOperation, bool halftone = false) const;

  /// A resized copy, by point sampling. The height comes first. Holds nothing if a size is not positive, this
  /// section is empty, or memory is short.
  [[nodiscard]] cDIBSection Resample2(std::int32_t newHeight, std::int32_t newWidth) const;

  /// Releases everything.
  void ClearUp();

 private:
  std::unique_ptr<DibBacking> backing_;
  BitmapInfoHeader header_;
};

/// The PNG class's name for the same section.
using cDIBSectionPNG = cDIBSection;

}  // namespace veltrano

#endif
