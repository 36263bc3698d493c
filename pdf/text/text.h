#ifndef VELTRANO_PDF_TEXT_TEXT_H
#define VELTRANO_PDF_TEXT_TEXT_H

// Single lines of text as content stream operators.

#include <string_view>

#include "pdf/document/content_stream.h"
#include "pdf/document/page_geometry.h"
#include "pdf/fonts/font.h"

namespace veltrano {

/// Draws a line of text, between comments. Its baseline starts at `at` (points) and is turned about that by
/// `rotation` degrees counter-clockwise. `colorOp` may be empty: then no colour is written. Returns the
/// text's width in points.
double drawText(ContentStream& content, std::string_view text, Point at, const Font& font,
                std::string_view colorOp, double rotation);

// What the lines of cells have in common with it.

/// The direction of a text, as cosine and sine of its angle against the x axis.
struct TextDirection {
  double cosine = 1;
  double sine = 0;
  /// From degrees, counter-clockwise. Whole quarter turns come out exact.
  static TextDirection fromDegrees(double degrees);
};

/// Font, literal string and "ET": what follows the position of a text. In the string each backslash becomes
/// four, kept because hosts rely on it; parentheses get one.
void writeTextOperators(ContentWriter& out, std::string_view text, const Font& font);

/// The bar under a text of `width` that starts at `at`, all in points: centred on the font's own underline
/// position and as thick as the font says. None for a text without a width.
void writeUnderline(ContentWriter& out, const Font& font, Point at, double width,
                    TextDirection direction = {});

}  // namespace veltrano

#endif
