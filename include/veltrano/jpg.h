#ifndef VELTRANO_JPG_H
#define VELTRANO_JPG_H

// Saves pictures as JPEG files or bytes, optionally resized, and draws JPEG bytes onto a device context.
//
// JPEG bytes are std::string, one char a byte. To automation hosts they are strings: the server turns each
// byte into one character by the system's ANSI conversion, which keeps all 256 byte values in a single-byte
// code page.
//
// Quality is 1 to 100, clamped. FixWidth and FixHeight resize only if both are given (not 0), without regard
// to the aspect ratio; a negative size saves nothing. A step that fails is skipped: no member throws anything
// but std::bad_alloc, and the result says all there is to know. Files appear whole or not at all.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "veltrano/export.h"
#include "veltrano/picture.h"

namespace veltrano {

class VELTRANO_API VeltranoJPG {
 public:
  static constexpr std::int32_t defaultQuality = 50;

  /// Size in pixels of the JPEG that LoadJPEGFromRAM2Picture or SaveJPEGFromRAMToMemoryResampled decoded
  /// last, before any resizing. Hosts may set them.
  std::int32_t JPEGWidth = 0;
  std::int32_t JPEGHeight = 0;

  /// Writes no file for a picture that is Nothing, not a bitmap, or a bitmap selected into a device context.
  void SaveJPEG(const Picture& ImageToSave, const std::filesystem::path& xFilename,
                std::int32_t JPEGQuality = defaultQuality, std::int32_t FixWidth = 0,
                std::int32_t FixHeight = 0);

  /// Keeps the picture's own size: FixWidth and FixHeight are ignored here, which hosts rely on. The budget
  /// is a quarter of a byte a pixel. An image that needs more gives a string of width * height / 4 + 1
  /// characters that is not a JPEG; a picture that cannot be read gives one NUL character.
  std::string SaveJPEGToMemory(const Picture& ImageToSave, std::int32_t JPEGQuality = defaultQuality,
                               std::int32_t FixWidth = 0, std::int32_t FixHeight = 0);

  /// Does nothing and returns no picture.
  Picture LoadJPEGFromRAMToPicture(std::uintptr_t ArrayPointer, std::int32_t ArraySize, std::int32_t X,
                                   std::int32_t y);

  /// Draws the JPEG of `ArraySize` bytes at the address `ArrayPointer` at (0, 0) of `Dest_hDC`: in its own
  /// size if X and y are both 0, otherwise into X by y pixels. False even if it was drawn; hosts know that
  /// the result says nothing.
  bool LoadJPEGFromRAM2Picture(GraphicsHandle Dest_hDC, std::uintptr_t ArrayPointer, std::int32_t ArraySize,
                               std::int32_t X, std::int32_t y);

  /// Draws the JPEG at (x1, Y1), into X by y pixels or, if both are 0, in its own size. Leaves JPEGWidth and
  /// JPEGHeight alone. False, as above.
  bool LoadJPEGFromRAM2PictureXY(GraphicsHandle Dest_hDC, std::uintptr_t ArrayPointer, std::int32_t ArraySize,
                                 std::int32_t x1, std::int32_t Y1, std::int32_t X, std::int32_t y);

  /// JPEG bytes to JPEG bytes, resized, within the budget of SaveJPEGToMemory. One NUL character for bytes
  /// that are damaged or not a JPEG.
  std::string SaveJPEGFromRAMToMemoryResampled(std::string_view ImageToSave,
                                               std::int32_t JPEGQuality = defaultQuality,
                                               std::int32_t FixWidth = 0, std::int32_t FixHeight = 0);

  /// JPEG file to JPEG bytes, resized, within the budget of SaveJPEGToMemory.
  std::string SaveJPEGToMemoryResampled(const std::filesystem::path& ImageToSave,
                                        std::int32_t JPEGQuality = defaultQuality, std::int32_t FixWidth = 0,
                                        std::int32_t FixHeight = 0);

  /// JPEG file to JPEG file, resized. The two may be the same file. (Hosts see an empty variant as the
  /// result.)
  void SaveJPEGResampled(const std::filesystem::path& ImageToSave, const std::filesystem::path& TargetFile,
                         std::int32_t JPEGQuality = defaultQuality, std::int32_t FixWidth = 0,
                         std::int32_t FixHeight = 0);
};

}  // namespace veltrano

#endif
