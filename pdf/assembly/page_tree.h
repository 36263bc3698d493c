#ifndef VELTRANO_PDF_ASSEMBLY_PAGE_TREE_H
#define VELTRANO_PDF_ASSEMBLY_PAGE_TREE_H

// The page tree, the page objects and their link annotations.

#include <cstddef>
#include <vector>

#include "pdf/assembly/object_writer.h"
#include "pdf/document/page_geometry.h"
#include "pdf/text/links.h"

namespace veltrano {

/// A page that was begun.
struct PageRecord {
  int contentObject = 0;
  std::size_t geometryPage = 1;  ///< the entry of the per-page list that was current when it was begun
  PageFormat format;             ///< its size, fixed when its stream is closed
};

/// Object numbers that pages and what leads to them are made of. The resources follow the page tree, then the
/// images, then the pages.
struct PageTree {
  int object = 0;
  int imageCount = 0;

  [[nodiscard]] int pageObject(int page) const { return object + 1 + imageCount + page; }
};

PageTree writePageTree(ObjectWriter& writer, std::size_t pageCount, std::size_t imageCount);
/// `links` are in the order of the pages they were made on.
void writePages(ObjectWriter& writer, const PageTree& tree, int resourcesObject,
                const std::vector<PageRecord>& pages, const std::vector<Link>& links);

}  // namespace veltrano

#endif
