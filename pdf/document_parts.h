#ifndef VELTRANO_PDF_DOCUMENT_PARTS_H
#define VELTRANO_PDF_DOCUMENT_PARTS_H

// The parts of a document, and what takes several of them.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pdf/assembly/composition.h"
#include "pdf/assembly/outline.h"
#include "pdf/document/content_stream.h"
#include "pdf/document/page_geometry.h"
#include "pdf/document/settings.h"
#include "pdf/fonts/font.h"
#include "pdf/fonts/metrics_folder.h"
#include "pdf/fonts/table.h"
#include "pdf/graphics/state.h"
#include "pdf/images/image.h"
#include "pdf/text/links.h"

namespace veltrano {

struct DocumentParts {
  DocumentInformation information;
  ViewerSettings viewer;
  std::optional<std::string> watermarkText;
  std::filesystem::path fileName;
  PageGeometry geometry;
  GraphicsState graphics;
  FontTable fontTable;
  MetricsFolder metricsFolder;
  Font font;
  ContentStream content;      ///< of the page being drawn; drawing outside a document waits here
  std::vector<Image> images;  ///< placed in the current document; number n at n - 1
  std::vector<Link> links;    ///< of the current document
  Bookmarks bookmarks;        ///< of all documents
  Composition composition;

  /// What PDFInit resets.
  void reset();

  void loadFonts(const std::filesystem::path& folder);
  void setFont(const std::string& baseFont, std::int16_t size);
  /// In points at `size` points, by the font's file as it is now. An empty name is the current font.
  double stringWidth(std::string_view text, std::string_view fontName, std::int16_t size);

  void beginDocument();
  void beginPage();
  void closePage();
  /// Finishes the document and replaces the file.
  void endDocument();

  /// A coordinate of 0 is that of the current position. Uses up a pending underline.
  void drawText(std::string_view text, double x, double y);
  void drawCell(std::string_view text, const Box& box, bool linked);
  void drawWatermark();

  /// Draws an underlined text that leads to `target`.
  void linkText(double x, double y, std::string_view text, std::string_view target);
  /// Links a shape that is drawn already. (x, y) is where the link writes its empty text. No-op without a
  /// target.
  void linkShape(const Box& shape, std::string_view target, double x, double y);

 private:
  void addLink(const Area& area, std::string_view target);
};

}  // namespace veltrano

#endif
