#include "database/access/index/table_indexes.h"

#include "database/access/index/tree.h"

namespace veltrano::access {

namespace {

// The definition counts the distinct entries of each index; the figure never goes down.
bool countNewKey(const Table& table, const Index& index) {
  constexpr std::size_t counterSize = 4;
  Pager& pager = table.pager();
  // Only definitions with more indexes than the rules allow have the counter elsewhere.
  if (index.uniqueCountOffset + counterSize > pager.pageSize()) {
    return true;
  }
  const MutableBytes page = pager.edit(table.definition().page);
  if (page.empty()) {
    return false;
  }
  std::uint8_t* counter = page.data() + index.uniqueCountOffset;
  store32(counter, load32(counter) + 1);
  return true;
}

}  // namespace

Result<TableIndexes> TableIndexes::create(const Table& table) {
  TableIndexes indexes;
  for (const Index& index : table.definition().indexes) {
    auto maker = IndexKeyMaker::create(table.pager().version(), table.pager().defaultTextOrder(),
                                       table.definition(), index);
    if (!maker) {
      return maker.status();
    }
    indexes.makers_.push_back(*std::move(maker));
  }
  return indexes;
}

bool TableIndexes::makeKeys(const Table& table, const RowView& row, RowKeys& keys) {
  keys.entries.resize(makers_.size());
  for (std::size_t i = 0; i < makers_.size(); ++i) {
    if (!values_.read(table, table.definition().indexes[i].columns, row)) {
      return false;
    }
    RowKeys::Entry& entry = keys.entries[i];
    entry.outcome = makers_[i].make(values_.values(), entry.key, entry.allNull);
    if (entry.outcome == KeyOutcome::damaged) {
      return false;
    }
  }
  return true;
}

Status TableIndexes::change(const Table& table, const RowKeys* before, const RowKeys* after,
                            RowPointer row) const {
  for (std::size_t i = 0; i < makers_.size(); ++i) {
    const Index& index = table.definition().indexes[i];
    const RowKeys::Entry* old =
        before != nullptr && before->entries[i].present() ? &before->entries[i] : nullptr;
    const RowKeys::Entry* now = after != nullptr ? &after->entries[i] : nullptr;
    if (now != nullptr && now->outcome == KeyOutcome::refused) {
      return {Failure::other, "a field of the index " + index.name + " may not be null"};
    }
    now = now != nullptr && now->present() ? now : nullptr;
    if (old != nullptr && now != nullptr && old->key == now->key) {
      continue;
    }
    IndexTree tree(table.pager(), table.definition().page, index);
    if (old != nullptr && !tree.remove({old->key, row})) {
      return {Failure::damaged, "the index " + index.name + " is damaged"};
    }
    if (now == nullptr) {
      continue;
    }
    bool newKey = false;
    if (now->key.size() > longestKey) {
      return {Failure::other, "the key of the index " + index.name + " is too long"};
    }
    if (!tree.insert({now->key, row}, newKey)) {
      return {Failure::damaged, "the index " + index.name + " is damaged, or the file full"};
    }
    if (!newKey && index.unique && !now->allNull) {
      return {Failure::exists, "a duplicate in the index " + index.name};
    }
    if (newKey && !countNewKey(table, index)) {
      return {Failure::damaged, "the table's definition cannot be changed"};
    }
  }
  return {};
}

}  // namespace veltrano::access
