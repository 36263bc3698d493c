#include "database/access/search/indexed_search.h"

#include <algorithm>
#include <utility>

#include "database/access/index/cursor.h"
#include "database/access/index/row_values.h"
#include "database/access/schema/field_codec.h"
#include "database/access/search/key_range.h"

namespace veltrano::access {

namespace {

using Key = std::vector<std::uint8_t>;

/// An index that starts with the column of a search.
struct UsableIndex {
  const Index* index;
  IndexKeyMaker maker;
};

Result<IndexKeyMaker> keyMakerOf(const Table& table, const Index& index) {
  return IndexKeyMaker::create(table.pager().version(), table.pager().defaultTextOrder(), table.definition(),
                               index);
}

// The one that gives the order, if it starts with the column: its first match is the answer.
std::optional<UsableIndex> chooseIndex(const Table& table, const Index* order, const Column& column) {
  std::optional<UsableIndex> chosen;
  for (const Index& index : table.definition().indexes) {
    const bool starts = !index.columns.empty() && index.columns.front().column == column.number;
    if (!starts || (chosen && &index != order)) {
      continue;
    }
    if (auto maker = keyMakerOf(table, index)) {
      chosen = {&index, *std::move(maker)};
    }
  }
  return chosen;
}

class IndexedSearch {
 public:
  IndexedSearch(const Table& table, const Index* order, const Column& column, const TextMatcher& matcher,
                UsableIndex used)
      : table_(table), order_(order), column_(column), matcher_(matcher), used_(std::move(used)) {}

  std::optional<SearchAnswer> run();

 private:
  struct Entry {
    Key key;
    RowPointer row;
  };
  enum class Extent { all, part, unknown };

  Extent collect(const std::vector<KeyRange>& ranges);
  Extent collect(const KeyRange& range);
  std::optional<bool> matches(const Entry& entry, const RowView& row);
  bool keepIfFirst(const Entry& entry, const RowView& row);

  const Table& table_;
  const Index* order_;
  const Column& column_;
  const TextMatcher& matcher_;
  UsableIndex used_;
  std::vector<Entry> entries_;
  SearchAnswer best_;
  std::optional<IndexKeyMaker> orderMaker_;
  RowValues orderValues_;
  // Kept for their storage.
  std::vector<std::uint8_t> buffer_;
  Key key_;
};

// The entries in the range. If there are many, reading the records meets one of them sooner than all of these are read.
IndexedSearch::Extent IndexedSearch::collect(const KeyRange& range) {
  constexpr std::size_t mostEntries = 64;
  const IndexTree tree(table_.pager(), table_.definition().page, *used_.index);
  IndexCursor cursor(tree, table_.pager());
  for (bool found = cursor.seek({range.first, {}}); found; found = cursor.next()) {
    const IndexEntry entry = cursor.entry();
    const Bytes start = entry.key.first(std::min(entry.key.size(), range.last.size()));
    if (std::ranges::lexicographical_compare(range.last, start)) {
      return Extent::all;
    }
    if (entries_.size() == mostEntries) {
      return Extent::part;
    }
    entries_.push_back({{entry.key.begin(), entry.key.end()}, entry.row});
  }
  return cursor.damaged() ? Extent::unknown : Extent::all;
}

IndexedSearch::Extent IndexedSearch::collect(const std::vector<KeyRange>& ranges) {
  Extent extent = ranges.empty() ? Extent::unknown : Extent::all;
  for (auto range = ranges.begin(); range != ranges.end() && extent == Extent::all; ++range) {
    extent = collect(*range);
  }
  return extent;
}

// Whether the row's text matches. Empty if the row does not hold the key of its entry: the index is damaged.
std::optional<bool> IndexedSearch::matches(const Entry& entry, const RowView& row) {
  const auto cell = row.cell(column_);
  const auto value = cellToStored(table_.pager(), column_, cell, buffer_);
  if (!value || !used_.maker.makeFirstPart(*value, key_) || key_.size() > entry.key.size() ||
      !std::equal(key_.begin(), key_.end(), entry.key.begin())) {
    return std::nullopt;
  }
  return cell && cellMatches(table_.pager(), column_, *cell, matcher_);
}

// Makes a row that matches the answer if it comes before the one found so far. False if its place in the order is not
// known.
bool IndexedSearch::keepIfFirst(const Entry& entry, const RowView& row) {
  key_.clear();
  if (order_ == used_.index) {
    key_ = entry.key;
  } else if (order_ != nullptr) {
    bool allNull = false;
    if (!orderMaker_ || !orderValues_.read(table_, order_->columns, row) ||
        orderMaker_->make(orderValues_.values(), key_, allNull) != KeyOutcome::entry) {
      return false;
    }
  }
  if (!best_.row || compareEntries({key_, entry.row}, {best_.key, *best_.row}) < 0) {
    best_.row = entry.row;
    best_.key = key_;
  }
  return true;
}

std::optional<SearchAnswer> IndexedSearch::run() {
  const auto ranges = keysOfText(table_.pager().version(), column_, used_.maker, matcher_);
  // Whether the entries come in the order that is asked for.
  const bool inOrder = order_ == used_.index && ranges.size() == 1;
  const Extent extent = collect(ranges);
  if (extent == Extent::unknown || (extent == Extent::part && !inOrder)) {
    return std::nullopt;
  }
  if (order_ != nullptr && order_ != used_.index) {
    if (auto maker = keyMakerOf(table_, *order_)) {
      orderMaker_ = *std::move(maker);
    }
  }
  for (const Entry& entry : entries_) {
    const auto row = table_.fetch(entry.row);
    const RowView view = row ? table_.view(*row) : RowView();
    const auto match = view.valid() ? matches(entry, view) : std::nullopt;
    if (!match || (*match && !keepIfFirst(entry, view))) {
      return std::nullopt;
    }
    if (*match && inOrder) {
      return std::move(best_);
    }
  }
  return extent == Extent::all ? std::optional(std::move(best_)) : std::nullopt;
}

}  // namespace

std::optional<SearchAnswer> searchIndexes(const Table& table, const Index* order, const Column& column,
                                          const TextMatcher& matcher) {
  auto used = chooseIndex(table, order, column);
  return used ? IndexedSearch(table, order, column, matcher, *std::move(used)).run() : std::nullopt;
}

}  // namespace veltrano::access
