#ifndef VELTRANO_PDF_ASSEMBLY_BOOKMARKS_H
#define VELTRANO_PDF_ASSEMBLY_BOOKMARKS_H

// Bookmarks and the outline tree made of them.

#include <cstdint>
#include <string>
#include <vector>

namespace veltrano {

struct Bookmark {
  std::string text;
  std::int16_t level = 0;  ///< 0 is the top
  double y = 0;            ///< user units from the top of the page
  int page = 0;            ///< counted from 1; 0 when no document had been begun
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

struct BookmarkList {
  std::vector<Bookmark> bookmarks;
  /// Number of bookmarks; once an outline has been written, the object number of its root, which the catalog
  /// names.
  int bookmarkCount = 0;
};

}  // namespace veltrano

#endif
