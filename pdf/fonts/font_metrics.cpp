#include "pdf/fonts/font_metrics.h"

#include <cstddef>
#include <limits>

namespace veltrano {

namespace {

/// So many ordinary widths never leave 32 bits.
constexpr std::size_t longestUnchecked =
    std::numeric_limits<std::int32_t>::max() / FontMetrics::widestOrdinary;

}  // namespace

std::shared_ptr<const FontMetrics> FontMetrics::none() {
  static const auto nothing = std::make_shared<const FontMetrics>();
  return nothing;
}

std::int32_t FontMetrics::sum(std::string_view text) const {
  if (ordinary && text.size() <= longestUnchecked) {
    // Four at a time, since every text of a page is measured and most of its time is spent here.
    std::array<std::int32_t, 4> parts{};
    const auto* const codes = reinterpret_cast<const unsigned char*>(text.data());
    std::size_t i = 0;
    for (; i + 4 <= text.size(); i += 4) {
      for (std::size_t part = 0; part < 4; ++part) {
        parts[part] += widths[codes[i + part]];
      }
    }
    for (; i < text.size(); ++i) {
      parts[0] += widths[codes[i]];
    }
    return parts[0] + parts[1] + parts[2] + parts[3];
  }
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
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
