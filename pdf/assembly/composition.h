#ifndef VELTRANO_PDF_ASSEMBLY_COMPOSITION_H
#define VELTRANO_PDF_ASSEMBLY_COMPOSITION_H

// The file while it is put together.
//
//   idle --begin--> open (one content stream always open) --finish--> idle

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "pdf/assembly/object_writer.h"
#include "pdf/assembly/outline.h"
#include "pdf/assembly/page_tree.h"
#include "pdf/document/settings.h"
#include "pdf/images/image.h"
#include "pdf/text/links.h"

namespace veltrano {

/// What a document consists of besides its pages' content streams.
struct DocumentContents {
  const std::vector<std::string>& fonts;
  const std::vector<Image>& images;
  const std::vector<Link>& links;
  Bookmarks& bookmarks;
  const ViewerSettings& viewer;
  double scaleFactor;  ///< of the bookmarks
};

class Composition {
 public:
  [[nodiscard]] bool isOpen() const { return open_; }
  /// Pages begun; kept by reset(), as hosts see it.
  [[nodiscard]] int pageNumber() const { return pageNumber_; }
  [[nodiscard]] const std::vector<PageRecord>& pages() const { return pages_; }

  /// Gives up the document and empties the output.
  void reset();
  void clearOutput() { writer_.clearText(); }

  /// Starts a file after the output so far, an open document being given up.
  void begin(const DocumentInformation& information);
  /// Begins a page for which `geometryPage` is the entry of the per-page list.
  void beginPage(std::size_t geometryPage);
  /// Writes the page's content stream, with the page sizes as they are now: a size set after the page was
  /// begun reaches it.
  void closePage(std::string_view content, const std::vector<PageFormat>& formats);
  /// Writes all that follows the pages' content streams.
  void finish(const DocumentContents& contents);

  /// Valid until the next change.
  [[nodiscard]] std::vector<std::string_view> output() const { return writer_.text().pieces(); }

 private:
  ObjectWriter writer_;
  bool open_ = false;
  std::vector<PageRecord> pages_;
  int pageNumber_ = 0;
};

}  // namespace veltrano

#endif
