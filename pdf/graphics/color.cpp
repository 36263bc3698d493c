#include "pdf/graphics/color.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "base/numbers/numbers.h"

namespace veltrano {

namespace {

/// Red, green, blue; usually 0 to 255, but a list may hold anything that 16 bits do.
using Color = std::array<int, 3>;

/// The last six characters of "000000" and the text. A pair that is not hexadecimal, which happens if fewer
/// than six digits follow the "#", is 0.
Color parseHexColor(std::string_view text) {
  std::string digits = "000000";
  digits += text;
  digits.erase(0, digits.size() - 6);
  Color color{};
  for (std::size_t i = 0; i < color.size(); ++i) {
    const char* const pair = digits.data() + 2 * i;
    unsigned component = 0;
    if (std::from_chars(pair, pair + 2, component, 16).ptr == pair + 2) {
      color[i] = static_cast<int>(component);
    }
  }
  return color;
}

/// The bytes of a colour number, whose fraction goes towards zero. Black if it does not fit 32 bits.
Color splitColor(const Value& value) {
  std::int64_t whole = 0;
  if (const auto* integer = value.as<std::int64_t>()) {
    whole = *integer;
  } else if (const auto number = value.toDouble()) {
    whole = roundToInt32(std::trunc(*number)).value_or(0);
  }
  const auto bits = whole == static_cast<std::int32_t>(whole) ? static_cast<std::uint32_t>(whole) : 0U;
  return {static_cast<int>(bits & 0xFF), static_cast<int>(bits >> 8 & 0xFF),
          static_cast<int>(bits >> 16 & 0xFF)};
}

template <typename List, typename Component>
Color listColor(const List& list, Component component) {
  Color color{};
  std::transform(list.begin(),
                 list.begin() + static_cast<std::ptrdiff_t>(std::min(color.size(), list.size())),
                 color.begin(), component);
  return color;
}

Color readColor(const Value& value) {
  if (const auto* list = value.as<Value::List>()) {
    return listColor(*list, [](const Value& element) { return element.toInt16().value_or(0); });
  }
  if (const auto* numbers = value.as<Value::Doubles>()) {
    return listColor(*numbers, [](double number) { return roundToInt16(number).value_or(0); });
  }
  if (const auto* bytes = value.as<Value::Bytes>()) {
    return listColor(*bytes, [](std::uint8_t byte) { return byte; });
  }
  if (const auto* text = value.as<std::string>()) {
    return isMisspelledColor(value) ? Color{} : parseHexColor(*text);
  }
  return splitColor(value);
}

}  // namespace

bool isMisspelledColor(const Value& color) {
  const auto* text = color.as<std::string>();
  return text != nullptr && !text->starts_with('#');
}

void setColorOperator(std::string& op, const Value& color, std::string_view name) {
  op.clear();  // keeps its memory: every linked shape sets a colour
  for (const int component : readColor(color)) {
    op += formatPdfNumber(component / 255.0, 3).view();
    op += ' ';
  }
  op += name;
}

std::string fillOperatorOf(std::string_view lineOperator) {
  const bool rgb = lineOperator.ends_with("RG");
  return std::string(lineOperator.substr(0, lineOperator.size() - (rgb ? 2 : 1))) + (rgb ? "rg" : "g");
}

}  // namespace veltrano
