#include "pdf/fonts/font.h"

#include <array>

#include "base/numbers/numbers.h"

namespace veltrano {

namespace {

/// In the order of PDFFontNme.
constexpr std::array<std::string_view, 5> families{"Helvetica", "Courier", "Times", "Symbol", "ZapfDingbats"};

bool hasDigit(std::int32_t style, char digit) {
  return integerText(style).view().find(digit) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> baseFontName(std::int32_t font, std::int32_t style) {
  if (font < 0 || static_cast<std::size_t>(font) >= families.size()) {
    return std::nullopt;
  }
  const bool italic = hasDigit(style, '1');
  const bool bold = hasDigit(style, '2');
  std::string name(families[static_cast<std::size_t>(font)]);
  const bool times = name == "Times";
  if (italic && bold) {
    return name + (times ? "-BoldItalic" : "-BoldOblique");
  }
  // Without a hyphen, kept because hosts rely on it; metrics of this name are shipped.
  if (italic) {
    return name + (times ? "Italic" : "-Oblique");
  }
  if (bold) {
    return name + "-Bold";
  }
  return times ? name + "-Roman" : name;
}

bool asksForUnderline(std::int32_t style) {
  return hasDigit(style, '3');
}

}  // namespace veltrano
