#ifndef VELTRANO_DATABASE_ACCESS_INDEX_TREE_H
#define VELTRANO_DATABASE_ACCESS_INDEX_TREE_H

// The B-tree of one index: inserts and removes entries. cursor.h walks it.
//
// Invariants between calls (check/index_check.h tests them):
//  T1  The root page never changes its number.
//  T2  Leaves are linked in order from the first to the last. Nodes are linked among the children of one parent.
//  T3  A node entry is a copy of the greatest leaf entry below its child.
//  T4  A node with several children keeps the greatest as its tail, without an entry. A node with one child keeps it
//      as an entry, and has no tail.
//  T5  Only a root leaf is empty.
// Trees of other programs may break T4 and T5. They are read all the same, and repaired where they are changed.
//
// A change needs a transaction of the pager and a file of Jet 4 or later. If it fails, the transaction must be rolled
// back, since part of the change may have been made.

#include <array>
#include <optional>
#include <vector>

#include "database/access/pages/index_page.h"
#include "database/access/schema/table_definition.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// The longest key that is inserted: three entries with such keys fit in a page.
inline constexpr std::size_t longestKey = 1192;

/// A deeper tree is damaged: the largest file could not hold it.
inline constexpr std::size_t deepestTree = 16;

class IndexTree {
 public:
  /// `table` is the number of the table's definition page.
  IndexTree(Pager& pager, PageNumber table, const Index& index)
      : pager_(&pager), table_(table), root_(index.root), ownedPages_(index.ownedPages) {}

  [[nodiscard]] PageNumber root() const { return root_; }
  [[nodiscard]] PageNumber table() const { return table_; }

  /// Inserts a row's entry. `newKey` is true if no other entry has the key (the definition counts distinct keys).
  /// False if the key is too long, the entry exists already, the index is damaged or the file is full.
  bool insert(const IndexEntry& entry, bool& newKey);
  /// Removes a row's entry. False if there is no such entry, the index is damaged or the file cannot be read.
  bool remove(const IndexEntry& entry);

  /// The page if it belongs to this index, otherwise an empty view.
  [[nodiscard]] PageView page(PageNumber number) const;

 private:
  /// One page on the path from the root to a leaf.
  struct Step {
    PageNumber page = 0;
    /// Node: the entry of the child that the path takes, or the end for the tail. Leaf: where the entry is or belongs.
    std::size_t offset = 0;
  };
  struct Path {
    std::array<Step, deepestTree + 1> steps{};
    std::size_t depth = 0;  ///< of the leaf
    [[nodiscard]] Step& leaf() { return steps[depth]; }
  };
  enum class Purpose { look, insert };

  bool descend(const IndexEntry& wanted, Purpose purpose, Path& path);
  bool growLastChild(Step& step, const IndexEntry& wanted, PageNumber child);
  MutableBytes edit(PageNumber number);
  bool isNewKey(const Step& leaf, Bytes key);
  bool put(Path& path, std::size_t depth, Bytes entry);
  bool split(Path& path, std::size_t depth, Bytes entry);
  bool pushDownRoot(Path& path, std::size_t& depth);
  bool relinkNodes(PageNumber left, PageNumber right);
  bool removePage(const Path& path, std::size_t depth);
  bool removeChild(const Path& path, std::size_t depth);
  bool makeTailAnEntry(IndexPageEditor& node);
  bool mendGreatest(const IndexEntry& greatest);
  std::optional<PageNumber> newPage();

  Pager* pager_;
  PageNumber table_;
  PageNumber root_;
  RowPointer ownedPages_;
  std::vector<std::uint8_t> scratch_;
};

}  // namespace veltrano::access

#endif
