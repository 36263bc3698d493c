#include "pdf/assembly/document_assembly.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/os/files.h"
#include "base/trace.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

namespace {

/// What a host sees of a count that may be wider than its property.
template <typename Count>
std::int16_t hostCount(Count count) {
  constexpr auto most = std::numeric_limits<std::int16_t>::max();
  return static_cast<std::int16_t>(std::min<Count>(count, most));
}

}  // namespace

void VeltranoPDF::PDFBeginDoc() {
  // The output so far stays: only PDFFileName and PDFInit empty it. A document given up takes its unfinished
  // page with it; what was drawn outside a document becomes part of the first page.
  if (assembly_.open) assembly_.pageContent.clear();
  assembly_.writer.restart();
  assembly_.pages.clear();
  assembly_.pageCount = 1;
  links_.links.clear();
  images_.imageCount = 0;
  assembly_.open = true;
  assembly_.writer.writeHeader();
  writeInformation();
  beginPage();
}

void VeltranoPDF::PDFNewPage() {
  if (!assembly_.open) {
    traceSkipped("PDFNewPage", "no document is open");
    return;
  }
  closePage();
  ++assembly_.pageCount;
  beginPage();
  drawWatermark();
}

void VeltranoPDF::PDFEndPage() {
  const PageFormat before = geometry_.current();
  ++geometry_.currentPage;
  if (geometry_.pages.size() < geometry_.currentPage) geometry_.pages.push_back(before);
  drawWatermark();
}

void VeltranoPDF::PDFEndDoc() {
  if (!assembly_.open) {
    traceSkipped("PDFEndDoc", "no document is open");
    return;
  }
  drawWatermark();
  closePage();
  assembly_.open = false;  // from here on the document is finished, whatever fails
  const std::vector<int> fontObjects = writeFonts();
  writePagesTree();
  writeResources(fontObjects);
  writeImages();
  writePages();
  writeOutline();
  writeCatalog();
  if (!replaceFile(settings_.fileName, assembly_.writer.text().pieces())) {
    traceSkipped("PDFEndDoc", "the file cannot be written");
  }
}

std::int16_t VeltranoPDF::PDFPageNumber() const {
  return hostCount(assembly_.pageCount);
}
std::int16_t VeltranoPDF::PDFNbPage() const {
  return hostCount(assembly_.pages.size());
}

void VeltranoPDF::beginPage() {
  fonts_.lookAtMetrics();
  assembly_.pages.push_back({assembly_.writer.nextNumber(), geometry_.currentPage, {}});
}

void VeltranoPDF::closePage() {
  ObjectWriter& writer = assembly_.writer;
  PageRecord& page = assembly_.pages.back();
  // The size of now, so that one set after the page was begun reaches it; of the entry that was current then,
  // since PDFEndPage has moved on to the next page by now.
  page.format = geometry_.pages[page.geometryPage - 1];
  if (!std::isfinite(page.format.width)) page.format.width = a4Width;
  if (!std::isfinite(page.format.height)) page.format.height = a4Height;

  writer.begin(page.contentObject);
  writer.line({"<< /Length ", decimal(page.contentObject + 1), " 0 R"});
  writer.line(" >>");
  const std::uint64_t streamHeaderLength = writer.length();
  writer.line("stream");
  writer.lines(assembly_.pageContent.view());
  assembly_.pageContent.clear();
  writer.line("endstream");
  const std::uint64_t objectLength = writer.end();

  // The length is counted this way by design, 12 characters beyond the content; viewers stop at "endstream".
  constexpr std::uint64_t notCounted = 6 + 6 + 9 + 6;
  writer.begin();
  writer.line(decimal(static_cast<std::int64_t>(objectLength - streamHeaderLength - notCounted)));
  writer.end();
}

void VeltranoPDF::drawWatermark() {
  if (!settings_.watermarkText) return;
  const std::string& text = *settings_.watermarkText;
  constexpr std::int16_t size = 50;
  PDFSetFont(FONT_TIMES, size, FONT_NORMAL);
  PDFSetTextColor(Value::List{255, 192, 203});
  const double width = PDFGetStringWidth(text, {}, size);
  // The angle is 45 degrees for the text and 45 radians for its place: the place is what hosts know.
  const double y = (width * std::sin(45.0) + geometry_.current().height) / 2.15;
  const double x = (geometry_.current().width - width * std::cos(45.0)) / 2.75;
  PDFSetRotation(45);
  PDFTextOut(text, x / geometry_.scaleFactor, y / geometry_.scaleFactor);
  PDFSetRotation(0);
}

}  // namespace veltrano
