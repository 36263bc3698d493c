#ifndef VELTRANO_IMAGING_JPEG_WRITER_H
#define VELTRANO_IMAGING_JPEG_WRITER_H

// Encodes pixels as JPEG. Internal to imaging/.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "imaging/bitmap/pixel_surface.h"
#include "imaging/jpeg/intel_jpeg_library.h"

namespace veltrano::mIntelJPEGLibrary {

struct JpegOutcome {
  CoderResult result = CoderResult::ok;
  bool started = false;  ///< the coder was initialised; the failure, if any, came later
  /// The JPEG, if the result is ok: in the caller's buffer or in `overflow`.
  std::span<const std::uint8_t> bytes;
  std::unique_ptr<std::uint8_t, decltype(&std::free)> overflow{nullptr, std::free};
};

/// Encodes into `buffer` while it lasts, otherwise into memory of libjpeg; even a JPEG that fills the buffer
/// to its last byte ends up there.
JpegOutcome writeJpeg(const PixelSurface& image, std::int32_t quality, std::span<std::uint8_t> buffer);

}  // namespace veltrano::mIntelJPEGLibrary

#endif
