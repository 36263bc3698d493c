#include "pdf/text/links.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/trace.h"
#include "pdf/graphics/content_line.h"
#include "pdf/text/text_operators.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

std::string escapeLinkTarget(std::string_view target) {
  std::string escaped;
  escaped.reserve(target.size());
  for (const char c : target) {
    if (c == '\r' || c == '\n') {
      continue;
    }
    if (c == '\\' || c == '(' || c == ')') {
      escaped.push_back('\\');
    }
    escaped.push_back(c);
  }
  return escaped;
}

namespace {

LinkEntry shapeArea(const LinkShape& shape, const PageGeometry& page) {
  LinkEntry area;
  area.left = page.xPoints(shape.x);
  area.top = page.yPoints(shape.y);
  area.width = shape.width * page.scaleFactor;
  area.height = shape.height * page.scaleFactor;
  return area;
}

/// The box around a text that begins at (x, y) on the page: as high as the font size, from the lowest
/// descender up. For a turned text the upright box around that.
LinkEntry textArea(const FontMetrics& metrics, double x, double y, double width, int size,
                   TextDirection direction) {
  const double lower = metrics.descender * size / 1000;
  LinkEntry area;
  double right = -std::numeric_limits<double>::infinity();
  double bottom = std::numeric_limits<double>::infinity();
  area.left = bottom;
  area.top = right;
  for (const double along : {0.0, width}) {
    for (const double up : {lower, lower + size}) {
      const double cornerX = x + along * direction.cosine - up * direction.sine;
      const double cornerY = y + along * direction.sine + up * direction.cosine;
      area.left = std::min(area.left, cornerX);
      right = std::max(right, cornerX);
      bottom = std::min(bottom, cornerY);
      area.top = std::max(area.top, cornerY);
    }
  }
  area.width = right - area.left;
  area.height = area.top - bottom;
  return area;
}

}  // namespace

void VeltranoPDF::recordLink(LinkEntry area, std::string_view target) {
  area.page = static_cast<int>(assembly_.pages.size());
  area.target = target;
  // The count has 16 bits: behind the last number a link takes the place of the one before.
  constexpr std::size_t most = std::numeric_limits<std::int16_t>::max();
  if (links_.links.size() < most) {
    links_.links.push_back(std::move(area));
  } else {
    traceSkipped("PDFLink", "more links than a document can count");
    links_.links.back() = std::move(area);
  }
}

void VeltranoPDF::PDFLink(double x, double y, std::string_view text, std::string_view link) {
  appendLine(assembly_.pageContent, "%DEBUT_LINK/%");
  fonts_.underlineFlag = true;
  const LinkShape shape = links_.shape;
  LinkEntry area;
  if (shape.kind == LinkKind::text) {
    const double startX = x == 0 ? geometry_.currentX : x;
    const double startY = y == 0 ? geometry_.currentY : y;
    PDFTextOut(text, startX, startY);
    const FontMetrics& metrics = *fonts_.metrics;
    area = textArea(metrics, geometry_.xPoints(startX), geometry_.yPoints(startY),
                    metrics.width(text, fonts_.fontSize), fonts_.fontSize,
                    TextDirection::fromDegrees(-fonts_.rotation));
  } else {
    // The shape is there already; a cell has shown its own text.
    if (shape.kind == LinkKind::image) {
      PDFSetTextColor(COLOR_BLEU);
    }
    PDFTextOut("", x, y);
    area = shapeArea(shape, geometry_);
  }
  links_.shape = {};
  recordLink(std::move(area), link.empty() ? text : link);
  appendLine(assembly_.pageContent, "%FIN_LINK/%");
}

void VeltranoPDF::placeLink(const Value& link, const LinkShape& shape, double x, double y) {
  const auto* target = link.as<std::string>();
  if (target != nullptr) {
    if (!target->empty()) {
      links_.shape = shape;
      PDFLink(x, y, *target);
      links_.shape = {};
    }
  } else if (!link.isEmpty()) {
    raise("Unable to include this link");
  }
}

}  // namespace veltrano
