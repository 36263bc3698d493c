#ifndef VELTRANO_PDF_ASSEMBLY_DOCUMENT_ASSEMBLY_H
#define VELTRANO_PDF_ASSEMBLY_DOCUMENT_ASSEMBLY_H

// The document while it is being put together.
//
//   idle --PDFBeginDoc--> open (one content stream always open) --PDFEndDoc--> idle
//
// PDFInit leads to idle from everywhere; PDFBeginDoc on an open document starts the numbering anew.

#include <cstddef>
#include <vector>

#include "pdf/assembly/object_writer.h"
#include "pdf/document/page_geometry.h"
#include "pdf/graphics/content_text.h"

namespace veltrano {

/// A page that was begun.
struct PageRecord {
  int contentObject = 0;
  std::size_t geometryPage = 1;  ///< the entry of the per-page lists that was current when it was begun
  PageFormat format;             ///< its size, fixed when its stream is closed
};

struct Assembly {
  ObjectWriter writer;
  bool open = false;
  ContentText pageContent;  ///< lines of the page being drawn; drawing outside a document waits here
  std::vector<PageRecord> pages;
  /// Pages begun: PDFPageNumber. Kept when PDFInit empties the lists, as hosts see it.
  int pageCount = 0;
  int pagesObject = 0;
  int resourcesObject = 0;
};

}  // namespace veltrano

#endif
