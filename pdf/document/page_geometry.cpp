#include "pdf/document/page_geometry.h"

#include <array>
#include <cmath>
#include <utility>

#include "base/numbers/numbers.h"

namespace veltrano {

namespace {

/// In the order of PDFUnitStr.
constexpr std::array<double, 3> unitPoints{1, 72 / 25.4, 72 / 2.54};
constexpr std::array<const char*, 3> unitNames{"pt", "mm", "cm"};

/// In the order of PDFFormatPgStr; points.
constexpr std::array<PageFormat, 5> namedFormats{
    {a4, {841.89, 1190.55}, {420.94, 595.28}, {612, 792}, {612, 1008}}};

double wholePoints(double side) {
  const auto rounded = roundToInt16(side);
  return rounded ? *rounded : side;
}

}  // namespace

std::optional<double> pointsPerUnit(std::int32_t unit) {
  return unit >= 0 && unit < 3 ? std::optional(unitPoints[static_cast<std::size_t>(unit)]) : std::nullopt;
}

std::string unitName(double pointsPerUnit) {
  for (std::size_t unit = 0; unit < unitPoints.size(); ++unit) {
    if (unitPoints[unit] == pointsPerUnit) {
      return unitNames[unit];
    }
  }
  return {};
}

bool PageFormat::setNamed(const Value& code) {
  const auto number = code.toInt32();
  if (!number || *number < 0 || static_cast<std::size_t>(*number) >= namedFormats.size()) {
    return false;
  }
  *this = namedFormats[static_cast<std::size_t>(*number)];
  return true;
}

bool PageFormat::setFromArray(const Value& value) {
  if (const auto* numbers = value.as<Value::Doubles>()) {
    if (!numbers->empty()) {
      width = (*numbers)[0];
    }
    if (numbers->size() > 1) {
      height = (*numbers)[1];
    }
    return true;
  }
  // Script hosts have no arrays but those of variants.
  const auto* list = value.as<Value::List>();
  if (list == nullptr || list->size() < 2 || !(*list)[0].isNumeric() || !(*list)[1].isNumeric()) {
    return false;
  }
  width = (*list)[0].toDouble().value_or(0);
  height = (*list)[1].toDouble().value_or(0);
  return true;
}

void PageFormat::orient(bool swapSides) {
  width = wholePoints(width);
  height = wholePoints(height);
  if (swapSides) {
    std::swap(width, height);
  }
}

void PageGeometry::nextPage() {
  const PageFormat before = current();
  ++currentPage;
  if (pages.size() < currentPage) {
    pages.push_back(before);
  }
}

void PageGeometry::moveTo(double x, double y) {
  if (std::isfinite(x)) {
    currentX = x;
  }
  if (std::isfinite(y)) {
    currentY = y;
  }
}

}  // namespace veltrano
