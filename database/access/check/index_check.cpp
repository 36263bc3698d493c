#include "database/access/check/index_check.h"

#include <set>

#include "database/access/storage/space/usage_map.h"

namespace veltrano::access {

namespace {

class IndexChecker {
 public:
  IndexChecker(Pager& pager, PageNumber table, const Index& index, std::vector<OwnedEntry>& entries)
      : pager_(pager), tree_(pager, table, index), owned_(pager, index.ownedPages), entries_(entries) {}

  std::string run() {
    if (checkPage(tree_.root(), 0) && previousLeaf_ != 0) {
      const PageView last = tree_.page(previousLeaf_);
      if (IndexPage(last.bytes(), pager_.version()).next() != 0) {
        fail(previousLeaf_, "the last leaf has a next page");
      }
    }
    return problem_;
  }

 private:
  bool fail(PageNumber page, const char* what) {
    if (problem_.empty()) {
      problem_ = "page " + std::to_string(page) + ": " + what;
    }
    return false;
  }

  /// Checks a page and all below it; `level_` is then its level.
  bool checkPage(PageNumber number, std::size_t depth) {
    if (depth > deepestTree || !seen_.insert(number).second) {
      return fail(number, "is used twice");
    }
    const PageView view = tree_.page(number);
    if (!view) {
      return fail(number, "is no page of this index");
    }
    if (!owned_.contains(number)) {
      return fail(number, "is missing in the map of the index");
    }
    const IndexPage page(view.bytes(), pager_.version());
    const std::size_t area = indexLayout(pager_.version()).areaSize();
    if (load16(view.data() + 2) != area - page.end()) {
      return fail(number, "has a wrong count of free bytes");
    }
    return page.isLeaf() ? checkLeaf(number, page) : checkNode(number, page, depth);
  }

  bool checkLeaf(PageNumber number, const IndexPage& leaf) {
    if (leaf.previous() != previousLeaf_) {
      return fail(number, "does not name the leaf before it");
    }
    if (previousLeaf_ != 0) {
      const PageView before = tree_.page(previousLeaf_);
      if (IndexPage(before.bytes(), pager_.version()).next() != number) {
        return fail(number, "is not the leaf that the one before names");
      }
    }
    if (leaf.empty() && number != tree_.root()) {
      return fail(number, "is an empty leaf");
    }
    previousLeaf_ = number;
    level_ = 0;
    std::vector<std::uint8_t> scratch;
    for (std::size_t at = 0; at < leaf.end(); at = leaf.after(at)) {
      const auto entry = leaf.entry(at, scratch);
      if (!entry) {
        return fail(number, "has a damaged entry");
      }
      if (!entries_.empty() && compareEntries(entries_.back().view(), *entry) >= 0) {
        return fail(number, "has entries out of order");
      }
      entries_.push_back({{entry->key.begin(), entry->key.end()}, entry->row});
    }
    return level_ == leaf.level() || fail(number, "has a wrong level");
  }

  bool checkNode(PageNumber number, const IndexPage& node, std::size_t depth) {
    std::vector<std::uint8_t> scratch;
    std::size_t children = 0;
    PageNumber previousChild = 0;
    const auto checkChild = [&](PageNumber child) {
      ++children;
      if (!checkPage(child, depth + 1) || !checkNodeLinks(previousChild, child)) {
        return false;
      }
      previousChild = child;
      return level_ + 1 == node.level() || fail(number, "has a wrong level");
    };
    for (std::size_t at = 0; at < node.end(); at = node.after(at)) {
      PageNumber child = 0;
      const auto entry = node.entry(at, scratch, &child);
      if (!entry) {
        return fail(number, "has a damaged entry");
      }
      const OwnedEntry copy{{entry->key.begin(), entry->key.end()}, entry->row};
      if (!checkChild(child)) {
        return false;
      }
      if (entries_.empty() || compareEntries(entries_.back().view(), copy.view()) != 0) {
        return fail(number, "has an entry that is not the greatest below it");
      }
    }
    if (node.tail() != 0 && !checkChild(node.tail())) {
      return false;
    }
    if ((children > 1) != (node.tail() != 0)) {
      return fail(number, "has a tail for one child, or none for several");
    }
    level_ = node.level();
    return children > 0 || fail(number, "is a node without children");
  }

  /// T2, for children that are nodes; leaves are checked along the whole level.
  bool checkNodeLinks(PageNumber left, PageNumber right) {
    const PageView view = tree_.page(right);
    const IndexPage page(view.bytes(), pager_.version());
    if (page.isLeaf()) {
      return true;
    }
    if (page.previous() != left) {
      return fail(right, "is not linked to the node before it");
    }
    const PageView before = left != 0 ? tree_.page(left) : PageView();
    return !before || IndexPage(before.bytes(), pager_.version()).next() == right ||
           fail(left, "is not linked to the node after it");
  }

  Pager& pager_;
  IndexTree tree_;
  UsageMap owned_;
  std::vector<OwnedEntry>& entries_;
  std::set<PageNumber> seen_;
  PageNumber previousLeaf_ = 0;
  std::size_t level_ = 0;
  std::string problem_;
};

}  // namespace

std::string checkIndex(Pager& pager, PageNumber table, const Index& index, std::vector<OwnedEntry>& entries) {
  entries.clear();
  return IndexChecker(pager, table, index, entries).run();
}

}  // namespace veltrano::access
