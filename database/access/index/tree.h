#ifndef VELTRANO_DATABASE_ACCESS_INDEX_TREE_H
#define VELTRANO_DATABASE_ACCESS_INDEX_TREE_H

// The B-tree of one index: looking for keys, entering and removing entries. index_cursor.h walks it.
//
// Rules that hold between calls (index_check.h tests them):
//  T1  The root page never changes its number.
//  T2  Leaves are linked in order from the first to the last. Nodes are linked among the children of one
//  parent. T3  A node entry is a copy of the greatest leaf entry below its child. T4  A node with several
//  children keeps the greatest as its tail, without an entry; one with a single child keeps
//      it as an entry.
//  T5  No leaf is empty but a root.
// A tree written by another program may break T4 and T5; it is then read all the same, and mended where it is
// changed.
//
// Changing needs a transaction of the pager and a file of Jet 4 or later. A step that fails may have changed
// part of what it had to: the transaction is to be rolled back.

#include <array>
#include <optional>
#include <vector>

#include "database/access/pages/index_page.h"
#include "database/access/schema/table_definition.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// The longest key that is entered: with it three entries always fit in a page.
inline constexpr std::size_t longestKey = 1192;

/// Deeper trees than the largest file can hold are damaged.
inline constexpr std::size_t deepestTree = 16;

class IndexTree {
 public:
  /// `table` is the number of the table's definition page.
  IndexTree(Pager& pager, PageNumber table, const Index& index)
      : pager_(&pager), table_(table), root_(index.root), ownedPages_(index.ownedPages) {}

  [[nodiscard]] PageNumber root() const { return root_; }
  [[nodiscard]] PageNumber table() const { return table_; }

  /// True when there is an entry with this key, whatever its row; nothing when the index is damaged.
  [[nodiscard]] std::optional<bool> containsKey(Bytes key);

  /// Enters a row. `newKey` tells whether no other entry has the key (the definition counts these). False
  /// when the key is too long, the entry is there already, the index is damaged or the file is full.
  bool insert(const IndexEntry& entry, bool& newKey);
  /// Removes a row's entry. False when there is no such entry, the index is damaged or the file cannot be
  /// read.
  bool remove(const IndexEntry& entry);

  /// The page if it belongs to this index; an empty view if not.
  [[nodiscard]] PageView page(PageNumber number) const;

 private:
  /// One page on the way from the root to a leaf: where in it the way goes on.
  struct Step {
    PageNumber page = 0;
    std::size_t offset =
        0;  ///< node: the entry whose child is taken, or the end for the tail; leaf: the place of the entry
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
