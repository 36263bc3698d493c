#ifndef VELTRANO_IMAGING_PNG_WRITER_H
#define VELTRANO_IMAGING_PNG_WRITER_H

// Encodes pixels as PNG. Internal to imaging/.

#include "imaging/byte_chunks.h"
#include "imaging/pixel_surface.h"

namespace veltrano {

/// False when libpng gave up (memory, sizes it refuses); `chunks` then holds no complete PNG.
bool writePng(const PixelSurface& image, ByteChunks& chunks);

}  // namespace veltrano

#endif
