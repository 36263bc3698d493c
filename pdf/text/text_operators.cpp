#include "pdf/text/text_operators.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "pdf/fonts/font_metrics.h"
#include "pdf/graphics/content_line.h"

namespace veltrano {

namespace {

bool isSpecial(char c) {
  return c == '\\' || c == '(' || c == ')';
}

}  // namespace

void appendEscapedText(ContentText& target, std::string_view text) {
  while (!text.empty()) {
    const auto plain =
        static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isSpecial) - text.begin());
    target.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (!text.empty()) {
      target.append(text.front() == '\\' ? "\\\\\\\\" : text.front() == '(' ? "\\(" : "\\)");
      text.remove_prefix(1);
    }
  }
}

TextDirection TextDirection::fromDegrees(double degrees) {
  const double angle = std::remainder(degrees, 360);
  if (std::remainder(angle, 90) == 0) {
    constexpr TextDirection quarters[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    return quarters[(static_cast<int>(angle / 90) + 4) % 4];
  }
  const double radians = angle * std::numbers::pi / 180;
  return {std::cos(radians), std::sin(radians)};
}

void appendUnderline(ContentText& target, const FontMetrics& metrics, int size, double x, double y,
                     double width, TextDirection direction) {
  if (!(width > 0)) {
    return;
  }
  const double thickness = metrics.underlineThickness * size / 1000;
  const double bottom = metrics.underlinePosition * size / 1000 - thickness / 2;
  ContentLine line(target);
  if (direction.sine == 0 && direction.cosine == 1) {
    line.point(x, y + bottom).text(" ").point(width, thickness).text(" re f").end();
    return;
  }
  // A turned text is underlined in its own, turned coordinates.
  line.text("q ").direction(direction.cosine, direction.sine).point(x, y).text(" cm 0.00 ").number(bottom);
  line.text(" ").point(width, thickness).text(" re f Q").end();
}

}  // namespace veltrano
