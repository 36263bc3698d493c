#ifndef VELTRANO_PDF_GRAPHICS_GRAPHICS_STATE_H
#define VELTRANO_PDF_GRAPHICS_GRAPHICS_STATE_H

// What shapes, text and cells copy into the page content when they are drawn: colours, line, fill, alignment,
// border.

#include <string>

namespace veltrano {

/// How a closed shape is painted.
enum class DrawMode {
  outline,      ///< no explicit mode: the line only
  fill,         ///< "D"
  fillAndLine,  ///< "DB"
};

enum class Alignment {
  unset,  ///< a cell then takes `left` and leaves it set
  center,
  left,
  right,
  justify,
};

/// Edges of the next cell. `all` is one closed rectangle; the four others are separate lines. None set: no
/// border.
struct Border {
  bool all = false;
  bool left = false;
  bool right = false;
  bool top = false;
  bool bottom = false;
};

struct GraphicsState {
  /// Ready operators, as "1.000 0.000 0.000 rg".
  std::string textColorOp = "0 g";
  std::string lineColorOp = "0 G";
  std::string fillColorOp = "0 g";
  double lineWidth = 0.567;  ///< user units
  std::string lineDashOp = "[] 0 d";
  DrawMode drawMode = DrawMode::outline;
  Alignment alignment = Alignment::unset;
  Border border;
  bool fillFlag = false;  ///< cells are filled
};

}  // namespace veltrano

#endif
