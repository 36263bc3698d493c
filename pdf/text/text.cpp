#include "pdf/text/text.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veltrano {

namespace {

void writeEscaped(ContentWriter& out, std::string_view text) {
  constexpr std::string_view special = "\\()";
  const auto has = [text](char c) { return text.find(c) != std::string_view::npos; };
  // Nearly every text has nothing to escape.
  if (!has('\\') && !has('(') && !has(')')) {
    out.text(text);
    return;
  }
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find_first_of(special), text.size());
    out.text(text.substr(0, plain));
    text.remove_prefix(plain);
    if (!text.empty()) {
      out.text(text.front() == '\\' ? "\\\\\\\\" : text.front() == '(' ? "\\(" : "\\)");
      text.remove_prefix(1);
    }
  }
}

}  // namespace

TextDirection TextDirection::fromDegrees(double degrees) {
  const double angle = std::remainder(degrees, 360);
  if (std::remainder(angle, 90) == 0) {
    constexpr TextDirection quarters[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    return quarters[(static_cast<int>(angle / 90) + 4) % 4];
  }
  const double radians = angle * std::numbers::pi / 180;
  return {std::cos(radians), std::sin(radians)};
}

void writeTextOperators(ContentWriter& out, std::string_view text, const Font& font) {
  out.text("/F").integer(font.number).text(" ").integer(font.size).text(" Tf\r\n(");
  writeEscaped(out, text);
  out.text(") Tj\r\nET").end();
}

void writeUnderline(ContentWriter& out, const Font& font, Point at, double width, TextDirection direction) {
  if (!(width > 0)) {
    return;
  }
  const double thickness = font.metrics->underlineThickness * font.size / 1000;
  const double bottom = font.metrics->underlinePosition * font.size / 1000 - thickness / 2;
  if (direction.sine == 0 && direction.cosine == 1) {
    out.point(at.x, at.y + bottom).text(" ").point(width, thickness).text(" re f").end();
    return;
  }
  // A turned text is underlined in its own, turned coordinates.
  out.text("q ").direction(direction.cosine, direction.sine).point(at.x, at.y).text(" cm 0.00 ");
  out.number(bottom).text(" ").point(width, thickness).text(" re f Q").end();
}

double drawText(ContentStream& content, std::string_view text, Point at, const Font& font,
                std::string_view colorOp, double rotation) {
  ContentWriter out(content);
  const double width = font.width(text);
  if (!colorOp.empty()) {
    out.text("q ").text(colorOp).text(" ").end();
  }
  out.line("%DEBUT_TEXT/%\r\nBT");
  TextDirection direction;
  if (rotation != 0) {
    direction = TextDirection::fromDegrees(rotation);
    out.direction(direction.cosine, direction.sine).point(at.x, at.y).text(" Tm").end();
  } else {
    out.point(at.x, at.y).text(" Td").end();
  }
  writeTextOperators(out, text, font);
  if (font.underlined) {
    writeUnderline(out, font, at, width, direction);
  }
  if (!colorOp.empty()) {
    out.line("Q");
  }
  out.line("%FIN_TEXT/%");
  return width;
}

}  // namespace veltrano
