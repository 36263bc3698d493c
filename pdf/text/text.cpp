#include <cmath>

#include "pdf/graphics/content_line.h"
#include "pdf/text/text_operators.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

void VeltranoPDF::moveTo(double x, double y) {
  if (std::isfinite(x)) geometry_.currentX = x;
  if (std::isfinite(y)) geometry_.currentY = y;
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
    x = geometry_.currentX;
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
  const double width = fonts_.metrics->width(text, fonts_.fontSize);
  if (fonts_.underlineFlag) {
    appendUnderline(content, *fonts_.metrics, fonts_.fontSize, left, baseline, width, direction);
  }
  appendColorEnd();
  appendLine(content, "%FIN_TEXT/%");

  fonts_.underlineFlag = false;
  // The width is in points and not divided by the points of a unit, and so is the font size: after a text the
  // current position is in mixed units, kept because hosts rely on it.
  moveTo(x + width, y + fonts_.fontSize);
}

double VeltranoPDF::PDFTextHeight() const {
  return fonts_.fontSize * geometry_.scaleFactor;
}

void VeltranoPDF::PDFSetRotation(double angle) {
  fonts_.rotation = -angle;
}

}  // namespace veltrano
