#include "database/access/table_indexes.h"

#include <algorithm>

#include "database/access/field_codec.h"
#include "database/access/index_tree.h"

namespace veltrano::access {

namespace {

using Entry = TableIndexes::RowKeys::Entry;

bool sameEntry(const Entry* left, const Entry* right) {
  const bool leftPresent = left != nullptr && left->present();
  const bool rightPresent = right != nullptr && right->present();
  return leftPresent == rightPresent && (!leftPresent || left->key == right->key);
}

/// The definition counts the different keys that an index has seen; it never counts back.
bool countNewKey(Pager& pager, const TableDefinition& definition, const Index& index) {
  if (index.uniqueCountOffset + 4 > pager.pageSize()) {
    return true;  // on a continuation page: nobody reads it by this figure
  }
  const MutableBytes page = pager.edit(definition.page);
  if (page.empty()) {
    return false;
  }
  std::uint8_t* count = page.data() + index.uniqueCountOffset;
  store32(count, load32(count) + 1);
  return true;
}

bool changeIndex(const Table& table, const Index& index, const Entry* before, const Entry* after,
                 RowPointer row) {
  IndexTree tree(table.pager(), table.definition().page, index);
  if (before != nullptr && before->present() && !tree.remove({before->key, row})) {
    return false;
  }
  if (after == nullptr || !after->present()) {
    return true;
  }
  bool newKey = false;
  return tree.insert({after->key, row}, newKey) &&
         (!newKey || countNewKey(table.pager(), table.definition(), index));
}

}  // namespace

std::optional<TableIndexes> TableIndexes::create(const Table& table, std::string& reason) {
  TableIndexes indexes;
  for (const Index& index : table.definition().indexes) {
    auto maker = IndexKeyMaker::create(table.pager().version(), table.pager().defaultTextOrder(),
                                       table.definition(), index, reason);
    if (!maker) {
      return std::nullopt;
    }
    indexes.makers_.push_back(std::move(*maker));
  }
  return indexes;
}

bool TableIndexes::makeKeys(const Table& table, const RowView& row, RowKeys& keys) {
  const TableDefinition& definition = table.definition();
  keys.entries.resize(makers_.size());
  for (std::size_t i = 0; i < makers_.size(); ++i) {
    const auto& columns = definition.indexes[i].columns;
    values_.resize(columns.size());
    buffers_.resize(std::max(buffers_.size(), columns.size()));
    for (std::size_t c = 0; c < columns.size(); ++c) {
      const Column* column = definition.byNumber(columns[c].column);
      const auto value = cellToStored(table.pager(), *column, row.cell(*column), buffers_[c]);
      if (!value) {
        return false;
      }
      values_[c] = *value;
    }
    Entry& entry = keys.entries[i];
    entry.outcome = makers_[i].make(values_, entry.key, entry.allNull);
    if (entry.outcome == KeyOutcome::refused || entry.outcome == KeyOutcome::damaged) {
      return false;
    }
  }
  return true;
}

bool TableIndexes::change(const Table& table, const RowKeys* before, const RowKeys* after, RowPointer row,
                          std::string& reason) const {
  const TableDefinition& definition = table.definition();
  const auto entryOf = [](const RowKeys* keys, std::size_t i) {
    return keys != nullptr ? &keys->entries[i] : nullptr;
  };
  for (std::size_t i = 0; i < makers_.size(); ++i) {
    const Entry* wanted = entryOf(after, i);
    if (!definition.indexes[i].unique || wanted == nullptr || !wanted->present() || wanted->allNull ||
        sameEntry(entryOf(before, i), wanted)) {
      continue;
    }
    const auto taken =
        IndexTree(table.pager(), definition.page, definition.indexes[i]).containsKey(wanted->key);
    if (!taken || *taken) {
      reason = (taken ? "a record with the same key exists in index " : "damaged index ") +
               definition.indexes[i].name;
      return false;
    }
  }
  for (std::size_t i = 0; i < makers_.size(); ++i) {
    if (!sameEntry(entryOf(before, i), entryOf(after, i)) &&
        !changeIndex(table, definition.indexes[i], entryOf(before, i), entryOf(after, i), row)) {
      reason = "index " + definition.indexes[i].name + " is damaged, or has no place for the entry";
      return false;
    }
  }
  return true;
}

}  // namespace veltrano::access
