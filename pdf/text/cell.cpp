#include "pdf/text/cell.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "base/numbers/numbers.h"
#include "pdf/text/line_breaking.h"
#include "pdf/text/text.h"

namespace veltrano {

namespace {

/// Draws the lines of one cell.
class CellDrawing {
 public:
  CellDrawing(ContentStream& content, const Area& frame, const CellStyle& style, const Font& font)
      : out_(content), frame_(frame), style_(style), font_(font) {}

  void draw(std::span<const TextLine> lines) {
    stack(lines.size());
    out_.line("%DEBUT_CELL/%");
    for (std::size_t i = 0; i < lines.size(); ++i) {
      drawLine(lines[i], i);
    }
    if (style_.alignment == Alignment::justify) {
      out_.line("0 Tw");
    }
    out_.line("%FIN_CELL/%");
  }

 private:
  /// No descender of the standard fonts is longer, in font sizes.
  static constexpr double descent = 0.3;

  /// Puts the lines in the middle of the cell, 1.2 sizes apart, closer if the cell would otherwise be too low
  /// for them, but never less than one size; more of them than it has room for start at its top.
  void stack(std::size_t lines) {
    const double size = std::abs(static_cast<double>(font_.size));
    const auto count = static_cast<double>(lines);
    leading_ = std::clamp(frame_.height / count, size, size * 1.2);
    firstTop_ = std::max(0.0, (frame_.height - leading_ * count) / 2);
  }
  /// From the cell's top down to the baseline of a line. It stands in the middle of its strip: with three
  /// tenths of the size below it, capitals and descenders leave about the same room.
  [[nodiscard]] double baseline(std::size_t index) const {
    return firstTop_ + leading_ * static_cast<double>(index) + leading_ / 2 + descent * font_.size;
  }
  /// From the cell's top down to where no letter of a line reaches. Text of a negative size stands on its
  /// head.
  [[nodiscard]] double lineBottom(std::size_t index) const {
    return baseline(index) + (font_.size < 0 ? -1.0 : descent) * font_.size;
  }

  // The box is drawn for each line of text. The first line draws all of it. A later line, which has no border
  // any more, fills a part that the first has filled already: below the descenders of the line before it, and
  // well inside the edges, since the border there may be wider than the current line width.
  void drawBox(std::size_t index) {
    const bool border = style_.border.all && index == 0;
    if (!border && !style_.filled) {
      return;
    }
    const double inset = index == 0 ? 0 : frame_.width / 4;
    const double above = index == 0 ? 0 : lineBottom(index - 1);
    const double height = (frame_.height - above) * (index == 0 ? 1 : 0.5);
    if (index > 0 && !(height > 0)) {
      return;
    }
    // The line ends in CR CR LF, kept because hosts rely on it.
    out_.point(frame_.left + inset, frame_.top - above - height)
        .text(" ")
        .point(frame_.width - 2 * inset, height)
        .text(!style_.filled ? " re S\r"
              : border       ? " re B\r"
                             : " re f\r")
        .end();
  }

  // Whole points, and the cell margin counts as points here whatever the unit; twice at the left: hosts rely
  // on the places that come out. An offset beyond 16 bits counts as 0.
  [[nodiscard]] double textOffset(double textWidth) const {
    std::optional<std::int16_t> offset;
    switch (style_.alignment) {
      case Alignment::right:
        offset = roundToInt16(hundredths(frame_.width - style_.margin) - textWidth);
        break;
      case Alignment::center:
        if (const auto whole = roundToInt16(textWidth)) {
          offset = roundToInt16((frame_.width - *whole) / 2);
        }
        break;
      default:
        // Justified text starts where left-aligned text does.
        offset = roundToInt16(2.0 * style_.margin);
    }
    return offset.value_or(0);
  }

  /// Widens the blanks of a line; returns its new width.
  double justify(const TextLine& line, double offset) {
    // Every line but the last of a paragraph reaches the place where right-aligned text ends.
    const double wanted = frame_.width - style_.margin - offset;
    const double space = line.endsParagraph ? 0 : justifyingSpace(line.counted, line.width, wanted);
    out_.number(space).text(" Tw").end();
    return line.width +
           space * static_cast<double>(std::count(line.counted.begin(), line.counted.end(), ' '));
  }

  void drawLine(const TextLine& line, std::size_t index) {
    if (!style_.fillColorOp.empty()) {
      out_.line(style_.fillColorOp);
    }
    drawBox(index);
    if (index == 0) {
      strokeEdges(out_, style_.border, frame_, style_.lineWidth);
    }
    const double offset = textOffset(line.width);
    const double width = style_.alignment == Alignment::justify ? justify(line, offset) : line.width;
    const Point start{frame_.left + offset, frame_.top - baseline(index)};
    if (!style_.textColorOp.empty()) {
      out_.text("q ").text(style_.textColorOp).text(" ").end();
    }
    out_.line("BT");
    out_.point(start.x, start.y).text(" Td").end();
    writeTextOperators(out_, line.text, font_);
    if (font_.underlined) {
      writeUnderline(out_, font_, start, width);
    }
    if (!style_.textColorOp.empty()) {
      out_.line("Q");
    }
  }

  ContentWriter out_;
  const Area& frame_;
  const CellStyle& style_;
  const Font& font_;
  double leading_ = 0;   ///< from one line of text to the next
  double firstTop_ = 0;  ///< from the cell's top down to the first line
};

}  // namespace

void drawCell(ContentStream& content, std::string_view text, const Area& frame, const CellStyle& style,
              const Font& font) {
  const LineMeasure measure{*font.metrics, font.size, frame.width - 2.0 * style.margin};
  CellDrawing drawing(content, frame, style, font);
  if (const auto line = asOneLine(text, measure)) {
    drawing.draw({&*line, 1});
  } else {
    drawing.draw(breakText(text, measure));
  }
}

double hundredths(double value) {
  // Away from a tie the nearest hundredth is that of the decimal digits: scaling errs by far less than the
  // margin. Its division is rounded correctly, and so is the reading of a text: both give the double nearest
  // to the same fraction.
  constexpr double largestScaled = 1e9;
  constexpr double tieMargin = 1e-4;
  const double scaled = std::fabs(value) * 100;
  if (scaled < largestScaled) {
    const auto whole = static_cast<double>(static_cast<std::int32_t>(scaled + 0.5));  // NOLINT: any rounding
    if (std::fabs(scaled - whole) < 0.5 - tieMargin) {
      return std::copysign(whole / 100, value);
    }
  }
  return parseNumber(formatPdfNumber(value, 2)).value_or(value);
}

}  // namespace veltrano
