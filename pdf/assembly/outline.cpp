#include "pdf/assembly/outline.h"

#include <algorithm>
#include <cstddef>

#include "pdf/document/content_stream.h"

namespace veltrano {

std::vector<OutlineLinks> linkOutline(const std::vector<Bookmark>& bookmarks) {
  constexpr int none = -1;
  std::vector<OutlineLinks> items(bookmarks.size());
  std::vector<int> ancestors;  // the newest item and what it hangs below, levels strictly growing
  int lastTop = none;
  for (int i = 0; i < static_cast<int>(items.size()); ++i) {
    const auto at = [&](int index) -> OutlineLinks& { return items[static_cast<std::size_t>(index)]; };
    const auto level = [&](int index) { return bookmarks[static_cast<std::size_t>(index)].level; };
    while (!ancestors.empty() && level(ancestors.back()) >= level(i)) {
      ancestors.pop_back();
    }
    const int parent = ancestors.empty() ? none : ancestors.back();
    int& lastSibling = parent == none ? lastTop : at(parent).last;
    at(i).parent = parent;
    at(i).prev = lastSibling;
    if (lastSibling != none) {
      at(lastSibling).next = i;
    }
    if (parent != none && lastSibling == none) {
      at(parent).first = i;
    }
    lastSibling = i;
    ancestors.push_back(i);
  }
  return items;
}

void writeOutline(ObjectWriter& writer, Bookmarks& bookmarks, const PageTree& tree,
                  const std::vector<PageRecord>& pages, double scaleFactor) {
  // A single bookmark makes no outline, by design.
  if (bookmarks.list.size() < 2) {
    return;
  }
  const std::vector<OutlineLinks> items = linkOutline(bookmarks.list);
  const int firstObject = writer.objectCount() + 1;
  const int rootObject = firstObject + static_cast<int>(items.size());

  const auto writeLink = [&](std::string_view key, int item) {
    if (item >= 0) {
      writer.line({key, integerText(firstObject + item), " 0 R"});
    }
  };
  ContentStream destination;
  int firstTop = -1;
  int lastTop = -1;
  for (int i = 0; i < static_cast<int>(items.size()); ++i) {
    const Bookmark& bookmark = bookmarks.list[static_cast<std::size_t>(i)];
    const OutlineLinks& links = items[static_cast<std::size_t>(i)];
    // Bookmarks outlive the document they were set in: no destination may name a page that this one lacks.
    const int page = std::clamp(bookmark.page, 1, static_cast<int>(pages.size()));
    const double height = pages[static_cast<std::size_t>(page) - 1].format.height;

    writer.begin();
    writer.line({"<</Title (", bookmark.text, ")"});
    writer.line(
        {"/Parent ", integerText(links.parent < 0 ? rootObject : firstObject + links.parent), " 0 R"});
    writeLink("/Prev ", links.prev);
    writeLink("/Next ", links.next);
    writeLink("/First ", links.first);
    writeLink("/Last ", links.last);
    destination.clear();
    ContentWriter out(destination);
    out.text("/Dest [").integer(tree.pageObject(page)).text(" 0 R /XYZ 0 ");
    out.number(height - bookmark.y * scaleFactor).text(" null]").end();
    writer.lines(destination.view());
    writer.line("/Count 0>>");  // every item is closed, whatever hangs below it
    writer.end();

    if (links.parent < 0) {
      if (firstTop < 0) {
        firstTop = i;
      }
      lastTop = i;
    }
  }
  bookmarks.count = writer.begin();
  writer.line({"<</Type /Outlines /First ", integerText(firstObject + firstTop), " 0 R"});
  writer.line({"/Last ", integerText(firstObject + lastTop), " 0 R>>"});
  writer.end();
}

}  // namespace veltrano
