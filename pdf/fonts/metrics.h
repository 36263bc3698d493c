#ifndef VELTRANO_PDF_FONTS_METRICS_H
#define VELTRANO_PDF_FONTS_METRICS_H

// What texts are measured and underlined by.

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

namespace veltrano {

/// In thousandths of the font size.
struct FontMetrics {
  /// By character code; entry 0 is always 0.
  std::array<std::int32_t, 256> widths{};
  /// No width is negative or wider than `widestOrdinary`: texts of usual lengths are summed without checks.
  bool ordinary = true;
  static constexpr std::int32_t widestOrdinary = 10000;
  /// From the baseline to the middle of an underline, negative below it.
  double underlinePosition = -100;
  double underlineThickness = 50;
  /// How far letters reach below the baseline; negative.
  double descender = -212;

  /// Those of a missing file: every character is 0 wide.
  static std::shared_ptr<const FontMetrics> none();

  /// Sum of the widths of the characters. An addition that leaves 32 bits is skipped.
  [[nodiscard]] std::int32_t sum(std::string_view text) const;
  /// In points at `size` points.
  [[nodiscard]] double width(std::string_view text, std::int16_t size) const {
    return static_cast<double>(sum(text)) * size / 1000;
  }
};

}  // namespace veltrano

#endif
