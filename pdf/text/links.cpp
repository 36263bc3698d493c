#include "pdf/text/links.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "base/trace.h"
#include "pdf/text/text.h"

namespace veltrano {

Area linkedText(Point start, std::string_view text, const Font& font, double rotation) {
  const auto direction = TextDirection::fromDegrees(rotation);
  const double width = font.width(text);
  const double lower = font.metrics->descender * font.size / 1000;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  double left = infinity;
  double right = -infinity;
  double bottom = infinity;
  double top = -infinity;
  for (const double along : {0.0, width}) {
    for (const double up : {lower, lower + font.size}) {
      const double x = start.x + along * direction.cosine - up * direction.sine;
      const double y = start.y + along * direction.sine + up * direction.cosine;
      left = std::min(left, x);
      right = std::max(right, x);
      bottom = std::min(bottom, y);
      top = std::max(top, y);
    }
  }
  return {left, top, right - left, top - bottom};
}

void addLink(std::vector<Link>& links, Link link) {
  constexpr std::size_t most = std::numeric_limits<std::int16_t>::max();
  if (links.size() < most) {
    links.push_back(std::move(link));
  } else {
    trace("The document has more links than it can count; this one replaces the last.");
    links.back() = std::move(link);
  }
}

std::string escapeLinkTarget(std::string_view target) {
  std::string escaped;
  escaped.reserve(target.size());
  for (const char c : target) {
    if (c == '\r' || c == '\n') {
      continue;
    }
    if (c == '\\' || c == '(' || c == ')') {
      escaped.push_back('\\');
    }
    escaped.push_back(c);
  }
  return escaped;
}

}  // namespace veltrano
