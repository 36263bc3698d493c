#ifndef VELTRANO_PDF_TEXT_LINE_BREAKING_H
#define VELTRANO_PDF_TEXT_LINE_BREAKING_H

// How the text of a cell becomes lines.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace veltrano {

/// One line of a text, as a part of that text. Between two lines of one paragraph lies the blank at which it
/// was broken.
struct TextLine {
  std::string_view text;
  /// Characters that count for the alignment: blanks that hang over the edge at the end do not.
  std::size_t measured = 0;
  bool endsParagraph = true;
};

/// How wide a line may get and what its characters measure.
struct LineMeasure {
  const std::array<std::int32_t, 256>& widths;  ///< thousandths of the font size, by character code
  double scale;                                 ///< points per such thousandth
  double available;                             ///< points

  /// Whether a line of `width` thousandths fits.
  [[nodiscard]] bool fits(double width) const;
};

/// The lines of `text`, whose paragraphs end at CR LF; an empty text is one empty line. A line that does not
/// fit is broken at its last blank that does; further blanks before that one hang over the edge. Words are
/// never broken: one that is wider than a line stands alone and runs over. Every character but the blanks at
/// the breaks is in exactly one line.
///
/// Where nothing could fit (an `available` of zero, negative or not a number) a paragraph stays one line.
std::vector<TextLine> breakText(std::string_view text, const LineMeasure& measure);

/// By how many points each blank of a line must be widened so that `width` becomes `wanted`. 0 without a
/// blank, without room, or when a width is not a number.
double justifyingSpace(std::string_view line, double width, double wanted);

}  // namespace veltrano

#endif
