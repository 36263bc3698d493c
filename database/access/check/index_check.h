#ifndef VELTRANO_DATABASE_ACCESS_CHECK_INDEX_CHECK_H
#define VELTRANO_DATABASE_ACCESS_CHECK_INDEX_CHECK_H

// Tells whether an index tree is sound: for tests and for whoever doubts a file.

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

/// Walks the whole tree and puts its entries into `entries`, in order. Answers "" for a sound tree, otherwise
/// what is wrong with it first: order, the rules T2 to T5 (index_tree.h), pages outside the index's map,
/// pages used twice.
std::string checkIndex(Pager& pager, PageNumber table, const Index& index, std::vector<OwnedEntry>& entries);

}  // namespace veltrano::access

#endif
