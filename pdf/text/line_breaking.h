#ifndef VELTRANO_PDF_TEXT_LINE_BREAKING_H
#define VELTRANO_PDF_TEXT_LINE_BREAKING_H

// How the text of a cell becomes lines.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace veltrano {

/// One line of a text, as a part of that text. Two lines of one paragraph lie side by side or one blank, the
/// one at which the text was broken, lies between them.
struct TextLine {
  std::string_view text;
  /// Characters that count for the alignment: blanks that hang over the edge behind them do not.
  std::size_t measured = 0;
  bool endsParagraph = true;
};

/// How wide a line may get and what its characters measure.
struct LineMeasure {
  const std::array<std::int32_t, 256>& widths;  ///< thousandths of the font size, by character code
  double scale;                                 ///< points per such thousandth
  double available;                             ///< points
};

/// The lines of `text`, whose paragraphs end at CR LF; an empty text is one empty line. A line is broken at
/// the last blank that fits, blanks before it hang over the edge. A word that is longer than a whole line is
/// broken where it must, and kept whole when not even one of its characters fits. Nothing is lost and nothing
/// comes twice.
///
/// Where nothing could fit (an `available` of zero, negative or not a number) a paragraph stays one line.
std::vector<TextLine> breakText(std::string_view text, const LineMeasure& measure);

/// What each of the blanks of a line must be widened by, in points, so that `width` becomes `wanted`. 0 when
/// there is no blank, no room, or no number.
double justifyingSpace(std::string_view line, double width, double wanted);

}  // namespace veltrano

#endif
