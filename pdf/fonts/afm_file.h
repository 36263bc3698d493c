#ifndef VELTRANO_PDF_FONTS_AFM_FILE_H
#define VELTRANO_PDF_FONTS_AFM_FILE_H

// Font metrics as AFM files hold them, and the widths of texts made of them.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

/// What text is measured and underlined by, in thousandths of the font size. A default one is that of a
/// missing file: every character is 0 wide.
struct FontMetrics {
  /// By character code; entry 0 is always 0.
  std::array<std::int32_t, 256> widths{};
  /// The lines before the character metrics.
  std::string header;

  /// The number behind `key` in the header.
  [[nodiscard]] std::optional<double> headerNumber(std::string_view key) const;
  /// Distance from the baseline to the middle of an underline, negative below it.
  [[nodiscard]] double underlinePosition() const { return headerNumber("UnderlinePosition").value_or(-100); }
  [[nodiscard]] double underlineThickness() const { return headerNumber("UnderlineThickness").value_or(50); }
  /// How far letters reach below the baseline; negative.
  [[nodiscard]] double descender() const { return headerNumber("Descender").value_or(-212); }

  /// Sum of the widths of the characters. An addition that leaves 32 bits is skipped.
  [[nodiscard]] std::int32_t sum(std::string_view text) const;
  /// In points at `size` points.
  [[nodiscard]] double width(std::string_view text, std::int16_t size) const {
    return static_cast<double>(sum(text)) * size / 1000;
  }
};

/// Reads metrics from the start of a file. Lines end at CR LF, LF or CR. Only the positions of the fields
/// count; a line with a field that cannot be read leaves its width at 0. Nothing when the text ends before
/// the metrics do: `wholeFile` says that nothing follows, and a file without an end of its metrics measures 0
/// everywhere.
std::optional<FontMetrics> parseAfm(std::string_view text, bool wholeFile);

}  // namespace veltrano

#endif
