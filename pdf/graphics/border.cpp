#include "pdf/graphics/border.h"

#include "base/numbers/numbers.h"

namespace veltrano {

Border Border::fromDigits(std::int32_t digits) {
  Border border;
  if (digits == 0 || digits == 1) {  // the usual ones, set before each cell of a table
    border.all = digits == 1;
    return border;
  }
  const NumberText text = integerText(digits);
  const auto has = [&](char digit) { return text.view().find(digit) != std::string_view::npos; };
  border.left = has('4');
  border.right = has('5');
  border.top = has('2');
  border.bottom = has('3');
  return border;
}

void strokeEdges(ContentWriter& out, const Border& border, const Area& box, double lineWidth) {
  const double half = lineWidth / 2;
  const double right = box.left + box.width;
  const double bottom = box.top - box.height;
  const double highest = box.top + (border.top ? half : 0);
  const double lowest = bottom - (border.bottom ? half : 0);
  const double leftmost = box.left - (border.left ? half : 0);
  const double rightmost = right + (border.right ? half : 0);
  const auto stroke = [&](double x1, double y1, double x2, double y2) {
    out.number(lineWidth).text(" w ").point(x1, y1).text(" m ").point(x2, y2).text(" l S").end();
  };
  if (border.left) {
    stroke(box.left, highest, box.left, lowest);
  }
  if (border.top) {
    stroke(leftmost, box.top, rightmost, box.top);
  }
  if (border.right) {
    stroke(right, highest, right, lowest);
  }
  if (border.bottom) {
    stroke(leftmost, bottom, rightmost, bottom);
  }
}

}  // namespace veltrano
