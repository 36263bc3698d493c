#ifndef VELTRANO_PDF_GRAPHICS_SHAPES_H
#define VELTRANO_PDF_GRAPHICS_SHAPES_H

// Lines, rectangles, ellipses and polygons as content stream operators. All coordinates are user units.

#include <string_view>
#include <vector>

#include "pdf/document/content_stream.h"
#include "pdf/document/page_geometry.h"
#include "pdf/graphics/state.h"
#include "veltrano/value.h"

namespace veltrano {

/// A line between comments of the kind `marker`. One that is not `dashed` writes no dash: that of the last
/// drawing that did holds on.
void drawLine(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
              std::string_view marker, bool dashed, Point from, Point to);
/// The closing comment is left to the caller, since a link stands before it.
void drawRectangle(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
                   const Box& box);
/// The ellipse within a box.
void drawEllipse(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
                 const Box& box);
/// A closed outline; without a point nothing is painted.
void drawPolygon(ContentStream& content, const PageGeometry& page, const GraphicsState& state,
                 const std::vector<Point>& points);

/// The points that a host passes: one argument per point, or one array of them. What is not a pair of finite
/// numbers is left out.
std::vector<Point> readPoints(const Value::List& arguments);

}  // namespace veltrano

#endif
