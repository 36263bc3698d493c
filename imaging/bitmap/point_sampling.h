#ifndef VELTRANO_IMAGING_BITMAP_POINT_SAMPLING_H
#define VELTRANO_IMAGING_BITMAP_POINT_SAMPLING_H

// Resizing by taking single pixels, with the arithmetic that hosts know: scales of (size - 1) / new size in
// single precision, whole-number parts, no interpolation.

#include "imaging/bitmap/pixel_surface.h"

namespace veltrano {

/// Fills `target` from `source`, both bottom-up with row 0 at the bottom. All sizes are positive; no overlap.
void samplePoints(const PixelSurface& target, const PixelSurface& source);

}  // namespace veltrano

#endif
