#include "pdf/graphics/shapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

#include "base/trace.h"

namespace veltrano {

namespace {

void writePaintColors(ContentWriter& out, const GraphicsState& state) {
  if (state.drawMode != DrawMode::outline) {
    out.line(state.fillColorOp);
  }
  if (state.drawMode != DrawMode::fill) {
    out.line(state.lineColorOp);
  }
}

void writeLineWidth(ContentWriter& out, const PageGeometry& page, const GraphicsState& state,
                    std::string_view operators) {
  out.number(state.lineWidth * page.scaleFactor).text(operators).end();
}

void writePoint(ContentWriter& out, const PageGeometry& page, Point point, std::string_view segment) {
  out.point(page.xPoints(point.x), page.yPoints(point.y)).text(segment).end();
}

/// For outlines that are to be closed before they are painted.
std::string_view closedPaintOperator(DrawMode mode) {
  switch (mode) {
    case DrawMode::fill:
      return "h f";
    case DrawMode::fillAndLine:
      return "B";
    default:
      return "s";
  }
}

std::string_view rectanglePaintOperator(DrawMode mode) {
  return mode == DrawMode::fill ? "f" : closedPaintOperator(mode);
}

std::optional<double> numberAt(const Value& point, std::size_t index) {
  if (const auto* numbers = point.as<Value::Doubles>()) {
    return index < numbers->size() ? std::optional((*numbers)[index]) : std::nullopt;
  }
  const auto* list = point.as<Value::List>();
  return list != nullptr && index < list->size() ? (*list)[index].toDouble() : std::nullopt;
}

bool isArray(const Value& value) {
  return value.as<Value::List>() != nullptr || value.as<Value::Doubles>() != nullptr;
}

}  // namespace

void drawLine(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
              std::string_view marker, bool dashed, Point from, Point to) {
  ContentWriter out(content);
  out.text("%DEBUT_").text(marker).text("/%").end();
  if (dashed) {
    out.line(state.lineDashOp);
  }
  writePoint(out, page, from, " m");
  writePoint(out, page, to, " l");
  out.line(state.lineColorOp);
  writeLineWidth(out, page, state, " w S");
  out.text("%FIN_").text(marker).text("/%").end();
}

void drawRectangle(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
                   const Box& box) {
  ContentWriter out(content);
  out.line("%DEBUT_RECT/%");
  writePaintColors(out, state);
  out.line(state.lineDashOp);
  out.point(page.xPoints(box.x), page.yPoints(box.y))
      .text(" ")
      .point(box.width * page.scaleFactor, -box.height * page.scaleFactor)
      .text(" re ")
      .text(rectanglePaintOperator(state.drawMode))
      .end();
  // Written after a filled rectangle as well.
  writeLineWidth(out, page, state, " w S");
}

void drawEllipse(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
                 const Box& box) {
  ContentWriter out(content);
  writePaintColors(out, state);
  out.line(state.lineDashOp);
  out.line(state.lineColorOp);
  writeLineWidth(out, page, state, " w ");

  // The outline starts at the middle of the right side and goes up, over the top: counter-clockwise as seen
  // on the page.
  constexpr double tangent = 0.55;  // of the half width or height: close enough to a circle's 0.5523
  const double halfWidth = box.width * page.scaleFactor / 2;
  const double halfHeight = box.height * page.scaleFactor / 2;
  const double centreX = page.xPoints(box.x) + halfWidth;
  const double centreY = page.yPoints(box.y) - halfHeight;
  const auto at = [&](double x, double y) -> ContentWriter& {
    return out.point(centreX + x * halfWidth, centreY + y * halfHeight);
  };
  // Unit vectors from the centre to the four midpoints, in the order of travel.
  constexpr std::array<Point, 5> sides{{{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}}};
  out.point(centreX + halfWidth, centreY).text(" m").end();
  for (std::size_t i = 0; i + 1 < sides.size(); ++i) {
    const Point from = sides[i];
    const Point to = sides[i + 1];
    at(from.x + to.x * tangent, from.y + to.y * tangent).text(" ");
    at(to.x + from.x * tangent, to.y + from.y * tangent).text(" ");
    at(to.x, to.y).text(" c").end();
  }
  out.line(closedPaintOperator(state.drawMode));
}

void drawPolygon(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
                 const std::vector<Point>& points) {
  ContentWriter out(content);
  out.line("%DEBUT_POLY/%");
  out.line(state.lineDashOp);
  writePaintColors(out, state);
  writeLineWidth(out, page, state, " w ");
  bool anyPath = false;
  for (const Point& point : points) {
    out.point(page.xPoints(point.x), page.yPoints(point.y)).text(anyPath ? " l" : " m");
    anyPath |= out.end();
  }
  if (anyPath) {
    // The other two operators close the outline themselves.
    if (state.drawMode == DrawMode::fillAndLine) {
      out.line("h");
    }
    out.line(closedPaintOperator(state.drawMode));
  }
  out.line("%FIN_POLY/%");
}

std::vector<Point> readPoints(const Value::List& arguments) {
  // Script hosts may pass one array of points instead of one argument per point.
  const auto* only = arguments.size() == 1 ? arguments[0].as<Value::List>() : nullptr;
  const bool nested = only != nullptr && std::any_of(only->begin(), only->end(), isArray);
  const Value::List& values = nested ? *only : arguments;
  std::vector<Point> points;
  points.reserve(values.size());
  for (const Value& value : values) {
    const auto x = numberAt(value, 0);
    const auto y = numberAt(value, 1);
    if (x && y && std::isfinite(*x) && std::isfinite(*y)) {
      points.push_back({*x, *y});
    } else {
      trace("Point ", &value - values.data() + 1, " is not a pair of numbers and is left out.");
    }
  }
  return points;
}

}  // namespace veltrano
