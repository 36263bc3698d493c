#ifndef VELTRANO_PDF_TEXT_WATERMARK_H
#define VELTRANO_PDF_TEXT_WATERMARK_H

// The look of the text that is drawn diagonally across pages.

#include "pdf/document/page_geometry.h"
#include "veltrano/value.h"

namespace veltrano::watermark {

constexpr std::int16_t fontSize = 50;
constexpr double rotation = 45;  ///< degrees

/// Pink.
Value color();
/// Where a watermark of `width` starts on a page; both in points, y from the top.
Point place(double width, const PageFormat& page);

}  // namespace veltrano::watermark

#endif
