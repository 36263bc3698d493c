#include "pdf/assembly/page_tree.h"

#include "pdf/document/content_stream.h"

namespace veltrano {

namespace {

/// The rectangle covers the link; one whose numbers cannot be written is left out.
void writeAnnotation(ObjectWriter& writer, const Link& link) {
  ContentStream line;
  ContentWriter out(line);
  const Area& area = link.area;
  out.text("<</Type /Annot /Subtype /Link /Rect [").point(area.left, area.top - area.height).text(" ");
  out.point(area.left + area.width, area.top).text("] /Border [0 0 0] /A <</S /URI /URI (");
  out.text(escapeLinkTarget(link.target)).text(")>>>>").end();
  writer.lines(line.view());
}

}  // namespace

PageTree writePageTree(ObjectWriter& writer, std::size_t pageCount, std::size_t imageCount) {
  const auto count = static_cast<int>(pageCount);
  const PageTree tree{writer.begin(), static_cast<int>(imageCount)};
  writer.line("<< /Type /Pages");
  writer.line("/Kids [");
  for (int page = 1; page <= count; ++page) {
    writer.line({integerText(tree.pageObject(page)), " 0 R"});
  }
  writer.line("]");
  writer.line({"/Count ", integerText(count)});
  writer.line(">>");
  writer.end();
  return tree;
}

void writePages(ObjectWriter& writer, const PageTree& tree, int resourcesObject,
                const std::vector<PageRecord>& pages, const std::vector<Link>& links) {
  auto link = links.cbegin();
  int number = 0;
  for (const PageRecord& page : pages) {
    ++number;
    writer.begin();
    writer.line("<< /Type /Page");
    writer.line({"/Parent ", integerText(tree.object), " 0 R"});
    writer.line({"/MediaBox [ 0 0 ", formatPdfNumber(page.format.width, 2), " ",
                 formatPdfNumber(page.format.height, 2), "]"});
    writer.line({"/Resources ", integerText(resourcesObject), " 0 R"});
    const auto onThisPage = [&] { return link != links.cend() && link->page == number; };
    if (onThisPage()) {
      writer.line("/Annots [");
      for (; onThisPage(); ++link) {
        writeAnnotation(writer, *link);
      }
      writer.line("]");
    }
    writer.line({"/Contents ", integerText(page.contentObject), " 0 R"});
    writer.line(">>");
    writer.end();
  }
}

}  // namespace veltrano
