#ifndef VELTRANO_PDF_TEXT_CELL_H
#define VELTRANO_PDF_TEXT_CELL_H

// Cells: text in a box of a border, a fill and an alignment, broken to its width.

#include <string_view>

#include "pdf/document/content_stream.h"
#include "pdf/document/page_geometry.h"
#include "pdf/fonts/font.h"
#include "pdf/graphics/state.h"

namespace veltrano {

struct CellStyle {
  Alignment alignment = Alignment::left;
  Border border;
  bool filled = false;
  double lineWidth = 0;          ///< of the edges, points
  int margin = 0;                ///< points
  std::string_view textColorOp;  ///< empty: no colour is written
  std::string_view fillColorOp;
};

/// Draws a cell between its comments. An underlined font underlines every line of it.
void drawCell(ContentStream& content, std::string_view text, const Area& frame, const CellStyle& style,
              const Font& font);

/// The value as "###0.00" shows it: rounded by its decimal digits, so that 7.495 gives 7.5.
double hundredths(double value);

}  // namespace veltrano

#endif
