#ifndef VELTRANO_IMAGING_JPEG_WRITER_H
#define VELTRANO_IMAGING_JPEG_WRITER_H

// Encodes pixels as JPEG. Internal to imaging/.

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/byte_chunks.h"
#include "imaging/intel_jpeg_library.h"
#include "imaging/pixel_surface.h"

namespace veltrano::mIntelJPEGLibrary {

struct JpegOutcome {
  CoderResult result = CoderResult::internalError;
  bool started = false;    ///< the coder was initialised; the failure, if any, came later
  std::size_t length = 0;  ///< bytes written, if result is ok
};

/// Into a fixed buffer, of which every byte may be used. Too small a buffer fails.
JpegOutcome writeJpeg(const PixelSurface& image, std::int32_t quality, std::span<std::uint8_t> buffer);
JpegOutcome writeJpeg(const PixelSurface& image, std::int32_t quality, ByteChunks& chunks);

}  // namespace veltrano::mIntelJPEGLibrary

#endif
