#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "base/trace.h"
#include "pdf/graphics/content_line.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

namespace {

struct Point {
  double x = 0;
  double y = 0;
};

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

/// Script hosts may pass one array of points instead of one argument per point.
const Value::List& pointValues(const Value::List& arguments) {
  const auto* only = arguments.size() == 1 ? arguments[0].as<Value::List>() : nullptr;
  return only != nullptr && std::any_of(only->begin(), only->end(), isArray) ? *only : arguments;
}

/// A point of fewer than two numbers, or of numbers that cannot be written, is left out, and the outline goes
/// on with the next one.
std::vector<Point> readPoints(const Value::List& arguments) {
  const Value::List& values = pointValues(arguments);
  std::vector<Point> points;
  points.reserve(values.size());
  for (const Value& value : values) {
    const auto x = numberAt(value, 0);
    const auto y = numberAt(value, 1);
    if (x && y && std::isfinite(*x) && std::isfinite(*y)) {
      points.push_back({*x, *y});
    } else {
      traceSkipped("PDFDrawPolygon", "a point is no pair of numbers");
    }
  }
  return points;
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
  switch (mode) {
    case DrawMode::fill:
      return "f";
    case DrawMode::fillAndLine:
      return "B";
    default:
      return "s";
  }
}

}  // namespace

void VeltranoPDF::copyLineColorToFill() {
  std::string& fill = graphics_.fillColorOp;
  const std::string& line = graphics_.lineColorOp;
  const bool rgb = line.ends_with("RG");
  fill.assign(line, 0, line.size() - (rgb ? 2 : 1));
  fill += rgb ? "rg" : "g";
}

void VeltranoPDF::appendPaintColors() {
  ContentText& content = assembly_.pageContent;
  if (graphics_.drawMode != DrawMode::outline) appendLine(content, graphics_.fillColorOp);
  if (graphics_.drawMode != DrawMode::fill) appendLine(content, graphics_.lineColorOp);
}

void VeltranoPDF::appendLineWidth(std::string_view operators) {
  ContentLine(assembly_.pageContent)
      .number(graphics_.lineWidth * geometry_.scaleFactor)
      .text(operators)
      .end();
}

void VeltranoPDF::drawStraightLine(std::string_view marker, double x1, double y1, double x2, double y2) {
  ContentText& content = assembly_.pageContent;
  const PageGeometry& page = geometry_;
  copyLineColorToFill();
  ContentLine(content).text("%DEBUT_").text(marker).text("/%").end();
  appendLine(content, graphics_.lineDashOp);
  ContentLine(content).point(page.xPoints(x1), page.yPoints(y1)).text(" m").end();
  ContentLine(content).point(page.xPoints(x2), page.yPoints(y2)).text(" l").end();
  appendLine(content, graphics_.lineColorOp);
  appendLineWidth(" w S");
  ContentLine(content).text("%FIN_").text(marker).text("/%").end();
  moveTo(x2, y2);
}

void VeltranoPDF::PDFDrawLineHor(double x, double y, double width) {
  drawStraightLine("LNH", x, y, x + width, y);
}

void VeltranoPDF::PDFDrawLineVer(double x, double y, double height) {
  drawStraightLine("LNV", x, y, x, y + height);
}

// Unlike the two above, a free line has no dash and leaves the fill colour alone; hosts rely on the
// difference.
void VeltranoPDF::PDFDrawLine(double x1, double y1, double x2, double y2) {
  ContentText& content = assembly_.pageContent;
  const PageGeometry& page = geometry_;
  appendLine(content, "%DEBUT_LN/%");
  ContentLine(content).point(page.xPoints(x1), page.yPoints(y1)).text(" m").end();
  ContentLine(content).point(page.xPoints(x2), page.yPoints(y2)).text(" l").end();
  appendLine(content, graphics_.lineColorOp);
  appendLineWidth(" w S");
  appendLine(content, "%FIN_LN/%");
  moveTo(std::fmax(x1, x2), std::fmax(y1, y2));
}

