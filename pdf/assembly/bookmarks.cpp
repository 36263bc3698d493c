#include "pdf/assembly/bookmarks.h"

#include <algorithm>
#include <cstddef>

#include "base/numbers/numbers.h"
#include "pdf/graphics/content_line.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

std::vector<OutlineLinks> linkOutline(const std::vector<Bookmark>& bookmarks) {
  constexpr int none = -1;
  std::vector<OutlineLinks> items(bookmarks.size());
  std::vector<int> ancestors;  // the newest item and what it hangs below, levels strictly growing
  int lastTop = none;
  for (int i = 0; i < static_cast<int>(items.size()); ++i) {
    const auto at = [&](int index) -> OutlineLinks& { return items[static_cast<std::size_t>(index)]; };
    const auto level = [&](int index) { return bookmarks[static_cast<std::size_t>(index)].level; };
    while (!ancestors.empty() && level(ancestors.back()) >= level(i)) ancestors.pop_back();
    const int parent = ancestors.empty() ? none : ancestors.back();
    int& lastSibling = parent == none ? lastTop : at(parent).last;
    at(i).parent = parent;
    at(i).prev = lastSibling;
    if (lastSibling != none) at(lastSibling).next = i;
    if (parent != none && lastSibling == none) at(parent).first = i;
    lastSibling = i;
    ancestors.push_back(i);
  }
  return items;
}

Value VeltranoPDF::PDFSetBookmark(std::string_view text, std::int32_t level, double y) {
  constexpr double omitted = -1;
  Bookmark bookmark;
  bookmark.text = text;
  bookmark.level = roundToInt16(level).value_or(0);
  bookmark.y = y == omitted ? geometry_.currentY : y;
  bookmark.page = assembly_.pageCount;
  bookmarks_.bookmarks.push_back(std::move(bookmark));
  ++bookmarks_.bookmarkCount;
  return {};
}

void VeltranoPDF::writeOutline() {
  // A single bookmark makes no outline, by design.
  if (bookmarks_.bookmarks.size() < 2) return;
  ObjectWriter& writer = assembly_.writer;
  const std::vector<OutlineLinks> items = linkOutline(bookmarks_.bookmarks);
  const int firstObject = writer.objectCount() + 1;
  const int rootObject = firstObject + static_cast<int>(items.size());
  const int lastPage = static_cast<int>(assembly_.pages.size());

  const auto writeLink = [&](std::string_view key, int item) {
    if (item >= 0) writer.line({key, decimal(firstObject + item), " 0 R"});
  };
  ContentText destination;
  int firstTop = -1;
  int lastTop = -1;
  for (int i = 0; i < static_cast<int>(items.size()); ++i) {
    const Bookmark& bookmark = bookmarks_.bookmarks[static_cast<std::size_t>(i)];
    const OutlineLinks& links = items[static_cast<std::size_t>(i)];
    // Bookmarks outlive the document they were set in: no destination may name a page that this one lacks.
    const int page = std::clamp(bookmark.page, 1, lastPage);
    const double height = assembly_.pages[static_cast<std::size_t>(page) - 1].format.height;

    writer.begin();
    writer.line({"<</Title (", bookmark.text, ")"});
    writer.line({"/Parent ", decimal(links.parent < 0 ? rootObject : firstObject + links.parent), " 0 R"});
    writeLink("/Prev ", links.prev);
    writeLink("/Next ", links.next);
    writeLink("/First ", links.first);
    writeLink("/Last ", links.last);
    destination.clear();
    ContentLine(destination)
        .text("/Dest [")
        .text(decimal(pageObject(page)))
        .text(" 0 R /XYZ 0 ")
        .number(height - bookmark.y * geometry_.scaleFactor)
        .text(" null]")
        .end();
    writer.lines(destination.view());
    writer.line("/Count 0>>");  // every item is closed, whatever hangs below it
    writer.end();

    if (links.parent < 0) {
      if (firstTop < 0) firstTop = i;
      lastTop = i;
    }
  }
  bookmarks_.bookmarkCount = writer.begin();
  writer.line({"<</Type /Outlines /First ", decimal(firstObject + firstTop), " 0 R"});
  writer.line({"/Last ", decimal(firstObject + lastTop), " 0 R>>"});
  writer.end();
}

}  // namespace veltrano
