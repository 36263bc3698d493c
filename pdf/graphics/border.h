#ifndef VELTRANO_PDF_GRAPHICS_BORDER_H
#define VELTRANO_PDF_GRAPHICS_BORDER_H

// The border of a cell.

#include <cstdint>

#include "pdf/document/content_stream.h"
#include "pdf/document/page_geometry.h"

namespace veltrano {

/// Edges of the next cell. `all` is one closed rectangle, drawn with the cell's box; the four others are
/// separate lines. None set: no border.
struct Border {
  bool all = false;
  bool left = false;
  bool right = false;
  bool top = false;
  bool bottom = false;

  /// One PDFBorderValue, or several edges at once by the digits of the number. "All" within a combination
  /// means nothing.
  static Border fromDigits(std::int32_t digits);
};

/// Strokes the separate edges, each as a line of its own. Edges that meet extend by half the line width, so
/// that corners close.
void strokeEdges(ContentWriter& out, const Border& border, const Area& box, double lineWidth);

}  // namespace veltrano

#endif
