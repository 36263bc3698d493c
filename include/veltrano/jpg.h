#ifndef VELTRANO_IMAGING_VELTRANO_JPG_H
#define VELTRANO_IMAGING_VELTRANO_JPG_H

// Saves pictures as JPEG files or bytes, optionally resized, and draws JPEG bytes onto a device context.
//
// JPEG bytes are std::string, one char a byte. To automation hosts they are strings: the server turns each
// byte into one character by the system's ANSI conversion, which keeps all 256 byte values in a single-byte
// code page.
//
// Quality is 1 to 100, clamped. FixWidth and FixHeight resize only when both are given (not 0), without
// regard to the aspect ratio. A step that fails is passed over: no member throws, the result says all there
// is to know.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "imaging/dib_section.h"
#include "imaging/picture.h"

namespace veltrano {

class VeltranoJPG {
 public:
  static constexpr std::int32_t defaultQuality = 50;

  /// Size of the JPEG decoded last by LoadJPEGFromRAM2Picture or SaveJPEGFromRAMToMemoryResampled; hosts may
  /// set them.
  std::int32_t JPEGWidth = 0;
  std::int32_t JPEGHeight = 0;

  void SaveJPEG(const Picture& ImageToSave, const std::filesystem::path& xFilename,
                std::int32_t JPEGQuality = defaultQuality, std::int32_t FixWidth = 0,
                std::int32_t FixHeight = 0);

  /// Keeps the picture's own size: hosts rely on FixWidth and FixHeight being ignored here. An image that
  /// needs more than a quarter of a byte a pixel gives a string of width * height / 4 + 1 characters that is
  /// no JPEG.
  std::string SaveJPEGToMemory(const Picture& ImageToSave, std::int32_t JPEGQuality = defaultQuality,
                               std::int32_t FixWidth = 0, std::int32_t FixHeight = 0);

  /// Does nothing and gives no picture, whatever it is handed.
  Picture LoadJPEGFromRAMToPicture(std::uintptr_t ArrayPointer, std::int32_t ArraySize, std::int32_t X,
                                   std::int32_t y);

  /// Draws a JPEG at (0, 0) of `Dest_hDC`: in its own size when X and y are both 0, else into X by y pixels.
  /// False even when it was drawn: hosts know that the result says nothing.
  bool LoadJPEGFromRAM2Picture(GraphicsHandle Dest_hDC, std::uintptr_t ArrayPointer, std::int32_t ArraySize,
                               std::int32_t X, std::int32_t y);

  /// Draws a JPEG at (x1, Y1), into X by y pixels or, when both are 0, in its own size. Leaves JPEGWidth and
  /// JPEGHeight alone. False, as above.
  bool LoadJPEGFromRAM2PictureXY(GraphicsHandle Dest_hDC, std::uintptr_t ArrayPointer, std::int32_t ArraySize,
                                 std::int32_t x1, std::int32_t Y1, std::int32_t X, std::int32_t y);

  /// JPEG bytes to JPEG bytes, resized. The budget of SaveJPEGToMemory holds. One character for bytes that
  /// are damaged or no JPEG.
  std::string SaveJPEGFromRAMToMemoryResampled(std::string_view ImageToSave,
                                               std::int32_t JPEGQuality = defaultQuality,
                                               std::int32_t FixWidth = 0, std::int32_t FixHeight = 0);

  /// JPEG file to JPEG bytes, resized. The budget of SaveJPEGToMemory holds.
  std::string SaveJPEGToMemoryResampled(const std::filesystem::path& ImageToSave,
                                        std::int32_t JPEGQuality = defaultQuality, std::int32_t FixWidth = 0,
                                        std::int32_t FixHeight = 0);

  /// JPEG file to JPEG file, resized. The two may be the same file. (Hosts see an empty variant as its
  /// result.)
  void SaveJPEGResampled(const std::filesystem::path& ImageToSave, const std::filesystem::path& TargetFile,
                         std::int32_t JPEGQuality = defaultQuality, std::int32_t FixWidth = 0,
                         std::int32_t FixHeight = 0);
};

}  // namespace veltrano

#endif
