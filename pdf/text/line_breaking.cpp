#include "pdf/text/line_breaking.h"

#include <algorithm>
#include <cmath>

namespace veltrano {

namespace {

constexpr std::string_view paragraphEnd = "\r\n";

/// A break is searched only within this many characters; without one there, the rest stays one line.
constexpr std::size_t lastBreakPosition = 65534;

/// Points. A host that makes a cell exactly as wide as its text gets one line, whatever the conversion to
/// its units has rounded; real widths differ by far more.
constexpr double rounding = 1e-6;

/// Where a line ends and where the next one starts.
struct LineEnd {
  std::size_t length;
  std::size_t next;
};

/// A line ends at the last blank that still fits, a word wider than the line at the first blank after it.
LineEnd findLineEnd(std::string_view rest, const LineMeasure& measure) {
  std::size_t lineBreak = std::string_view::npos;
  bool tooWide = false;
  double width = 0;
  const double pointsPerUnit = measure.size / 1000.0;
  const std::size_t searched = std::min(rest.size(), lastBreakPosition);
  for (std::size_t i = 0; i < searched; ++i) {
    width += measure.metrics.widths[static_cast<unsigned char>(rest[i])];
    if (rest[i] == ' ') {
      // The last blank of several is the break; those before it hang.
      if (i + 1 < rest.size() && rest[i + 1] != ' ') {
        lineBreak = i;
      }
    } else {
      tooWide = tooWide || !(width * pointsPerUnit <= measure.available + rounding);
    }
    if (tooWide && lineBreak != std::string_view::npos) {
      return {lineBreak, lineBreak + 1};
    }
  }
  return {rest.size(), rest.size()};
}

/// The paragraph as one line, if it fits in one.
std::optional<TextLine> paragraphAsOneLine(std::string_view paragraph, const LineMeasure& measure) {
  const double width = measure.metrics.width(paragraph, measure.size);
  // The comparison is false for what is not a number.
  const bool fits = !(measure.available > 0) || width <= measure.available + rounding;
  return fits ? std::optional(TextLine{paragraph, paragraph, width, true}) : std::nullopt;
}

void breakParagraph(std::string_view paragraph, const LineMeasure& measure, std::vector<TextLine>& lines) {
  if (const auto whole = paragraphAsOneLine(paragraph, measure)) {
    lines.push_back(*whole);
    return;
  }
  for (bool last = false; !last;) {
    const LineEnd end = findLineEnd(paragraph, measure);
    last = end.next == paragraph.size();
    const std::string_view text = paragraph.substr(0, end.length);
    // Blanks at the end of a paragraph count as long as they fit; those before a break hang over the edge.
    const auto fitting = last ? paragraphAsOneLine(text, measure) : std::nullopt;
    const std::string_view counted = text.substr(0, text.find_last_not_of(' ') + 1);
    lines.push_back(
        fitting.value_or(TextLine{text, counted, measure.metrics.width(counted, measure.size), last}));
    paragraph.remove_prefix(end.next);
  }
}

}  // namespace

std::optional<TextLine> asOneLine(std::string_view text, const LineMeasure& measure) {
  return text.find(paragraphEnd) == std::string_view::npos ? paragraphAsOneLine(text, measure) : std::nullopt;
}

std::vector<TextLine> breakText(std::string_view text, const LineMeasure& measure) {
  std::vector<TextLine> lines;
  for (;;) {
    const std::size_t end = text.find(paragraphEnd);
    breakParagraph(text.substr(0, end), measure, lines);
    if (end == std::string_view::npos) {
      return lines;
    }
    text.remove_prefix(end + paragraphEnd.size());
  }
}

double justifyingSpace(std::string_view line, double width, double wanted) {
  const auto blanks = std::count(line.begin(), line.end(), ' ');
  const double space = (wanted - width) / static_cast<double>(std::max<std::ptrdiff_t>(blanks, 1));
  return blanks > 0 && space > 0 && std::isfinite(space) ? space : 0;
}

}  // namespace veltrano
