#ifndef VELTRANO_IMAGING_JPEG_READER_H
#define VELTRANO_IMAGING_JPEG_READER_H

// Decodes JPEG bytes into pixels. Internal to imaging/.

#include <cstdint>
#include <memory>
#include <span>

#include "imaging/bitmap/pixel_surface.h"
#include "imaging/jpeg/intel_jpeg_library.h"

namespace veltrano::mIntelJPEGLibrary {

class JpegReader {
 public:
  /// The bytes are borrowed for as long as the reader lives.
  explicit JpegReader(std::span<const std::uint8_t> bytes);
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;
  ~JpegReader();

  /// Reads up to the image data. The sizes are known afterwards even if the image is unsupported or claims
  /// more pixels than its bytes can describe.
  CoderResult readHeader();
  [[nodiscard]] std::int32_t width() const;
  [[nodiscard]] std::int32_t height() const;

  /// Decodes at 1/scale of the size (1, 2, 4 or 8) into `target`, whose sizes are those of the header divided
  /// by the scale and rounded down. After a failure the target holds the rows that could be decoded. Once,
  /// after readHeader.
  CoderResult readImage(std::int32_t scale, const PixelSurface& target);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace veltrano::mIntelJPEGLibrary

#endif
