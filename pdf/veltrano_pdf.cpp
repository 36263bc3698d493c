#include "pdf/veltrano_pdf.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "base/numbers/numbers.h"
#include "pdf/graphics/color.h"
#include "pdf/graphics/line_style.h"

namespace veltrano {

namespace {

bool isOpen(const DocumentParts& parts) {
  if (!parts.composition.isOpen()) {
    trace("No document is open; nothing is done.");
  }
  return parts.composition.isOpen();
}

/// What a host sees of a count that may be wider than its property.
std::int16_t hostCount(std::size_t count) {
  constexpr std::size_t most = std::numeric_limits<std::int16_t>::max();
  return static_cast<std::int16_t>(std::min(count, most));
}

/// Stores `value` rounded; leaves the margin alone if it does not fit.
void setRounded(std::int16_t& margin, double value) {
  if (const auto rounded = roundToInt16(value)) {
    margin = *rounded;
  } else {
    trace("The margin does not fit 16 bits; the previous one stays.");
  }
}

}  // namespace

void raise(const VeltranoPDF& pdf, std::string_view message, std::string_view instead) {
  trace("An argument is rejected (\"", message, "\"): ", instead, ".");
  // A copy, since the handler may put another one in its place while it runs.
  const auto handler = pdf.onError;
  if (handler) {
    handler(message);
  }
}

VeltranoPDF::VeltranoPDF() : impl_(std::make_unique<Impl>()) {
  PDFInit();
}

VeltranoPDF::~VeltranoPDF() = default;

// Document settings
void VeltranoPDF::PDFInit() {
  const PdfMember member("PDFInit");
  impl_->reset();
}
void VeltranoPDF::PDFPathConfiguration(const std::filesystem::path& folder) {
  impl_->metricsFolder.setPath(folder);
}
void VeltranoPDF::PDFProducer(std::string_view text) {
  impl_->information.producer = text;
}
void VeltranoPDF::PDFSubject(std::string_view text) {
  impl_->information.subject = text;
}
void VeltranoPDF::PDFKeywords(std::string_view text) {
  impl_->information.keywords = text;
}
void VeltranoPDF::PDFCreator(std::string_view text) {
  impl_->information.creator = text;
}
void VeltranoPDF::PDFAuthor(std::string_view text) {
  impl_->information.author = text;
}
void VeltranoPDF::PDFTitle(std::string_view text) {
  impl_->information.title = text;
}
void VeltranoPDF::PDFFileName(const std::filesystem::path& file) {
  impl_->fileName = file;
  impl_->composition.clearOutput();
}
std::string VeltranoPDF::PDFGetFileName() const {
  return {};
}
void VeltranoPDF::PDFConfirm(bool /*confirm*/) {}
void VeltranoPDF::PDFView(bool /*view*/) {}
void VeltranoPDF::JustPictures(bool /*pictures*/) {}
void VeltranoPDF::PDFFiligran(std::string_view text) {
  impl_->watermarkText = std::string(text);
}
void VeltranoPDF::PDFSetZoomMode(const Value& zoom) {
  const PdfMember member("PDFSetZoomMode");
  Value accepted = zoom;
  if (!zoom.isNumeric() && !zoom.isEmpty()) {
    raise(*this, "Zoom mode incorrect.", "the whole page is shown");
    accepted = Value(ZOOM_FULLPAGE);
  }
  impl_->viewer.zoomMode = accepted;
}
Value VeltranoPDF::PDFGetZoomMode() const {
  return impl_->viewer.zoomMode;
}
void VeltranoPDF::PDFSetLayoutMode(std::int32_t layout) {
  const PdfMember member("PDFSetLayoutMode");
  if (layout < LAYOUT_SINGLE || layout > LAYOUT_DEFAULT) {
    raise(*this, "Incorrect Layout", "single pages are shown");
    layout = LAYOUT_SINGLE;
  }
  impl_->viewer.layoutMode = Value(layout);
}
Value VeltranoPDF::PDFGetLayoutMode() const {
  return impl_->viewer.layoutMode;
}
void VeltranoPDF::PDFUseThumbs(bool use) {
  impl_->viewer.useThumbs = use;
}
void VeltranoPDF::PDFUseOutlines(bool use) {
  impl_->viewer.useOutlines = use;
}
void VeltranoPDF::PDFSetViewerPreferences(std::int32_t preference) {
  impl_->viewer.viewerPreference = preference;
}

// Page geometry
void VeltranoPDF::PDFSetUnit(std::int32_t unit) {
  const PdfMember member("PDFSetUnit");
  const auto points = pointsPerUnit(unit);
  if (!points) {
    raise(*this, "Incorrect Unit", "centimetres are used");
  }
  impl_->geometry.scaleFactor = points.value_or(*pointsPerUnit(UNIT_CM));
}
std::string VeltranoPDF::PDFGetUnit() const {
  return unitName(impl_->geometry.scaleFactor);
}
void VeltranoPDF::PDFOrientation(std::int32_t orientation) {
  const PdfMember member("PDFOrientation");
  if (orientation != ORIENT_PAYSAGE && orientation != ORIENT_PORTRAIT) {
    raise(*this, "Incorrect Page Orientation", "the page is upright");
  }
  impl_->geometry.current().orient(orientation == ORIENT_PAYSAGE);
}
void VeltranoPDF::PDFFormatPage(const Value& format) {
  const PdfMember member("PDFFormatPage");
  PageFormat& page = impl_->geometry.current();
  if (format.isInteger() ? page.setNamed(format) : page.setFromArray(format)) {
    return;
  }
  raise(*this, format.isInteger() ? "Invalid Page Code Format" : "Incorrect Page Code", "the page is A4");
  impl_->geometry.current() = a4;
}
void VeltranoPDF::PDFPageHeight(double height) {
  impl_->geometry.current().height = height;
}
double VeltranoPDF::PDFGetPageHeight() const {
  return impl_->geometry.current().height;
}
void VeltranoPDF::PDFPageWidth(double width) {
  impl_->geometry.current().width = width;
}
double VeltranoPDF::PDFGetPageWidth() const {
  return impl_->geometry.current().width;
}
void VeltranoPDF::PDFSetLeftMargin(double margin) {
  const PdfMember member("PDFSetLeftMargin");
  setRounded(impl_->geometry.leftMargin, margin);
}
double VeltranoPDF::PDFGetLeftMargin() const {
  return impl_->geometry.leftMargin;
}
void VeltranoPDF::PDFSetRightMargin(double margin) {
  const PdfMember member("PDFSetRightMargin");
  setRounded(impl_->geometry.rightMargin, margin);
}
double VeltranoPDF::PDFGetRightMargin() const {
  return impl_->geometry.rightMargin;
}
void VeltranoPDF::PDFSetTopMargin(double margin) {
  const PdfMember member("PDFSetTopMargin");
  setRounded(impl_->geometry.topMargin, margin);
}
double VeltranoPDF::PDFGetTopMargin() const {
  return impl_->geometry.topMargin;
}
void VeltranoPDF::PDFSetBottomMargin(double margin) {
  const PdfMember member("PDFSetBottomMargin");
  setRounded(impl_->geometry.bottomMargin, margin);
}
double VeltranoPDF::PDFGetBottomMargin() const {
  return impl_->geometry.bottomMargin;
}
void VeltranoPDF::PDFSetCellMargin(double margin) {
  const PdfMember member("PDFSetCellMargin");
  setRounded(impl_->geometry.cellMargin, margin);
}
double VeltranoPDF::PDFGetCellMargin() const {
  return impl_->geometry.cellMargin;
}
void VeltranoPDF::PDFSetMargins(std::int16_t left, std::int16_t top, std::int16_t right,
                                std::int16_t bottom) {
  constexpr std::int16_t omitted = -1;
  impl_->geometry.leftMargin = left;
  impl_->geometry.topMargin = top;
  impl_->geometry.rightMargin = right == omitted ? left : right;
  impl_->geometry.bottomMargin = bottom == omitted ? top : bottom;
}
std::int16_t VeltranoPDF::PDFGetX() const {
  return roundToInt16(impl_->geometry.currentX).value_or(0);
}
std::int16_t VeltranoPDF::PDFGetY() const {
  return roundToInt16(impl_->geometry.currentY).value_or(0);
}

// Assembly
void VeltranoPDF::PDFBeginDoc() {
  const PdfMember member("PDFBeginDoc");
  impl_->beginDocument();
}
void VeltranoPDF::PDFNewPage() {
  const PdfMember member("PDFNewPage");
  if (isOpen(*impl_)) {
    impl_->closePage();
    impl_->beginPage();
    impl_->drawWatermark();
  }
}
void VeltranoPDF::PDFEndPage() {
  impl_->geometry.nextPage();
  impl_->drawWatermark();
}
void VeltranoPDF::PDFEndDoc() {
  const PdfMember member("PDFEndDoc");
  if (isOpen(*impl_)) {
    impl_->endDocument();
  }
}
std::int16_t VeltranoPDF::PDFPageNumber() const {
  return hostCount(static_cast<std::size_t>(impl_->composition.pageNumber()));
}
std::int16_t VeltranoPDF::PDFNbPage() const {
  return hostCount(impl_->composition.pages().size());
}
Value VeltranoPDF::PDFSetBookmark(std::string_view text, std::int32_t level, double y) {
  const PdfMember member("PDFSetBookmark");
  constexpr double omitted = -1;
  impl_->bookmarks.add({std::string(text), roundToInt16(level).value_or(0),
                        y == omitted ? impl_->geometry.currentY : y, impl_->composition.pageNumber()});
  return {};
}

// Fonts
void VeltranoPDF::PDFLoadAfm(const std::filesystem::path& folder) {
  const PdfMember member("PDFLoadAfm");
  impl_->loadFonts(folder);
}
void VeltranoPDF::PDFSetFont(std::int32_t font, std::int16_t size, std::int32_t style) {
  const PdfMember member("PDFSetFont");
  const auto name = baseFontName(font, style);
  if (!name) {
    raise(*this, "Invalid Fort ", "the font is TimesRoman");
  }
  impl_->font.underlined = impl_->font.underlined || (name && asksForUnderline(style));
  impl_->setFont(name.value_or("TimesRoman"), size);
}
double VeltranoPDF::PDFGetStringWidth(std::string_view text, std::string_view fontName, std::int16_t size) {
  const PdfMember member("PDFGetStringWidth");
  return impl_->stringWidth(text, fontName, size);
}

// Graphics state
void VeltranoPDF::PDFSetTextColor(const Value& color) {
  const PdfMember member("PDFSetTextColor");
  if (isMisspelledColor(color)) {
    raise(*this, "Invalid Text Color", "the colour is black");
  }
  setColorOperator(impl_->graphics.textColorOp, color, "rg");
}
void VeltranoPDF::PDFSetLineColor(const Value& color) {
  const PdfMember member("PDFSetLineColor");
  if (isMisspelledColor(color)) {
    raise(*this, "Invalid Line Color", "the colour is black");
  }
  setColorOperator(impl_->graphics.lineColorOp, color, "RG");
}
void VeltranoPDF::PDFSetDrawColor(const Value& color) {
  const PdfMember member("PDFSetDrawColor");
  // Hosts compare the message as it is spelled.
  if (isMisspelledColor(color)) {
    raise(*this, "Invalide Draw Color", "the colour is black");
  }
  setColorOperator(impl_->graphics.fillColorOp, color, "rg");
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
  impl_->graphics.lineWidth = width;
}
void VeltranoPDF::PDFSetLineStyle(std::int32_t style) {
  const PdfMember member("PDFSetLineStyle");
  const auto dash = dashOperator(style, impl_->geometry.scaleFactor);
  if (!dash) {
    raise(*this, "Incorrect Line Style", "lines are solid");
  }
  impl_->graphics.lineDashOp = dash.value_or("");
}
void VeltranoPDF::PDFSetDrawMode(std::int32_t mode) {
  const PdfMember member("PDFSetDrawMode");
  const bool known = mode >= DRAW_NORMAL && mode <= DRAW_DRAWBORDER;
  if (!known) {
    raise(*this, "Incorrect Draw line", "only outlines are drawn");
  }
  impl_->graphics.drawMode = known ? static_cast<DrawMode>(mode) : DrawMode::outline;
}
void VeltranoPDF::PDFSetAlignement(std::int32_t alignment) {
  const PdfMember member("PDFSetAlignement");
  const bool known = alignment >= ALIGN_CENTER && alignment <= ALIGN_FJUSTIFY;
  if (!known) {
    raise(*this, "Invalid Alignment Code", "text is aligned at the left");
  }
  impl_->graphics.alignment = known ? static_cast<Alignment>(alignment) : Alignment::left;
}
std::string VeltranoPDF::PDFGetAlignement() const {
  const Alignment alignment = impl_->graphics.alignment;
  return alignment == Alignment::center ? "Center" : alignment == Alignment::right ? "Right" : "Left";
}
void VeltranoPDF::PDFSetBorder(std::int32_t border) {
  impl_->graphics.border = Border::fromDigits(border);
}
void VeltranoPDF::PDFSetFill(bool fill) {
  impl_->graphics.fillCells = fill;
}

}  // namespace veltrano
