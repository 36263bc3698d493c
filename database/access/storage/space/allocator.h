#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_ALLOCATOR_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_ALLOCATOR_H

// Pages for new use, and pages given back: the global map of free pages. All in a transaction, which is to be
// rolled back after a failure.
//
// A free page is used again only if it holds nothing but zeros, as freePage leaves it: other programs' free
// pages may hold what somebody still needs.

#include <optional>

#include "database/access/storage/pager.h"

namespace veltrano::access {

/// The row of the global map.
inline constexpr RowPointer globalMap = {1, 0};

/// A page for new use: all zeros, in no map, changed by the transaction. Empty if the file is full.
std::optional<PageNumber> allocatePage(Pager& pager);
/// Gives a page back: it is zeroed and entered in the global map. The caller takes it out of its owner's map
/// first.
bool freePage(Pager& pager, PageNumber page);

}  // namespace veltrano::access

#endif
