#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_USAGE_MAP_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_USAGE_MAP_H

// Sets of pages as the file keeps them: the global map of free pages and, for each table, index and
// long-value column, the maps of what it owns. usage_map.cpp shows the bytes.
//
// Changing a map or allocating a page needs a transaction. A step that fails (false, or nothing) may have
// changed part of what it had to: the transaction is to be rolled back.

#include <optional>

#include "database/access/storage/format.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// A usage map by the place of its row. A cheap handle: every call looks at the pages anew.
class UsageMap {
 public:
  UsageMap(Pager& pager, RowPointer place) : pager_(&pager), place_(place) {}

  /// The first page of the set with a number >= `from`. Nothing when there is none, or the map is damaged.
  [[nodiscard]] std::optional<PageNumber> next(PageNumber from) const;
  /// The last page of the set with a number <= `from`.
  [[nodiscard]] std::optional<PageNumber> previous(PageNumber from) const;
  [[nodiscard]] bool contains(PageNumber page) const;
  bool add(PageNumber page);
  /// Also true when the page was not in the set.
  bool remove(PageNumber page);

 private:
  Pager* pager_;
  RowPointer place_;
};

/// A page for new use: all zeros, in no map, changed by the transaction. Nothing when the file is full.
std::optional<PageNumber> allocatePage(Pager& pager);
/// Gives a page back: it is zeroed and entered in the global map of free pages. The caller takes it out of
/// its owner's map first.
bool freePage(Pager& pager, PageNumber page);

}  // namespace veltrano::access

#endif
