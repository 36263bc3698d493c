#ifndef VELTRANO_DATABASE_ACCESS_PAGES_ROW_SPACE_H
#define VELTRANO_DATABASE_ACCESS_PAGES_ROW_SPACE_H

// Where new rows go: the pages of one table, or one long-value column, with what room they have.
//
// A row goes to the page with the least room that is enough. What is known about the pages is kept with the
// open file (space_hints.h); the map of pages with room, which other programs read too, is searched from its
// end, a few pages for each row that fits nowhere yet.

#include <optional>

#include "database/access/storage/data_page.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// All in a transaction, which is to be rolled back after a failure. A cheap handle.
class RowSpace {
 public:
  /// `owner`: as data pages state it. The maps may be missing (page 0): then every row gets a page of its own.
  RowSpace(Pager& pager, std::uint32_t owner, RowPointer ownedPages, RowPointer freePages)
      : pager_(&pager), owner_(owner), ownedPages_(ownedPages), freePages_(freePages) {}

  /// Adds a row. Empty if the file is full or damaged.
  std::optional<RowPointer> insert(Bytes row, std::uint16_t flags);
  /// Deletes the bytes at a place of a sound page. A page left without rows goes back to the file if the map
  /// proves that it is the owner's.
  bool remove(RowPointer place);
  /// To be told when a row of the page has become shorter.
  void noteRoom(PageNumber page);

 private:
  [[nodiscard]] bool hasMaps() const { return ownedPages_.page != 0 && freePages_.page != 0; }
  [[nodiscard]] RoomHints& hints() const { return pager_->spaceHints().rooms[freePages_]; }
  [[nodiscard]] std::size_t roomIn(PageNumber page) const;
  void remember(PageNumber page, std::size_t room);
  bool correct(PageNumber page, std::size_t room);
  std::optional<PageNumber> knownPage(std::size_t size);
  std::optional<PageNumber> searchPage(std::size_t size);
  std::optional<PageNumber> newPage(std::size_t size);

  Pager* pager_;
  std::uint32_t owner_;
  RowPointer ownedPages_;
  RowPointer freePages_;
};

}  // namespace veltrano::access

#endif
