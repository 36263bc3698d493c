#ifndef VELTRANO_PDF_FONTS_FONT_H
#define VELTRANO_PDF_FONTS_FONT_H

// The current font and how hosts name one.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pdf/fonts/metrics.h"

namespace veltrano {

struct Font {
  static constexpr std::int16_t usualSize = 10;

  std::string name;       ///< of the base font; empty until one is set
  std::int16_t size = 0;  ///< points; 0 is not set, and drawing text then sets the usual size
  /// Resource number, see FontTable::numberOf.
  int number = 1;
  bool underlined = false;  ///< asked for, and used up by the next text
  /// Never null. What is drawn uses these; their file is checked when a font is set, the fonts are loaded, a
  /// page starts or a width is asked for.
  std::shared_ptr<const FontMetrics> metrics = FontMetrics::none();

  [[nodiscard]] double width(std::string_view text) const { return metrics->width(text, size); }
};

/// The base-font name of a PDFFontNme in a style, whose decimal digits are PDFFontStl. Empty if `font` is not
/// one. Nothing checks that the font exists: bold Symbol is named as well.
std::optional<std::string> baseFontName(std::int32_t font, std::int32_t style);
/// Whether the style has the digit for underlining.
bool asksForUnderline(std::int32_t style);

}  // namespace veltrano

#endif
