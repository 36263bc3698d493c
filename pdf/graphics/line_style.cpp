#include "pdf/graphics/line_style.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "base/numbers/numbers.h"

namespace veltrano {

std::optional<std::string> dashOperator(std::int32_t style, double scaleFactor) {
  // By PDFStyleLgn: lengths in user units of which whole points are kept.
  static const auto& patterns =
      *new std::array<std::vector<int>, 4>{{{}, {16, 8}, {8, 7, 2, 7}, {8, 4, 2, 4, 2, 4}}};
  if (style < 0 || static_cast<std::size_t>(style) >= patterns.size()) {
    return std::nullopt;
  }
  std::string op = "[";
  for (const int length : patterns[static_cast<std::size_t>(style)]) {
    op += integerText(static_cast<std::int64_t>(std::floor(length * scaleFactor))).view();
    op += ' ';  // the one before the bracket is expected, too
  }
  return op + "] 0 d";
}

}  // namespace veltrano
