#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_USAGE_MAP_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_USAGE_MAP_H

// Sets of pages as the file keeps them: for each table, index and long-value column the maps of what it owns,
// and the global map of free pages (allocator.h). map_row.h shows the bytes.

#include <optional>

#include "database/access/storage/format.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// A usage map by the place of its row. A cheap handle: every call reads the pages anew.
class UsageMap {
 public:
  UsageMap(Pager& pager, RowPointer place) : pager_(&pager), place_(place) {}

  /// The first page of the set with a number >= `from`. Empty if there is none, or the map is damaged.
  [[nodiscard]] std::optional<PageNumber> next(PageNumber from) const;
  /// The last page of the set with a number <= `from`.
  [[nodiscard]] std::optional<PageNumber> previous(PageNumber from) const;
  [[nodiscard]] bool contains(PageNumber page) const;
  /// In a transaction. False, with the set as it was, if the map is damaged or needs a page and the file is full.
  bool add(PageNumber page);
  /// In a transaction. Also true if the page was not in the set.
  bool remove(PageNumber page);

 private:
  Pager* pager_;
  RowPointer place_;
};

}  // namespace veltrano::access

#endif
