#ifndef VELTRANO_PDF_TEXT_TEXT_OPERATORS_H
#define VELTRANO_PDF_TEXT_TEXT_OPERATORS_H

// What single texts and the lines of cells have in common.

#include <string_view>

namespace veltrano {

class ContentText;
struct FontMetrics;

/// Appends `text` as the inside of a PDF string. Each backslash becomes four, as hosts rely on; parentheses
/// get one.
void appendEscapedText(ContentText& target, std::string_view text);

/// The direction of a text, as cosine and sine of its angle against the x axis.
struct TextDirection {
  double cosine = 1;
  double sine = 0;
  /// From degrees, counter-clockwise. Whole quarter turns come out exact.
  static TextDirection fromDegrees(double degrees);
};

/// Appends the bar under a text that begins at (x, y) on the page, all in points: centred on the font's own
/// underline position and as thick as the font says. Nothing for a text without a width.
void appendUnderline(ContentText& target, const FontMetrics& metrics, int size, double x, double y,
                     double width, TextDirection direction = {});

}  // namespace veltrano

#endif
