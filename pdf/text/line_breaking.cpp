#include "pdf/text/line_breaking.h"

#include <algorithm>
#include <cmath>

namespace veltrano {

namespace {

/// A break is not searched beyond this many characters of a line: what fits up to here stays one line.
constexpr std::size_t lastBreakPosition = 65534;

/// Where a line ends and where the next one begins.
struct LineEnd {
  std::size_t length;
  std::size_t next;
};

/// End of the word that begins at `from`, with the blanks behind it. The last blank is the break; a word that
/// ends the text has none.
LineEnd endOfWord(std::string_view rest, std::size_t from) {
  const std::size_t blank = rest.find(' ', from);
  const std::size_t next = blank == std::string_view::npos ? blank : rest.find_first_not_of(' ', blank);
  return next == std::string_view::npos ? LineEnd{rest.size(), rest.size()} : LineEnd{next - 1, next};
}

LineEnd findLineEnd(std::string_view rest, const LineMeasure& measure) {
  std::size_t lineBreak = std::string_view::npos;
  double width = 0;
  const std::size_t searched = std::min(rest.size(), lastBreakPosition);
  for (std::size_t i = 0; i < searched; ++i) {
    width += measure.widths[static_cast<unsigned char>(rest[i])];
    if (rest[i] == ' ') {
      // The last blank of several is the break; those before it hang.
      if (i + 1 < rest.size() && rest[i + 1] != ' ') {
        lineBreak = i;
      }
      continue;
    }
    if (width * measure.scale <= measure.available) {
      continue;
    }
    if (lineBreak != std::string_view::npos) {
      return {lineBreak, lineBreak + 1};
    }
    return i > 0 ? LineEnd{i, i} : endOfWord(rest, 0);
  }
  return {rest.size(), rest.size()};
}

double widthOf(std::string_view text, const LineMeasure& measure) {
  double width = 0;
  for (const char c : text) {
    width += measure.widths[static_cast<unsigned char>(c)];
  }
  return width * measure.scale;
}

/// Length without the blanks at the end.
std::size_t visibleLength(std::string_view line) {
  return line.find_last_not_of(' ') + 1;
}

void breakParagraph(std::string_view paragraph, const LineMeasure& measure, std::vector<TextLine>& lines) {
  // The comparison is false for what is not a number.
  if (!(measure.available > 0) || widthOf(paragraph, measure) <= measure.available) {
    lines.push_back({paragraph, paragraph.size(), true});
    return;
  }
  for (;;) {
    const LineEnd end = findLineEnd(paragraph, measure);
    const std::string_view line = paragraph.substr(0, end.length);
    const bool last = end.next == paragraph.size();
    const bool hangs = !last || widthOf(line, measure) > measure.available;
    lines.push_back({line, hangs ? visibleLength(line) : line.size(), last});
    if (last) {
      return;
    }
    paragraph.remove_prefix(end.next);
  }
}

}  // namespace

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
