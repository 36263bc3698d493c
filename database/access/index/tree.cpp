#include "database/access/index/tree.h"

#include <algorithm>
#include <tuple>

#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/usage_map.h"

namespace veltrano::access {

namespace {

/// How many entries of a page that is divided go to the left one.
std::size_t placeOfCut(const IndexPage& page, const EntryList& entries, std::size_t offset) {
  // Ascending and descending insertions fill pages instead of halving them.
  if (offset == page.end() && page.next() == 0) {
    return entries.size() - 1;
  }
  if (offset == 0 && page.previous() == 0 && page.isLeaf()) {
    return 1;
  }
  return entries.bestCut();
}

}  // namespace

PageView IndexTree::page(PageNumber number) const {
  PageView view = pager_->read(number);
  if (!view) {
    return view;
  }
  const IndexPage index(view.bytes(), pager_->version());
  return index.valid() && index.owner() == table_ ? std::move(view) : PageView();
}

MutableBytes IndexTree::edit(PageNumber number) {
  const MutableBytes bytes = pager_->edit(number);
  if (bytes.empty()) {
    return bytes;
  }
  const IndexPage index(bytes, pager_->version());
  return index.valid() && index.owner() == table_ ? bytes : MutableBytes();
}

// --- looking

/// Finds the path to the leaf where the entry is or belongs. For an insertion, nodes whose entries all lie before it
/// are extended to it.
bool IndexTree::descend(const IndexEntry& wanted, Purpose purpose, Path& path) {
  PageNumber number = root_;
  for (path.depth = 0; path.depth < deepestTree; ++path.depth) {
    const PageView view = page(number);
    if (!view) {
      return false;
    }
    const IndexPage index(view.bytes(), pager_->version());
    Step& step = path.leaf();
    step = {number, index.lowerBound(wanted, scratch_)};
    if (index.isLeaf()) {
      return true;
    }
    const std::size_t end = index.end();
    if (step.offset < end) {
      if (!index.entry(step.offset, scratch_, &number)) {
        return false;
      }
    } else if (index.tail() != 0) {
      number = index.tail();
    } else if (end != 0) {
      step.offset = index.before(end);
      if (!index.entry(step.offset, scratch_, &number) ||
          (purpose == Purpose::insert && !growLastChild(step, wanted, number))) {
        return false;
      }
    } else {
      return false;
    }
  }
  return false;
}

/// T3, T4: the last child of a node without a tail is going to hold a greater entry than its own says.
bool IndexTree::growLastChild(Step& step, const IndexEntry& wanted, PageNumber child) {
  const MutableBytes bytes = edit(step.page);
  if (bytes.empty()) {
    return false;
  }
  IndexPageEditor node(bytes);
  node.remove(step.offset);
  if (!node.empty()) {
    node.setTail(child);
    return true;
  }
  std::vector<std::uint8_t> entry;
  appendEntry(entry, wanted, child);
  return node.insert(0, entry);
}

/// Whether neither neighbour of the place has the key.
bool IndexTree::isNewKey(const Step& leaf, Bytes key) {
  const auto hasKey = [&](const IndexPage& index, std::size_t offset) {
    const auto entry = index.entry(offset, scratch_);
    return entry && std::equal(key.begin(), key.end(), entry->key.begin(), entry->key.end());
  };
  const PageView view = page(leaf.page);
  if (!view) {
    return true;
  }
  const IndexPage here(view.bytes(), pager_->version());
  if (leaf.offset > 0) {
    if (hasKey(here, here.before(leaf.offset))) {
      return false;
    }
  } else if (const PageView before = here.previous() != 0 ? page(here.previous()) : PageView()) {
    const IndexPage previous(before.bytes(), pager_->version());
    if (!previous.empty() && hasKey(previous, previous.before(previous.end()))) {
      return false;
    }
  }
  if (leaf.offset < here.end()) {
    return !hasKey(here, leaf.offset);
  }
  const PageView after = here.next() != 0 ? page(here.next()) : PageView();
  return !after || !hasKey(IndexPage(after.bytes(), pager_->version()), 0);
}

// --- entering

bool IndexTree::insert(const IndexEntry& entry, bool& newKey) {
  Path path;
  if (entry.key.size() > longestKey || !descend(entry, Purpose::insert, path)) {
    return false;
  }
  {
    const PageView view = page(path.leaf().page);
    const IndexPage leaf(view.bytes(), pager_->version());
    if (path.leaf().offset < leaf.end()) {
      const auto there = leaf.entry(path.leaf().offset, scratch_);
      if (!there || compareEntries(*there, entry) == 0) {
        return false;
      }
    }
  }
  newKey = isNewKey(path.leaf(), entry.key);
  std::vector<std::uint8_t> bytes;
  bytes.reserve(entry.key.size() + 4);
  appendEntry(bytes, entry);
  return put(path, path.depth, bytes);
}

/// Puts an entry at its place in the page at `depth`, which is divided if need be.
bool IndexTree::put(Path& path, std::size_t depth, Bytes entry) {
  const MutableBytes bytes = edit(path.steps[depth].page);
  if (bytes.empty()) {
    return false;
  }
  IndexPageEditor page(bytes);
  const std::size_t offset = path.steps[depth].offset;
  if (page.insert(offset, entry)) {
    return page.keepTail();
  }
  const auto entries = page.gather(offset, entry);
  if (!entries) {
    return false;
  }
  if (entries->packedSize(0, entries->size()) <= indexLayout(pager_->version()).areaSize()) {
    page.write(*entries, 0, entries->size());
    return page.keepTail();
  }
  return split(path, depth, entry);
}

/// Divides the page at `depth`: a new page takes the first part of the entries, the page keeps the rest and
/// so its place as its parent's entry or tail.
bool IndexTree::split(Path& path, std::size_t depth, Bytes entry) {
  if (depth == 0 && !pushDownRoot(path, depth)) {
    return false;
  }
  const Step step = path.steps[depth];
  const auto number = newPage();
  const MutableBytes rightBytes = edit(step.page);
  if (!number || rightBytes.empty()) {
    return false;
  }
  IndexPageEditor right(rightBytes);
  IndexPageEditor left(pager_->edit(*number));
  const bool leaf = right.isLeaf();
  const auto entries = right.gather(step.offset, entry);
  if (!entries || entries->size() < 2) {
    return false;
  }
  const std::size_t cut = placeOfCut(right, *entries, step.offset);
  const std::size_t area = indexLayout(pager_->version()).areaSize();
  if (entries->packedSize(0, cut) > area || entries->packedSize(cut, entries->size()) > area) {
    return false;  // only if another program's entries are longer than ours
  }
  left.create(leaf, right.level(), table_);
  right.write(*entries, cut, entries->size());
  left.write(*entries, 0, cut);
  if (!left.keepTail() || !right.keepTail()) {
    return false;
  }
  left.setNext(step.page);
  left.setPrevious(right.previous());
  right.setPrevious(*number);
  if (left.previous() != 0) {
    const MutableBytes before = edit(left.previous());
    if (before.empty()) {
      return false;
    }
    IndexPageEditor(before).setNext(*number);
  }
  if (!leaf && !relinkNodes(entries->child(cut - 1), entries->child(cut))) {
    return false;
  }
  std::vector<std::uint8_t> separator;
  appendEntry(separator, entries->entry(cut - 1), *number);
  return put(path, depth - 1, separator);
}

/// T1: the root's content moves to a new page, the tail of what is now a node without entries.
bool IndexTree::pushDownRoot(Path& path, std::size_t& depth) {
  const auto number = newPage();
  const MutableBytes rootBytes = edit(root_);
  if (!number || rootBytes.empty() || path.depth + 1 > deepestTree) {
    return false;
  }
  const MutableBytes below = pager_->edit(*number);
  std::copy(rootBytes.begin(), rootBytes.end(), below.begin());
  IndexPageEditor root(rootBytes);
  root.create(false, static_cast<std::uint8_t>(IndexPage(below, pager_->version()).level() + 1), table_);
  root.setTail(*number);
  std::copy_backward(path.steps.begin(), path.steps.begin() + static_cast<std::ptrdiff_t>(path.depth + 1),
                     path.steps.begin() + static_cast<std::ptrdiff_t>(path.depth + 2));
  path.steps[0] = {root_, 0};
  path.steps[1].page = *number;
  ++path.depth;
  depth = 1;
  return true;
}

/// T2: two neighbouring nodes that now have different parents are no longer linked; leaves stay so.
bool IndexTree::relinkNodes(PageNumber left, PageNumber right) {
  const MutableBytes leftBytes = edit(left);
  const MutableBytes rightBytes = edit(right);
  if (leftBytes.empty() || rightBytes.empty()) {
    return false;
  }
  if (!IndexPage(leftBytes, pager_->version()).isLeaf()) {
    IndexPageEditor(leftBytes).setNext(0);
    IndexPageEditor(rightBytes).setPrevious(0);
  }
  return true;
}

std::optional<PageNumber> IndexTree::newPage() {
  const auto number = allocatePage(*pager_);
  return number && UsageMap(*pager_, ownedPages_).add(*number) ? number : std::nullopt;
}

// --- removing

bool IndexTree::remove(const IndexEntry& entry) {
  Path path;
  if (!descend(entry, Purpose::look, path)) {
    return false;
  }
  const MutableBytes bytes = edit(path.leaf().page);
  if (bytes.empty()) {
    return false;
  }
  IndexPageEditor leaf(bytes);
  const std::size_t offset = path.leaf().offset;
  const auto found = offset < leaf.end() ? leaf.entry(offset, scratch_) : std::nullopt;
  if (!found || compareEntries(*found, entry) != 0) {
    return false;
  }
  const bool last = leaf.after(offset) == leaf.end();
  leaf.remove(offset);
  if (!last || path.depth == 0) {
    return true;
  }
  if (leaf.empty()) {
    return removePage(path, path.depth);
  }
  std::vector<std::uint8_t> space;
  const auto greatest = leaf.entry(leaf.before(leaf.end()), space);
  return greatest && mendGreatest(*greatest);
}

/// Takes an empty page out of the tree and gives it back.
bool IndexTree::removePage(const Path& path, std::size_t depth) {
  const PageNumber number = path.steps[depth].page;
  PageNumber previous = 0;
  PageNumber next = 0;
  {
    const PageView view = page(number);
    if (!view) {
      return false;
    }
    const IndexPage index(view.bytes(), pager_->version());
    previous = index.previous();
    next = index.next();
  }
  for (const auto& [neighbour, other, forward] :
       {std::tuple(previous, next, true), std::tuple(next, previous, false)}) {
    if (neighbour == 0) {
      continue;
    }
    const MutableBytes bytes = edit(neighbour);
    if (bytes.empty()) {
      return false;
    }
    IndexPageEditor editor(bytes);
    forward ? editor.setNext(other) : editor.setPrevious(other);
  }
  return UsageMap(*pager_, ownedPages_).remove(number) && freePage(*pager_, number) &&
         removeChild(path, depth - 1);
}

/// Removes the child that the path takes from the node at `depth`.
bool IndexTree::removeChild(const Path& path, std::size_t depth) {
  const MutableBytes bytes = edit(path.steps[depth].page);
  if (bytes.empty()) {
    return false;
  }
  IndexPageEditor node(bytes);
  const std::size_t offset = path.steps[depth].offset;
  const bool wasTail = offset >= node.end();
  if (wasTail) {
    node.setTail(0);
  } else {
    node.remove(offset);
  }
  if (node.tail() != 0) {
    return !node.empty() || makeTailAnEntry(node);
  }
  if (node.empty()) {
    if (depth != 0) {
      return removePage(path, depth);
    }
    node.create(true, 0, table_);
    return true;
  }
  if (!wasTail && offset < node.end()) {
    return true;
  }
  // The greatest child has gone: another one is the greatest now.
  std::vector<std::uint8_t> space;
  const auto found = node.entry(node.before(node.end()), space);
  if (!found) {
    return false;
  }
  const std::vector<std::uint8_t> key(found->key.begin(), found->key.end());
  const RowPointer row = found->row;
  if (!node.keepTail()) {
    return false;
  }
  return mendGreatest({key, row});
}

/// T4: the tail of a node has become its only child.
bool IndexTree::makeTailAnEntry(IndexPageEditor& node) {
  PageNumber number = node.tail();
  for (std::size_t depth = 0; depth < deepestTree; ++depth) {
    const PageView view = page(number);
    if (!view) {
      return false;
    }
    const IndexPage index(view.bytes(), pager_->version());
    if (!index.isLeaf() && index.tail() != 0) {
      number = index.tail();
      continue;
    }
    if (index.empty()) {
      return true;  // another program's empty leaf: the tail may stay alone
    }
    const auto greatest = index.entry(index.before(index.end()), scratch_);
    if (!greatest) {
      return false;
    }
    // For a node without a tail this copy of the greatest entry is as good as the leaf's.
    std::vector<std::uint8_t> entry;
    appendEntry(entry, *greatest, node.tail());
    node.setTail(0);
    return node.insert(0, entry);
  }
  return false;
}

/// T3: `greatest` has become the last entry of its leaf. Replaces the node entries above that still name another one,
/// from the leaf upwards. The path is found again after each, since a longer entry may divide its page.
bool IndexTree::mendGreatest(const IndexEntry& greatest) {
  for (std::size_t round = 0; round <= deepestTree; ++round) {
    Path path;
    if (!descend(greatest, Purpose::look, path)) {
      return false;
    }
    std::size_t depth = path.depth;
    bool changed = false;
    while (depth > 0 && !changed) {
      --depth;
      const MutableBytes bytes = edit(path.steps[depth].page);
      if (bytes.empty()) {
        return false;
      }
      IndexPageEditor node(bytes);
      const std::size_t offset = path.steps[depth].offset;
      if (offset >= node.end()) {
        continue;  // the tail: the node above it names its greatest entry
      }
      PageNumber child = 0;
      const auto named = node.entry(offset, scratch_, &child);
      if (!named) {
        return false;
      }
      const bool right = compareEntries(*named, greatest) == 0;
      if (right && (node.after(offset) != node.end() || node.tail() != 0)) {
        return true;
      }
      if (!right) {
        node.remove(offset);
        std::vector<std::uint8_t> entry;
        appendEntry(entry, greatest, child);
        if (!put(path, depth, entry)) {
          return false;
        }
        changed = true;
      }
    }
    if (!changed) {
      return true;
    }
  }
  return false;
}

}  // namespace veltrano::access
