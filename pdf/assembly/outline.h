#ifndef VELTRANO_PDF_ASSEMBLY_OUTLINE_H
#define VELTRANO_PDF_ASSEMBLY_OUTLINE_H

// Bookmarks and the outline made of them.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "pdf/assembly/object_writer.h"
#include "pdf/assembly/page_tree.h"

namespace veltrano {

struct Bookmark {
  std::string text;
  std::int16_t level = 0;  ///< 0 is the top
  double y = 0;            ///< user units from the top of the page
  int page = 0;            ///< counted from 1; 0 if no document had been begun
};

struct Bookmarks {
  std::vector<Bookmark> list;
  /// Number of bookmarks; once an outline has been written, the object number of its root, which the catalog
  /// names.
  int count = 0;

  void add(Bookmark bookmark) {
    list.push_back(std::move(bookmark));
    ++count;
  }
};

/// Links of one outline item as positions in the list; -1 is none. A parent of -1 is the root.
struct OutlineLinks {
  int parent = -1;
  int prev = -1;
  int next = -1;
  int first = -1;
  int last = -1;
};

/// The tree that the levels make: an item hangs below the nearest earlier item of a smaller level, so a
/// skipped level attaches to the nearest shallower item. One entry for each bookmark.
std::vector<OutlineLinks> linkOutline(const std::vector<Bookmark>& bookmarks);

/// Writes the items and their root, and sets `count` to its number. No-op with fewer than two bookmarks.
/// `scaleFactor` is that of the bookmarks' y.
void writeOutline(ObjectWriter& writer, Bookmarks& bookmarks, const PageTree& tree,
                  const std::vector<PageRecord>& pages, double scaleFactor);

}  // namespace veltrano

#endif
