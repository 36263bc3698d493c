#ifndef VELTRANO_PDF_GRAPHICS_STATE_H
#define VELTRANO_PDF_GRAPHICS_STATE_H

// What shapes, texts and cells copy into the content stream when they are drawn: colours, line, fill,
// alignment, border.

#include <string>

#include "pdf/graphics/border.h"

namespace veltrano {

/// How a closed shape is painted; in the order of PDFDrawMd.
enum class DrawMode {
  outline,      ///< no explicit mode: the line only
  fill,         ///< "D"
  fillAndLine,  ///< "DB"
};

/// In the order of PDFAlignValue.
enum class Alignment {
  center,
  left,
  right,
  justify,
};

struct GraphicsState {
  /// Ready operators, as "1.000 0.000 0.000 rg".
  std::string textColorOp = "0 g";
  std::string lineColorOp = "0 G";
  std::string fillColorOp = "0 g";
  double lineWidth = 0.567;  ///< user units
  std::string lineDashOp = "[] 0 d";
  DrawMode drawMode = DrawMode::outline;
  Alignment alignment = Alignment::left;
  Border border;  ///< of the next cell, which uses it up
  bool fillCells = false;
  double textRotation = 0;  ///< degrees, counter-clockwise
};

}  // namespace veltrano

#endif
