#include "pdf/document/page_geometry.h"

#include <array>
#include <cstddef>
#include <utility>

#include "base/numbers/numbers.h"
#include "base/trace.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

namespace {

/// In the order of PDFFormatPgStr; points.
constexpr std::array<PageFormat, 5> namedFormats{{
    {a4Width, a4Height, false},
    {841.89, 1190.55, false},
    {420.94, 595.28, false},
    {612, 792, false},
    {612, 1008, false},
}};

void setSize(PageFormat& page, double width, double height) {
  page.width = width;
  page.height = height;
}

/// Width and height, or as much of them as the array holds. False when `value` is no array of numbers.
bool setSizeFromArray(PageFormat& page, const Value& value) {
  if (const auto* numbers = value.as<Value::Doubles>()) {
    if (!numbers->empty()) page.width = (*numbers)[0];
    if (numbers->size() > 1) page.height = (*numbers)[1];
    return true;
  }
  // Script hosts have no arrays but those of variants.
  const auto* list = value.as<Value::List>();
  if (list == nullptr || list->size() < 2) return false;
  const Value& width = (*list)[0];
  const Value& height = (*list)[1];
  if (!width.isNumeric() || !height.isNumeric()) return false;
  setSize(page, width.toDouble().value_or(0), height.toDouble().value_or(0));
  return true;
}

/// Whole points; a side that does not fit 16 bits keeps what it has.
double wholePoints(double side) {
  const auto rounded = roundToInt16(side);
  return rounded ? *rounded : side;
}

/// Stores `value` rounded; leaves the margin alone when it does not fit.
void setRounded(std::int16_t& margin, double value, std::string_view member) {
  if (const auto rounded = roundToInt16(value)) {
    margin = *rounded;
  } else {
    traceSkipped(member, "does not fit 16 bits");
  }
}

}  // namespace

void VeltranoPDF::PDFSetUnit(std::int32_t unit) {
  switch (unit) {
    case UNIT_PT:
      geometry_.scaleFactor = 1;
      break;
    case UNIT_MM:
      geometry_.scaleFactor = PageGeometry::pointsPerMillimetre;
      break;
    default:
      raise("Incorrect Unit");
      [[fallthrough]];
    case UNIT_CM:
      geometry_.scaleFactor = PageGeometry::pointsPerCentimetre;
      break;
  }
}

std::string VeltranoPDF::PDFGetUnit() const {
  if (geometry_.scaleFactor == 1) return "pt";
  if (geometry_.scaleFactor == PageGeometry::pointsPerMillimetre) return "mm";
  if (geometry_.scaleFactor == PageGeometry::pointsPerCentimetre) return "cm";
  return {};
}

void VeltranoPDF::PDFOrientation(std::int32_t orientation) {
  if (orientation != ORIENT_PAYSAGE && orientation != ORIENT_PORTRAIT) raise("Incorrect Page Orientation");
  PageFormat& page = geometry_.current();
  setSize(page, wholePoints(page.width), wholePoints(page.height));
  if (orientation == ORIENT_PAYSAGE) {
    std::swap(page.width, page.height);
    page.landscape = true;
  } else if (orientation == ORIENT_PORTRAIT) {
    page.landscape = false;
  }
}

void VeltranoPDF::PDFFormatPage(const Value& format) {
  if (format.isInteger()) {
    const auto code = format.toInt32();
    if (code && *code >= FORMAT_A4 && *code <= FORMAT_LEGAL) {
      const PageFormat& named = namedFormats[static_cast<std::size_t>(*code)];
      setSize(geometry_.current(), named.width, named.height);
      return;
    }
    raise("Invalid Page Code Format");
  } else if (setSizeFromArray(geometry_.current(), format)) {
    return;
  } else {
    raise("Incorrect Page Code");
  }
  setSize(geometry_.current(), a4Width, a4Height);
}

void VeltranoPDF::PDFPageHeight(double height) {
  geometry_.current().height = height;
}
double VeltranoPDF::PDFGetPageHeight() const {
  return geometry_.current().height;
}
void VeltranoPDF::PDFPageWidth(double width) {
  geometry_.current().width = width;
}
double VeltranoPDF::PDFGetPageWidth() const {
  return geometry_.current().width;
}

void VeltranoPDF::PDFSetLeftMargin(double margin) {
  setRounded(geometry_.leftMargin, margin, "PDFSetLeftMargin");
}
double VeltranoPDF::PDFGetLeftMargin() const {
  return geometry_.leftMargin;
}
void VeltranoPDF::PDFSetRightMargin(double margin) {
  setRounded(geometry_.rightMargin, margin, "PDFSetRightMargin");
}
double VeltranoPDF::PDFGetRightMargin() const {
  return geometry_.rightMargin;
}
void VeltranoPDF::PDFSetTopMargin(double margin) {
  setRounded(geometry_.topMargin, margin, "PDFSetTopMargin");
}
double VeltranoPDF::PDFGetTopMargin() const {
  return geometry_.topMargin;
}
void VeltranoPDF::PDFSetBottomMargin(double margin) {
  setRounded(geometry_.bottomMargin, margin, "PDFSetBottomMargin");
}
double VeltranoPDF::PDFGetBottomMargin() const {
  return geometry_.bottomMargin;
}
void VeltranoPDF::PDFSetCellMargin(double margin) {
  setRounded(geometry_.cellMargin, margin, "PDFSetCellMargin");
}
double VeltranoPDF::PDFGetCellMargin() const {
  return geometry_.cellMargin;
}

void VeltranoPDF::PDFSetMargins(std::int16_t left, std::int16_t top, std::int16_t right,
                                std::int16_t bottom) {
  constexpr std::int16_t omitted = -1;
  geometry_.leftMargin = left;
  geometry_.topMargin = top;
  geometry_.rightMargin = right == omitted ? left : right;
  geometry_.bottomMargin = bottom == omitted ? top : bottom;
}

std::int16_t VeltranoPDF::PDFGetX() const {
  return roundToInt16(geometry_.currentX).value_or(0);
}
std::int16_t VeltranoPDF::PDFGetY() const {
  return roundToInt16(geometry_.currentY).value_or(0);
}

}  // namespace veltrano
