#include "pdf/graphics/graphics_state.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <optional>

#include "base/numbers/numbers.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

namespace {

/// Red, green, blue; usually 0 to 255, but a list may hold anything that 16 bits do.
using Color = std::array<int, 3>;

std::optional<int> hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return std::nullopt;
}

/// The last six characters of "000000" and the text. A pair that is not hexadecimal, which happens when fewer
/// than six digits follow the "#", is 0.
Color parseHexColor(std::string_view text) {
  std::string digits = "000000";
  digits += text;
  digits.erase(0, digits.size() - 6);
  Color color{};
  for (std::size_t i = 0; i < color.size(); ++i) {
    const auto high = hexDigit(digits[2 * i]);
    const auto low = hexDigit(digits[2 * i + 1]);
    if (high && low) color[i] = *high * 16 + *low;
  }
  return color;
}

/// The bytes of a colour number. Black when it is no number of 32 bits.
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

/// A component that is missing or no 16-bit number is 0.
Color listColor(const Value::List& list) {
  Color color{};
  for (std::size_t i = 0; i < color.size() && i < list.size(); ++i) color[i] = list[i].toInt16().value_or(0);
  return color;
}

Color numbersColor(const Value::Doubles& numbers) {
  Color color{};
  for (std::size_t i = 0; i < color.size() && i < numbers.size(); ++i) {
    color[i] = roundToInt16(numbers[i]).value_or(0);
  }
  return color;
}

Color bytesColor(const Value::Bytes& bytes) {
  Color color{};
  std::copy_n(bytes.begin(), std::min(color.size(), bytes.size()), color.begin());
  return color;
}

bool isMisspelled(const Value& value) {
  const auto* text = value.as<std::string>();
  return text != nullptr && !text->starts_with('#');
}

Color readColor(const Value& value) {
  if (const auto* list = value.as<Value::List>()) return listColor(*list);
  if (const auto* numbers = value.as<Value::Doubles>()) return numbersColor(*numbers);
  if (const auto* bytes = value.as<Value::Bytes>()) return bytesColor(*bytes);
  if (const auto* text = value.as<std::string>()) return isMisspelled(value) ? Color{} : parseHexColor(*text);
  return splitColor(value);
}

/// Makes `op` "1.000 0.502 0.000 rg".
void setColorOp(std::string& op, const Color& color, std::string_view colorOperator) {
  op.clear();  // keeps its memory: every linked shape sets a colour
  for (const int component : color) {
    op += formatPdfNumber(component / 255.0, 3).view();
    op += ' ';
  }
  op += colorOperator;
}

/// "[45 22 ] 0 d", the blank before the bracket included; lengths in user units, of which whole points are
/// kept.
std::string dashOperator(std::initializer_list<int> lengths, double scaleFactor) {
  std::string op = "[";
  for (const int length : lengths) {
    op += integerText(static_cast<std::int64_t>(std::floor(length * scaleFactor))).view();
    op += ' ';
  }
  return op + "] 0 d";
}

/// Several edges at once, by the digits of the number. "All" within a combination means nothing.
Border combinedBorder(std::int32_t digits) {
  const NumberText text = integerText(digits);
  const auto has = [&](char digit) { return text.view().find(digit) != std::string_view::npos; };
  Border border;
  border.left = has('4');
  border.right = has('5');
  border.top = has('2');
  border.bottom = has('3');
  return border;
}

}  // namespace

void VeltranoPDF::PDFSetTextColor(const Value& color) {
  if (isMisspelled(color)) raise("Invalid Text Color");
  setColorOp(graphics_.textColorOp, readColor(color), "rg");
}

void VeltranoPDF::PDFSetLineColor(const Value& color) {
  if (isMisspelled(color)) raise("Invalid Line Color");
  setColorOp(graphics_.lineColorOp, readColor(color), "RG");
}

void VeltranoPDF::PDFSetDrawColor(const Value& color) {
  // Hosts compare the message as it is spelled.
  if (isMisspelled(color)) raise("Invalide Draw Color");
  setColorOp(graphics_.fillColorOp, readColor(color), "rg");
}

std::string VeltranoPDF::PDFGetTextColor() const {
  return {};
}
std::string VeltranoPDF::PDFGetLineColor() const {
  return {};
}
std::string VeltranoPDF::PDFGetDrawColor() const {
  return {};
}

void VeltranoPDF::PDFSetLineWidth(double width) {
  graphics_.lineWidth = width;
}

void VeltranoPDF::PDFSetLineStyle(std::int32_t style) {
  const double k = geometry_.scaleFactor;
  switch (style) {
    case pPDF_SOLID:
      graphics_.lineDashOp = "[] 0 d";
      break;
    case pPDF_DASH:
      graphics_.lineDashOp = dashOperator({16, 8}, k);
      break;
    case pPDF_DASHDOT:
      graphics_.lineDashOp = dashOperator({8, 7, 2, 7}, k);
      break;
    case pPDF_DASHDOTDOT:
      graphics_.lineDashOp = dashOperator({8, 4, 2, 4, 2, 4}, k);
      break;
    default:
      raise("Incorrect Line Style");
      graphics_.lineDashOp.clear();
      break;
  }
}

void VeltranoPDF::PDFSetDrawMode(std::int32_t mode) {
  switch (mode) {
    default:
      raise("Incorrect Draw line");
      [[fallthrough]];
    case DRAW_NORMAL:
      graphics_.drawMode = DrawMode::outline;
      break;
    case DRAW_DRAW:
      graphics_.drawMode = DrawMode::fill;
      break;
    case DRAW_DRAWBORDER:
      graphics_.drawMode = DrawMode::fillAndLine;
      break;
  }
}

void VeltranoPDF::PDFSetAlignement(std::int32_t alignment) {
  switch (alignment) {
    case ALIGN_CENTER:
      graphics_.alignment = Alignment::center;
      break;
    default:
      raise("Invalid Alignment Code");
      [[fallthrough]];
    case ALIGN_LEFT:
      graphics_.alignment = Alignment::left;
      break;
    case ALIGN_RIGHT:
      graphics_.alignment = Alignment::right;
      break;
    case ALIGN_FJUSTIFY:
      graphics_.alignment = Alignment::justify;
      break;
  }
}

std::string VeltranoPDF::PDFGetAlignement() const {
  switch (graphics_.alignment) {
    case Alignment::center:
      return "Center";
    case Alignment::right:
      return "Right";
    default:
      return "Left";
  }
}

void VeltranoPDF::PDFSetBorder(std::int32_t border) {
  graphics_.border = combinedBorder(border);
  graphics_.border.all = border == BORDER_ALL;
}

void VeltranoPDF::PDFSetFill(bool fill) {
  graphics_.fillFlag = fill;
}

}  // namespace veltrano
