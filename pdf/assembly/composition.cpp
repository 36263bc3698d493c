#include "pdf/assembly/composition.h"

#include <cmath>
#include <cstdint>

#include "pdf/assembly/catalog.h"
#include "pdf/assembly/information.h"
#include "pdf/assembly/resources.h"

namespace veltrano {

void Composition::reset() {
  const int pageNumber = pageNumber_;
  *this = Composition();
  pageNumber_ = pageNumber;
}

void Composition::begin(const DocumentInformation& information) {
  open_ = true;
  pages_.clear();
  pageNumber_ = 0;
  writer_.writeHeader();
  writeInformation(writer_, information);
}

void Composition::beginPage(std::size_t geometryPage) {
  ++pageNumber_;
  pages_.push_back({writer_.nextNumber(), geometryPage, {}});
}

void Composition::closePage(std::string_view content, const std::vector<PageFormat>& formats) {
  PageRecord& page = pages_.back();
  page.format = formats[page.geometryPage - 1];
  if (!std::isfinite(page.format.width)) {
    page.format.width = a4.width;
  }
  if (!std::isfinite(page.format.height)) {
    page.format.height = a4.height;
  }

  writer_.begin(page.contentObject);
  writer_.line({"<< /Length ", integerText(page.contentObject + 1), " 0 R"});
  writer_.line(" >>");
  const std::uint64_t streamHeaderLength = writer_.length();
  writer_.line("stream");
  writer_.lines(content);
  writer_.line("endstream");
  const std::uint64_t objectLength = writer_.end();

  // The length is counted this way by design, 12 characters beyond the content; viewers stop at "endstream".
  constexpr std::uint64_t notCounted = 6 + 6 + 9 + 6;
  writer_.begin();
  writer_.line(integerText(static_cast<std::int64_t>(objectLength - streamHeaderLength - notCounted)));
  writer_.end();
}

void Composition::finish(const DocumentContents& contents) {
  open_ = false;  // from here on the document is finished, whatever fails
  const std::vector<int> fontObjects = writeFonts(writer_, contents.fonts);
  const PageTree tree = writePageTree(writer_, pages_.size(), contents.images.size());
  const int resourcesObject = writeResources(writer_, fontObjects, contents.images.size());
  writeImages(writer_, contents.images);
  writePages(writer_, tree, resourcesObject, pages_, contents.links);
  writeOutline(writer_, contents.bookmarks, tree, pages_, contents.scaleFactor);
  writer_.writeTrailer(writeCatalog(writer_, contents.viewer, tree.object, contents.bookmarks.count));
}

}  // namespace veltrano
