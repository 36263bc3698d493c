#ifndef VELTRANO_PDF_TEXT_LINE_BREAKING_H
#define VELTRANO_PDF_TEXT_LINE_BREAKING_H

// How the text of a cell becomes lines.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "pdf/fonts/metrics.h"

namespace veltrano {

/// One line of a text, as a part of that text. Between two lines of one paragraph lies the blank at which it
/// was broken.
struct TextLine {
  std::string_view text;
  /// What counts for the alignment: the text without the blanks at its end that hang over the edge.
  std::string_view counted;
  double width = 0;  ///< of what counts, points
  bool endsParagraph = true;
};

/// How wide a line may get and what its characters measure.
struct LineMeasure {
  const FontMetrics& metrics;
  std::int16_t size;  ///< points
  double available;   ///< points
};

/// The text as its one line, without the cost of a list. Empty if it is wider or has several paragraphs.
std::optional<TextLine> asOneLine(std::string_view text, const LineMeasure& measure);

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
