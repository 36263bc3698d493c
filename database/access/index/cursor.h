#ifndef VELTRANO_DATABASE_ACCESS_INDEX_CURSOR_H
#define VELTRANO_DATABASE_ACCESS_INDEX_CURSOR_H

// A place among the entries of an index, which stays right while entries come and go: a cursor whose entry
// was removed stands where it was, and the next step leads to its neighbour.

#include <vector>

#include "database/access/index/tree.h"

namespace veltrano::access {

class IndexCursor {
 public:
  explicit IndexCursor(const IndexTree& tree, Pager& pager) : tree_(&tree), pager_(&pager) {}

  // Each returns whether there is such an entry. If there is none, or the index is damaged, the cursor stands on no
  // entry.
  bool first();
  bool last();
  bool next();
  bool previous();
  /// To the entry that the cursor stands on, should it have been removed and entered again, or else to the one after
  /// it.
  bool again();
  /// To the first entry that is not before `wanted`.
  bool seek(const IndexEntry& wanted);

  /// True while the cursor stands on an entry.
  [[nodiscard]] bool valid() const { return valid_; }
  /// True if damage to the index was met.
  [[nodiscard]] bool damaged() const { return damaged_; }
  /// The entry the cursor stands on; it need no longer be there.
  [[nodiscard]] IndexEntry entry() const { return {key_, row_}; }
  [[nodiscard]] RowPointer row() const { return row_; }

 private:
  enum class Way { forward, backward };

  bool descendToEdge(Way way);
  bool settle(std::size_t offset, Way way);
  bool toNeighbour(Way way);
  [[nodiscard]] bool stillThere() const;
  bool stop(bool damage);

  const IndexTree* tree_;
  Pager* pager_;
  PageView view_;           ///< the leaf
  std::size_t offset_ = 0;  ///< of the entry in it, when last seen
  std::size_t end_ = 0;     ///< offset after that entry
  std::vector<std::uint8_t> key_;
  RowPointer row_{};
  std::vector<std::uint8_t> scratch_;
  bool valid_ = false;
  bool damaged_ = false;
};

}  // namespace veltrano::access

#endif
