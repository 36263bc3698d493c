#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_HINTS_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_HINTS_H

// What is known about room in an open file, so that it is not searched for anew each time. Everything here is
// checked against the pages before it is used: a wrong hint, as a rollback leaves it, costs a look at a page.

#include <cstdint>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "database/access/storage/format.h"

namespace veltrano::access {

/// Pages with room that belong to one table or long-value column.
struct RoomHints {
  std::set<std::pair<std::size_t, PageNumber>> byRoom;  ///< free bytes, page
  std::unordered_map<PageNumber, std::size_t> rooms;    ///< the same by page
  PageNumber searchBelow = 0xFFFFFFFF;                  ///< pages of the map from here on are known
};

struct SpaceHints {
  std::set<PageNumber> freedPages;        ///< pages given back, for the allocator
  PageNumber searchFrom = 0;              ///< free pages of the global map below this are known
  std::map<RowPointer, RoomHints> rooms;  ///< by the map of pages with room
};

}  // namespace veltrano::access

#endif
