#include <algorithm>
#include <cmath>

#include "base/numbers/numbers.h"
#include "pdf/graphics/content_line.h"
#include "pdf/text/line_breaking.h"
#include "pdf/text/text_operators.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

/// A cell while it is drawn; lengths in points, `top` from the bottom of the page.
struct VeltranoPDF::CellFrame {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
  double lineWidth = 0;
  double leading = 0;   ///< from one line of text to the next
  double firstTop = 0;  ///< from the cell's top down to the first line
  const FontMetrics& metrics;

  /// Puts the lines in the middle of the cell, 1.2 sizes apart, closer when the cell would otherwise be too
  /// low for them, but never less than one size; more of them than it has room for begin at its top.
  void stack(std::size_t lines, int fontSize) {
    const double size = std::abs(static_cast<double>(fontSize));
    const auto count = static_cast<double>(lines);
    leading = std::clamp(height / count, size, size * 1.2);
    firstTop = std::max(0.0, (height - leading * count) / 2);
  }
  /// From the cell's top down to a line of text.
  [[nodiscard]] double lineTop(std::size_t index) const {
    return firstTop + leading * static_cast<double>(index);
  }
  /// From the cell's top down to the baseline of a line: it stands in the middle of its strip, where three
  /// tenths of the size below it leave about the same room for capitals and for descenders.
  [[nodiscard]] double baseline(std::size_t index, int fontSize) const {
    return lineTop(index) + leading / 2 + descent * fontSize;
  }
  /// From the cell's top down to where no letter of a line reaches. Text of a negative size stands on its
  /// head.
  [[nodiscard]] double lineBottom(std::size_t index, int fontSize) const {
    return baseline(index, fontSize) + (fontSize < 0 ? -1.0 * fontSize : descent * fontSize);
  }
  /// No descender of the standard fonts is longer, in font sizes.
  static constexpr double descent = 0.3;
};

namespace {

/// "###0.00" read back: by the decimal digits, so that 7.495 gives 7.5 as it does on the page.
double hundredths(double value) {
  return parseNumber(formatPdfNumber(value, 2)).value_or(value);
}

}  // namespace

// The box is drawn for each line of text. The first line draws all of it. A later line, which has no border
// any more, fills a part that the first has filled already: below everything the line before it reaches down
// to, and well inside the edges, since the border there may be wider than the current line width.
void VeltranoPDF::appendCellBox(const CellFrame& frame, std::size_t index) {
  const bool border = graphics_.border.all;
  if (!border && !graphics_.fillFlag) {
    return;
  }
  const int fontSize = fonts_.fontSize;
  const double inset = index == 0 ? 0 : frame.width / 4;
  const double above = index == 0 ? 0 : frame.lineBottom(index - 1, fontSize);
  const double height = (frame.height - above) * (index == 0 ? 1 : 0.5);
  if (index > 0 && !(height > 0)) {
    return;
  }
  const std::string_view paint = !graphics_.fillFlag ? "S" : border ? "B" : "f";
  // The line ends in CR CR LF, as hosts know it.
  ContentLine(assembly_.pageContent)
      .point(frame.left + inset, frame.top - above - height)
      .text(" ")
      .point(frame.width - 2 * inset, height)
      .text(" re ")
      .text(paint)
      .text("\r")
      .end();
}

// Where two edges meet, both go on by half a line width, so that the corner is square and closed.
void VeltranoPDF::appendCellEdges(const CellFrame& frame) {
  const Border& border = graphics_.border;
  const double half = frame.lineWidth / 2;
  const double right = frame.left + frame.width;
  const double bottom = frame.top - frame.height;
  const auto meet = [half](bool other) { return other ? half : 0; };
  const auto stroke = [&](double x1, double y1, double x2, double y2) {
    ContentLine(assembly_.pageContent)
        .number(frame.lineWidth)
        .text(" w ")
        .point(x1, y1)
        .text(" m ")
        .point(x2, y2)
        .text(" l S")
        .end();
  };
  const double highest = frame.top + meet(border.top);
  const double lowest = bottom - meet(border.bottom);
  const double leftmost = frame.left - meet(border.left);
  const double rightmost = right + meet(border.right);
  if (border.left) {
    stroke(frame.left, highest, frame.left, lowest);
  }
  if (border.top) {
    stroke(leftmost, frame.top, rightmost, frame.top);
  }
  if (border.right) {
    stroke(right, highest, right, lowest);
  }
  if (border.bottom) {
    stroke(leftmost, bottom, rightmost, bottom);
  }
}

