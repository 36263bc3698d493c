#include "pdf/text/line_breaking.h"

#include <algorithm>
#include <cmath>

namespace veltrano {

namespace {

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

/// A line ends at the last blank that still fits. A word wider than the line ends at the first blank after it.
LineEnd findLineEnd(std::string_view rest, const LineMeasure& measure) {
  std::size_t lineBreak = std::string_view::npos;
  bool tooWide = false;
  double width = 0;
  const std::size_t searched = std::min(rest.size(), lastBreakPosition);
  for (std::size_t i = 0; i < searched; ++i) {
    width += measure.widths[static_cast<unsigned char>(rest[i])];
    if (rest[i] == ' ') {
      // The last blank of several is the break; those before it hang.
      if (i + 1 < rest.size() && rest[i + 1] != ' ') {
        lineBreak = i;
      }
    } else {
      tooWide = tooWide || !measure.fits(width);
    }
    if (tooWide && lineBreak != std::string_view::npos) {
      return {lineBreak, lineBreak + 1};
    }
  }
  return {rest.size(), rest.size()};
}

/// Thousandths of the font size.
double widthOf(std::string_view text, const LineMeasure& measure) {
  double width = 0;
  for (const char c : text) {
    width += measure.widths[static_cast<unsigned char>(c)];
  }
  return width;
}

/// Length without the blanks at the end.
std::size_t visibleLength(std::string_view line) {
  return line.find_last_not_of(' ') + 1;
}

void breakParagraph(std::string_view paragraph, const LineMeasure& measure, std::vector<TextLine>& lines) {
  // The comparison is false for what is not a number.
  if (!(measure.available > 0) || measure.fits(widthOf(paragraph, measure))) {
    lines.push_back({paragraph, paragraph.size(), true});
    return;
  }
  for (;;) {
    const LineEnd end = findLineEnd(paragraph, measure);
    const std::string_view line = paragraph.substr(0, end.length);
    const bool last = end.next == paragraph.size();
    const bool hangs = !last || !measure.fits(widthOf(line, measure));
    lines.push_back({line, hangs ? visibleLength(line) : line.size(), last});
    if (last) {
      return;
    }
    paragraph.remove_prefix(end.next);
  }
}

}  // namespace

bool LineMeasure::fits(double width) const {
  return width * scale <= available + rounding;
}

std::vector<TextLine> breakText(std::string_view text, const LineMeasure& measure) {
  constexpr std::string_view lineEnd = "\r\n";
  std::vector<TextLine> lines;
  for (;;) {
    const std::size_t end = text.find(lineEnd);
    breakParagraph(text.substr(0, end), measure, lines);
    if (end == std::string_view::npos) {
      return lines;
    }
    text.remove_prefix(end + lineEnd.size());
  }
}

double justifyingSpace(std::string_view line, double width, double wanted) {
  const auto blanks = std::count(line.begin(), line.end(), ' ');
  const double space = (wanted - width) / static_cast<double>(std::max<std::ptrdiff_t>(blanks, 1));
  return blanks > 0 && space > 0 && std::isfinite(space) ? space : 0;
}

}  // namespace veltrano
