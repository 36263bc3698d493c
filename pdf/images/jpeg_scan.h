#ifndef VELTRANO_PDF_IMAGES_JPEG_SCAN_H
#define VELTRANO_PDF_IMAGES_JPEG_SCAN_H

// The marker scan of a JPEG file: as much as embedding it needs, without decoding anything.
//
// Positions count from 1, as the messages and the rules of the scan do.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

/// What the scan learns. A file without any frame header passes with a size of 0.
struct JpegHeader {
  int width = 0;   ///< pixels
  int height = 0;  ///< pixels
  std::string colourSpace;
  int bitsPerComponent = 8;
};

struct JpegScan {
  /// Empty if the file was refused.
  std::optional<JpegHeader> header;
  /// Why it was refused, as hosts are told.
  std::string_view message;
};

/// Scans the bytes of a whole file. `yield` gives the host's messages a turn, after each segment and after
/// each 4096 fill bytes; it may be empty.
JpegScan scanJpeg(std::string_view bytes, const std::function<void()>& yield);

}  // namespace veltrano

#endif
