#ifndef VELTRANO_DATABASE_ACCESS_CHECK_INDEX_CHECK_H
#define VELTRANO_DATABASE_ACCESS_CHECK_INDEX_CHECK_H

// Checks whether an index tree is sound.

#include <string>
#include <vector>

#include "database/access/index/tree.h"

namespace veltrano::access {

/// An entry that owns its key.
struct OwnedEntry {
  std::vector<std::uint8_t> key;
  RowPointer row;
  [[nodiscard]] IndexEntry view() const { return {key, row}; }
};

/// Walks the whole tree and puts its entries into `entries`, in order. Returns "" for a sound tree, otherwise the first
/// fault: order, the invariants T2 to T5 (index/tree.h), pages outside the index's map, pages used twice.
std::string checkIndex(Pager& pager, PageNumber table, const Index& index, std::vector<OwnedEntry>& entries);

}  // namespace veltrano::access

#endif
