#include "pdf/fonts/font_metrics.h"

#include <limits>

namespace veltrano {

std::shared_ptr<const FontMetrics> FontMetrics::none() {
  static const auto nothing = std::make_shared<const FontMetrics>();
  return nothing;
}

std::int32_t FontMetrics::sum(std::string_view text) const {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
  // The widths of real fonts never leave 32 bits in a text of a few thousand characters: no check is needed
  // there.
  constexpr std::size_t shortText = 2000;
  if (text.size() <= shortText) {
    std::int64_t total = 0;
    std::int64_t magnitude = 0;
    for (const char c : text) {
      const std::int32_t width = widths[static_cast<unsigned char>(c)];
      total += width;
      magnitude |= width < 0 ? ~std::int64_t{width} : width;
    }
    if (magnitude < most / static_cast<std::int64_t>(shortText)) {
      return static_cast<std::int32_t>(total);
    }
  }
  std::int64_t total = 0;
  for (const char c : text) {
    const std::int64_t next = total + widths[static_cast<unsigned char>(c)];
    if (next >= least && next <= most) {
      total = next;
    }
  }
  return static_cast<std::int32_t>(total);
}

}  // namespace veltrano