// Whole points, and the cell margin counts as points here whatever the unit; twice at the left: hosts know
// the places that come out. An offset beyond 16 bits is no offset.
double VeltranoPDF::cellTextOffset(const CellFrame& frame, double textWidth) const {
  std::optional<std::int16_t> offset;
  switch (graphics_.alignment) {
    case Alignment::right:
      offset = roundToInt16(hundredths(frame.width - geometry_.cellMargin) - textWidth);
      break;
    case Alignment::center:
      if (const auto whole = roundToInt16(textWidth)) {
        offset = roundToInt16((frame.width - *whole) / 2);
      }
      break;
    default:
      // Justified text begins where left-aligned text does.
      offset = roundToInt16(2.0 * geometry_.cellMargin);
  }
  return offset.value_or(0);
}

void VeltranoPDF::appendCellLine(const CellFrame& frame, const TextLine& line, std::size_t index) {
  ContentText& content = assembly_.pageContent;
  if (!graphics_.fillColorOp.empty()) {
    appendLine(content, graphics_.fillColorOp);
  }
  appendCellBox(frame, index);
  appendCellEdges(frame);
  graphics_.border = {};
  if (graphics_.alignment == Alignment::unset) {
    graphics_.alignment = Alignment::left;
  }

  const std::string_view counted = line.text.substr(0, line.measured);
  double textWidth = frame.metrics.width(counted, fonts_.fontSize);
  const double offset = cellTextOffset(frame, textWidth);
  if (graphics_.alignment == Alignment::justify) {
    // Every line but the last of a paragraph reaches the place where right-aligned text ends.
    const double wanted = frame.width - geometry_.cellMargin - offset;
    const double space = line.endsParagraph ? 0 : justifyingSpace(counted, textWidth, wanted);
    ContentLine(content).number(space).text(" Tw").end();
    textWidth += space * static_cast<double>(std::count(counted.begin(), counted.end(), ' '));
  }

  const double baseline = frame.top - frame.baseline(index, fonts_.fontSize);
  appendColorStart();
  appendLine(content, "BT");
  ContentLine(content).point(frame.left + offset, baseline).text(" Td").end();
  appendTextOperators(line.text);
  if (fonts_.underlineFlag) {
    appendUnderline(content, frame.metrics, fonts_.fontSize, frame.left + offset, baseline, textWidth);
  }
  appendColorEnd();
}

std::vector<TextLine> VeltranoPDF::breakCellText(const CellFrame& frame, std::string_view text) const {
  const double available = frame.width - 2.0 * geometry_.cellMargin;
  return breakText(text, {frame.metrics.widths, fonts_.fontSize / 1000.0, available});
}

void VeltranoPDF::PDFCell(std::string_view text, double x, double y, double width, double height,
                          const Value& link) {
  if (fonts_.fontSize == 0) {
    fonts_.fontSize = FontState::usualSize;
  }
  const double k = geometry_.scaleFactor;
  CellFrame frame{.left = geometry_.xPoints(x),
                  .top = geometry_.yPoints(y),
                  .width = width * k,
                  .height = height * k,
                  .lineWidth = graphics_.lineWidth * k,
                  .metrics = *fonts_.metrics};
  const std::vector<TextLine> textLines = breakCellText(frame, text);
  frame.stack(textLines.size(), fonts_.fontSize);

  // A cell that leads somewhere shows it, as a linked text does.
  const auto* target = link.as<std::string>();
  fonts_.underlineFlag = fonts_.underlineFlag || (target != nullptr && !target->empty());
  appendLine(assembly_.pageContent, "%DEBUT_CELL/%");
  for (std::size_t i = 0; i < textLines.size(); ++i) {
    appendCellLine(frame, textLines[i], i);
  }
  if (graphics_.alignment == Alignment::justify) {
    appendLine(assembly_.pageContent, "0 Tw");
  }
  appendLine(assembly_.pageContent, "%FIN_CELL/%");
  fonts_.underlineFlag = false;

  placeLink(link, {LinkKind::cell, x, y, width, height}, x, y);
  // As after a rectangle: at the lower left corner.
  moveTo(x, y + height);
}

}  // namespace veltrano
