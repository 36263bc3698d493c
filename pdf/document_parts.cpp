#include "pdf/document_parts.h"

#include "base/files/replace.h"
#include "base/os/host.h"
#include "base/trace.h"
#include "pdf/graphics/color.h"
#include "pdf/text/cell.h"
#include "pdf/text/text.h"
#include "pdf/text/watermark.h"
#include "veltrano/pdf.h"

namespace veltrano {

void DocumentParts::reset() {
  if (metricsFolder.path().empty()) {
    metricsFolder.setPath(veltrano::metricsFolder());
  }
  loadFonts(std::filesystem::path(metricsFolder.path()));

  composition.reset();
  content.clear();
  images.clear();
  links.clear();
  font.size = 0;
  font.underlined = false;
  geometry = PageGeometry();

  const GraphicsState fresh;
  graphics.fillCells = fresh.fillCells;
  graphics.lineWidth = fresh.lineWidth;
  graphics.lineColorOp = fresh.lineColorOp;
  graphics.fillColorOp = fresh.fillColorOp;
  graphics.textColorOp = fresh.textColorOp;

  // The title is kept, as is the file name.
  DocumentInformation emptied;
  emptied.title = information.title;
  information = emptied;
}

void DocumentParts::loadFonts(const std::filesystem::path& folder) {
  if (fontTable.load(folder) > 0) {
    metricsFolder.setPath(folder);
  } else {
    trace("The folder ", folder, " has no font metrics (*.afm).");
  }
  font.number = fontTable.numberOf(font.name);
  font.metrics = metricsFolder.read(font.name);
}

void DocumentParts::setFont(const std::string& baseFont, std::int16_t size) {
  font.name = baseFont;
  font.size = size;
  font.number = fontTable.numberOf(baseFont);
  if (font.number == 0) {
    trace("There are no metrics of the font \"", baseFont, "\" in ", metricsFolder.path(),
          "; its text will not show.");
  }
  font.metrics = metricsFolder.look(baseFont);
}

double DocumentParts::stringWidth(std::string_view text, std::string_view fontName, std::int16_t size) {
  const bool current = fontName.empty() || fontName == font.name;
  const auto metrics = metricsFolder.read(current ? font.name : fontName);
  if (current) {
    font.metrics = metrics;
  }
  return metrics->width(text, size);
}

void DocumentParts::beginDocument() {
  // The output so far stays: only PDFFileName and PDFInit empty it. A document given up takes its unfinished
  // page with it; what was drawn outside a document becomes part of the first page.
  if (composition.isOpen()) {
    content.clear();
  }
  links.clear();
  images.clear();
  composition.begin(information);
  beginPage();
}

void DocumentParts::beginPage() {
  font.metrics = metricsFolder.look(font.name);
  composition.beginPage(geometry.currentPage);
}

void DocumentParts::closePage() {
  composition.closePage(content.view(), geometry.pages);
  content.clear();
}

void DocumentParts::endDocument() {
  drawWatermark();
  closePage();
  composition.finish({fontTable.names(), images, links, bookmarks, viewer, geometry.scaleFactor});
  replaceFile(fileName, composition.output());
}

void DocumentParts::drawText(std::string_view text, double x, double y) {
  const Point start = geometry.orCurrent(x, y);
  if (font.size == 0) {
    font.size = Font::usualSize;
  }
  const double width = veltrano::drawText(content, text, geometry.points(start), font, graphics.textColorOp,
                                          graphics.textRotation);
  font.underlined = false;
  // The width is in points and not divided by the points of a unit, and so is the font size: after a text the
  // current position is in mixed units, kept because hosts rely on it.
  geometry.moveTo(start.x + width, start.y + font.size);
}

void DocumentParts::drawCell(std::string_view text, const Box& box, bool linked) {
  if (font.size == 0) {
    font.size = Font::usualSize;
  }
  // A cell that leads somewhere shows it, as a linked text does.
  font.underlined = font.underlined || linked;
  const CellStyle style{graphics.alignment,  graphics.border,
                        graphics.fillCells,  graphics.lineWidth * geometry.scaleFactor,
                        geometry.cellMargin, graphics.textColorOp,
                        graphics.fillColorOp};
  veltrano::drawCell(content, text, geometry.area(box), style, font);
  graphics.border = {};
  font.underlined = false;
}

void DocumentParts::drawWatermark() {
  if (!watermarkText) {
    return;
  }
  setFont(*baseFontName(FONT_TIMES, FONT_NORMAL), watermark::fontSize);
  setColorOperator(graphics.textColorOp, watermark::color(), "rg");
  const Point place = watermark::place(font.width(*watermarkText), geometry.current());
  graphics.textRotation = watermark::rotation;
  drawText(*watermarkText, place.x / geometry.scaleFactor, place.y / geometry.scaleFactor);
  graphics.textRotation = 0;
}

void DocumentParts::addLink(const Area& area, std::string_view target) {
  veltrano::addLink(links, {static_cast<int>(composition.pages().size()), area, std::string(target)});
}

void DocumentParts::linkText(double x, double y, std::string_view text, std::string_view target) {
  ContentWriter(content).line("%DEBUT_LINK/%");
  const Point start = geometry.orCurrent(x, y);
  font.underlined = true;
  drawText(text, start.x, start.y);
  addLink(linkedText(geometry.points(start), text, font, graphics.textRotation), target);
  ContentWriter(content).line("%FIN_LINK/%");
}

void DocumentParts::linkShape(const Box& shape, std::string_view target, double x, double y) {
  if (target.empty()) {
    return;
  }
  ContentWriter(content).line("%DEBUT_LINK/%");
  font.underlined = true;
  drawText("", x, y);
  addLink(geometry.area(shape), target);
  ContentWriter(content).line("%FIN_LINK/%");
}

}  // namespace veltrano
