#include <cmath>

#include "base/os/files.h"
#include "pdf/graphics/content_line.h"
#include "pdf/text/text_operators.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

double VeltranoPDF::settledX() {
  PendingAdvance& pending = fonts_.pendingAdvance;
  if (!pending.waiting) {
    return geometry_.currentX;
  }
  pending.waiting = false;
  // A file that changed only after the text was written has no say.
  const bool changedLater = fonts_.metrics.changedAfter(pending.fontName, pending.writtenAt);
  const FontMetrics* known = changedLater ? fonts_.metrics.knownMetrics(pending.fontName) : nullptr;
  const FontMetrics& metrics = known != nullptr ? *known : fonts_.metrics.metrics(pending.fontName);
  geometry_.currentX += metrics.width(pending.text, pending.size);
  return geometry_.currentX;
}

void VeltranoPDF::moveTo(double x, double y) {
  if (std::isfinite(x)) {
    fonts_.pendingAdvance.waiting = false;
    geometry_.currentX = x;
  }
  if (std::isfinite(y)) {
    geometry_.currentY = y;
  }
}

/// The width is in points and not divided by the points of a unit, and so is the font size: after a text the
/// current position is in mixed units, as hosts rely on.
void VeltranoPDF::advanceBehind(std::string_view text, double x, double y) {
  moveTo(x, y + fonts_.fontSize);
  if (text.empty() || !std::isfinite(x)) {  // no text: as it is for every link over a shape
    return;
  }
  PendingAdvance& pending = fonts_.pendingAdvance;
  pending.waiting = fonts_.metrics.knownMetrics(fonts_.currentFontName) != nullptr;
  if (!pending.waiting) {
    geometry_.currentX += fonts_.currentMetrics().width(text, fonts_.fontSize);
    return;
  }
  pending.text = text;
  pending.fontName = fonts_.currentFontName;
  pending.size = fonts_.fontSize;
  pending.writtenAt = fileClockNow();
}

void VeltranoPDF::appendColorStart() {
  if (!graphics_.textColorOp.empty()) {
    ContentLine(assembly_.pageContent).text("q ").text(graphics_.textColorOp).text(" ").end();
  }
}

void VeltranoPDF::appendColorEnd() {
  if (!graphics_.textColorOp.empty()) {
    appendLine(assembly_.pageContent, "Q");
  }
}

void VeltranoPDF::appendTextOperators(std::string_view text) {
  ContentText& content = assembly_.pageContent;
  content.append("/F");
  content.appendInteger(fonts_.fontNumber);
  content.append(" ");
  content.appendInteger(fonts_.fontSize);
  content.append(" Tf\r\n(");
  appendEscapedText(content, text);
  content.append(") Tj\r\nET\r\n");
}

void VeltranoPDF::PDFTextOut(std::string_view text, double x, double y) {
  if (x == 0) {
    x = settledX();
  }
  if (y == 0) {
    y = geometry_.currentY;
  }
  if (fonts_.fontSize == 0) {
    fonts_.fontSize = FontState::usualSize;
  }
  const double left = geometry_.xPoints(x);
  const double baseline = geometry_.yPoints(y);
  appendColorStart();

  // A positive angle given to PDFSetRotation, stored negated, turns the text counter-clockwise about its
  // start.
  const bool rotated = fonts_.rotation != 0;
  const TextDirection direction = rotated ? TextDirection::fromDegrees(-fonts_.rotation) : TextDirection();

  ContentText& content = assembly_.pageContent;
  content.append("%DEBUT_TEXT/%\r\nBT\r\n");
  ContentLine line(content);
  if (rotated) {
    line.direction(direction.cosine, direction.sine).point(left, baseline).text(" Tm").end();
  } else {
    line.point(left, baseline).text(" Td").end();
  }
  appendTextOperators(text);
  if (fonts_.underlineFlag && !text.empty()) {
    const FontMetrics& metrics = fonts_.currentMetrics();
    appendUnderline(content, metrics, fonts_.fontSize, left, baseline, metrics.width(text, fonts_.fontSize),
                    direction);
  }
  appendColorEnd();
  appendLine(content, "%FIN_TEXT/%");

  fonts_.underlineFlag = false;
  advanceBehind(text, x, y);
}

double VeltranoPDF::PDFTextHeight() const {
  return fonts_.fontSize * geometry_.scaleFactor;
}

void VeltranoPDF::PDFSetRotation(double angle) {
  fonts_.rotation = -angle;
}

}  // namespace veltrano