void VeltranoPDF::PDFDrawRectangle(double x, double y, double width, double height, const Value& link) {
  ContentText& content = assembly_.pageContent;
  const double k = geometry_.scaleFactor;
  appendLine(content, "%DEBUT_RECT/%");
  appendPaintColors();
  appendLine(content, graphics_.lineDashOp);
  ContentLine(content)
      .point(geometry_.xPoints(x), geometry_.yPoints(y))
      .text(" ")
      .point(width * k, -height * k)
      .text(" re ")
      .text(rectanglePaintOperator(graphics_.drawMode))
      .end();
  // Written after a filled rectangle as well.
  appendLineWidth(" w S");
  placeShapeLink(link, {LinkKind::rectangle, x, y, width, height});
  appendLine(content, "%FIN_RECT/%");
  moveTo(x, y + height);
}

void VeltranoPDF::placeShapeLink(const Value& link, const LinkShape& shape) {
  PDFSetTextColor(COLOR_BLANC);
  placeLink(link, shape, std::floor(shape.x + 5), std::floor(shape.y + shape.height / 2));
}

// The box is in user units. The outline starts at the middle of its right side and goes up, over the top:
// counter-clockwise as seen on the page.
void VeltranoPDF::appendEllipse(double x, double y, double width, double height) {
  constexpr double tangent = 0.55;  // of the half width or height: close enough to a circle's 0.5523
  ContentText& content = assembly_.pageContent;
  const double halfWidth = width * geometry_.scaleFactor / 2;
  const double halfHeight = height * geometry_.scaleFactor / 2;
  const double centreX = geometry_.xPoints(x) + halfWidth;
  const double centreY = geometry_.yPoints(y) - halfHeight;
  // Unit vectors from the centre to the four midpoints, in the order of travel.
  constexpr std::array<Point, 5> sides{{{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}}};
  ContentLine(content).point(centreX + halfWidth, centreY).text(" m").end();
  for (std::size_t i = 0; i + 1 < sides.size(); ++i) {
    const Point from = sides[i];
    const Point to = sides[i + 1];
    ContentLine(content)
        .point(centreX + (from.x + to.x * tangent) * halfWidth,
               centreY + (from.y + to.y * tangent) * halfHeight)
        .text(" ")
        .point(centreX + (to.x + from.x * tangent) * halfWidth,
               centreY + (to.y + from.y * tangent) * halfHeight)
        .text(" ")
        .point(centreX + to.x * halfWidth, centreY + to.y * halfHeight)
        .text(" c")
        .end();
  }
}

void VeltranoPDF::PDFDrawEllipse(double x, double y, double width, double height, const Value& link) {
  if (height == 0) height = width;
  ContentText& content = assembly_.pageContent;
  appendPaintColors();
  appendLine(content, graphics_.lineDashOp);
  appendLine(content, graphics_.lineColorOp);
  appendLineWidth(" w ");
  appendEllipse(x, y, width, height);
  appendLine(content, closedPaintOperator(graphics_.drawMode));

  const auto* target = link.as<std::string>();
  if (link.isEmpty() || (target != nullptr && target->empty())) return;
  placeShapeLink(link, {LinkKind::ellipse, x, y, width, height});
}

void VeltranoPDF::PDFDrawPolygon(const Value::List& points) {
  ContentText& content = assembly_.pageContent;
  appendLine(content, "%DEBUT_POLY/%");
  appendLine(content, graphics_.lineDashOp);
  appendPaintColors();
  appendLineWidth(" w ");
  bool anyPath = false;
  for (const Point& point : readPoints(points)) {
    ContentLine line(content);
    line.point(geometry_.xPoints(point.x), geometry_.yPoints(point.y)).text(anyPath ? " l" : " m");
    anyPath |= line.end();
  }
  if (anyPath) {
    // The other two operators close the outline themselves.
    if (graphics_.drawMode == DrawMode::fillAndLine) appendLine(content, "h");
    appendLine(content, closedPaintOperator(graphics_.drawMode));
  }
  appendLine(content, "%FIN_POLY/%");
}

}  // namespace veltrano
