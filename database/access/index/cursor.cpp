#include "database/access/index/cursor.h"

#include <algorithm>

namespace veltrano::access {

bool IndexCursor::stop(bool damage) {
  view_ = PageView();
  valid_ = false;
  damaged_ = damaged_ || damage;
  return false;
}

/// To the leaf at one end of the tree.
bool IndexCursor::descendToEdge(Way way) {
  PageNumber number = tree_->root();
  for (std::size_t depth = 0; depth <= deepestTree; ++depth) {
    view_ = tree_->page(number);
    if (!view_) {
      return stop(true);
    }
    const IndexPage index(view_.bytes(), pager_->version());
    if (index.isLeaf()) {
      return true;
    }
    if (index.tail() != 0 && (way == Way::backward || index.empty())) {
      number = index.tail();
      continue;
    }
    const std::size_t offset = way == Way::forward || index.empty() ? 0 : index.before(index.end());
    if (!index.entry(offset, scratch_, &number)) {
      return stop(true);
    }
  }
  return stop(true);
}

/// Stands on the entry at `offset` of the current leaf, or on the nearest one in that direction.
bool IndexCursor::settle(std::size_t offset, Way way) {
  // Other programs leave empty leaves; links that lead round in circles end here.
  for (PageNumber seen = 0; seen <= pager_->pageCount(); ++seen) {
    const IndexPage leaf(view_.bytes(), pager_->version());
    if (!leaf.isLeaf()) {
      return stop(true);
    }
    if (way == Way::backward) {
      const std::size_t end = leaf.end();
      offset = offset > 0 && end > 0 ? leaf.before(std::min(offset, end)) : end;
    }
    const std::size_t end = leaf.after(offset);
    if (end != offset) {
      const auto found = leaf.entry(offset, end, scratch_);
      // Every step leads onwards, so that links in a circle, which repeat entries, end here as well.
      const int order = found && valid_ ? compareEntries(*found, entry()) : 0;
      if (!found || (valid_ && (way == Way::forward ? order <= 0 : order >= 0))) {
        return stop(true);
      }
      key_.assign(found->key.begin(), found->key.end());
      row_ = found->row;
      offset_ = offset;
      end_ = end;
      return valid_ = true;
    }
    const PageNumber number = way == Way::forward ? leaf.next() : leaf.previous();
    if (number == 0) {
      return stop(false);
    }
    view_ = tree_->page(number);
    if (!view_) {
      return stop(true);
    }
    offset = way == Way::forward ? 0 : pager_->pageSize();
  }
  return stop(true);
}

bool IndexCursor::first() {
  valid_ = false;
  return descendToEdge(Way::forward) && settle(0, Way::forward);
}

bool IndexCursor::last() {
  valid_ = false;
  return descendToEdge(Way::backward) && settle(pager_->pageSize(), Way::backward);
}

bool IndexCursor::seek(const IndexEntry& wanted) {
  valid_ = false;
  PageNumber number = tree_->root();
  for (std::size_t depth = 0; depth <= deepestTree; ++depth) {
    view_ = tree_->page(number);
    if (!view_) {
      return stop(true);
    }
    const IndexPage index(view_.bytes(), pager_->version());
    const std::size_t offset = index.lowerBound(wanted, scratch_);
    if (index.isLeaf()) {
      return settle(offset, Way::forward);
    }
    const std::size_t end = index.end();
    if (offset == end && index.tail() != 0) {
      number = index.tail();
    } else if (end == 0 || !index.entry(offset < end ? offset : index.before(end), scratch_, &number)) {
      return stop(true);
    }
  }
  return stop(true);
}

/// True when the entry is still where it was seen.
bool IndexCursor::stillThere() const {
  const IndexPage leaf(view_.bytes(), pager_->version());
  return leaf.isLeaf() && leaf.owner() == tree_->table() && leaf.holds(offset_, end_, entry());
}

bool IndexCursor::toNeighbour(Way way) {
  if (!valid_) {
    return false;
  }
  if (!view_ || !stillThere()) {
    const std::vector<std::uint8_t> key = key_;
    const RowPointer row = row_;
    if (!seek({key, row})) {
      // Everything that is left lies before.
      return way == Way::backward && !damaged_ && last();
    }
    if (way == Way::forward && compareEntries(entry(), {key, row}) != 0) {
      return true;
    }
  }
  const IndexPage leaf(view_.bytes(), pager_->version());
  if (way == Way::forward) {
    return settle(end_, Way::forward);
  }
  if (offset_ > 0) {
    return settle(offset_, Way::backward);
  }
  const PageNumber number = leaf.previous();
  if (number == 0) {
    return stop(false);
  }
  view_ = tree_->page(number);
  return view_ ? settle(pager_->pageSize(), Way::backward) : stop(true);
}

bool IndexCursor::again() {
  const std::vector<std::uint8_t> key = key_;
  return valid_ && seek({key, row_});
}
bool IndexCursor::next() {
  return toNeighbour(Way::forward);
}
bool IndexCursor::previous() {
  return toNeighbour(Way::backward);
}

}  // namespace veltrano::access
