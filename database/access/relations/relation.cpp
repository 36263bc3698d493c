#include "database/access/relations/relation.h"

#include <algorithm>
#include <utility>

#include "database/access/index/cursor.h"
#include "database/access/schema/field_codec.h"

namespace veltrano::access {

namespace {

// The bytes of a value in one column mean the same in the other.
bool comparable(const Column* a, const Column* b) {
  return a->type == b->type && a->scale == b->scale && !a->isLongValue();
}

RelationKey::Side makeKey(const IndexKeyMaker& maker, const std::vector<StoredValue>& values, bool& sound) {
  RelationKey::Side side;
  bool allNull = false;
  const KeyOutcome outcome = maker.make(values, side.bytes, allNull);
  sound = sound && outcome != KeyOutcome::damaged;
  side.possible = outcome == KeyOutcome::entry;
  return side;
}

// Calls visit(row) for the rows that have the key, until it answers false.
template <typename Visit>
Status visitRows(const Table& table, const Index& index, const RelationKey::Side& key, Visit visit) {
  if (!key.possible) {
    return {};
  }
  const IndexTree tree(table.pager(), table.definition().page, index);
  IndexCursor cursor(tree, table.pager());
  bool found = cursor.seek({key.bytes, {}});
  while (found && std::ranges::equal(cursor.entry().key, key.bytes) && visit(cursor.row())) {
    found = cursor.next();
  }
  return cursor.damaged() ? Status(Failure::damaged, "the index " + index.name + " is damaged") : Status();
}

Result<bool> hasRow(const Table& table, const Index& index, const RelationKey::Side& key) {
  bool any = false;
  Status done = visitRows(table, index, key, [&any](RowPointer) {
    any = true;
    return false;
  });
  return done ? Result<bool>(any) : done;
}

// A value of the parent's column as the cell of the child's. Texts may be compressed in one of the two alone.
std::optional<Cell> convertCell(Pager& pager, const Column& from, std::optional<Bytes> cell,
                                const Column& to) {
  if (!cell) {
    return to.type == ColumnType::boolean ? Cell{false, {0}} : Cell();
  }
  if (!from.isText()) {
    const bool fits = to.type == ColumnType::boolean || cell->size() <= to.length;
    return fits ? std::optional(Cell{false, {cell->begin(), cell->end()}}) : std::nullopt;
  }
  std::string text;
  auto converted = cellToText(pager, from, *cell, text) ? valueToCell(to, Value(text)) : std::nullopt;
  return converted ? std::optional(Cell{false, *std::move(converted)}) : std::nullopt;
}

}  // namespace

Result<Relation::Side> Relation::makeSide(const Table& table, const RelationSide& side) {
  const TableDefinition& definition = table.definition();
  if (!side.known || side.index >= definition.indexes.size()) {
    return {Failure::other, "it is of an unknown kind"};
  }
  const Index& index = definition.indexes[side.index];
  auto maker =
      IndexKeyMaker::create(table.pager().version(), table.pager().defaultTextOrder(), definition, index);
  if (!maker) {
    return maker.status();
  }
  Side made{&table, &index, {}, *std::move(maker)};
  for (const IndexColumn& column : index.columns) {
    made.columns.push_back(definition.byNumber(column.column));
  }
  return made;
}

Result<Relation> Relation::create(const Table& parent, const RelationSide& parentSide, const Table& child,
                                  const RelationSide& childSide) {
  auto parentPart = makeSide(parent, parentSide);
  auto childPart = makeSide(child, childSide);
  if (!parentPart || !childPart) {
    return parentPart ? childPart.status() : parentPart.status();
  }
  if (!std::ranges::equal(parentPart->columns, childPart->columns, comparable)) {
    return {Failure::other, "its columns are not of the same types"};
  }
  return Relation(childSide.name, *std::move(parentPart), *std::move(childPart), parentSide);
}

std::optional<RelationKey> Relation::keyOf(Role role, const RowView& row) const {
  const Side& side = role == Role::parent ? parent_ : child_;
  std::vector<StoredValue> values;
  std::vector<std::vector<std::uint8_t>> buffers(side.columns.size());
  for (std::size_t i = 0; i < side.columns.size(); ++i) {
    const auto value =
        cellToStored(side.table->pager(), *side.columns[i], row.cell(*side.columns[i]), buffers[i]);
    if (!value) {
      return std::nullopt;
    }
    values.push_back(*value);
  }
  RelationKey key;
  key.allNull = std::ranges::all_of(values, &StoredValue::null);
  bool sound = true;
  key.parent = makeKey(parent_.maker, values, sound);
  key.child = makeKey(child_.maker, values, sound);
  return sound ? std::optional(std::move(key)) : std::nullopt;
}

Result<bool> Relation::hasParent(const RelationKey& key) const {
  return hasRow(*parent_.table, *parent_.index, key.parent);
}

Result<bool> Relation::hasChildren(const RelationKey& key) const {
  return hasRow(*child_.table, *child_.index, key.child);
}

Result<std::vector<RowPointer>> Relation::children(const RelationKey& key) const {
  std::vector<RowPointer> rows;
  Status done = visitRows(*child_.table, *child_.index, key.child, [&rows](RowPointer row) {
    rows.push_back(row);
    return true;
  });
  return done ? Result<std::vector<RowPointer>>(std::move(rows)) : done;
}

Result<std::vector<Draft>> Relation::assignment(const RowView* parent) const {
  const std::vector<Column>& columns = child_.table->definition().columns;
  std::vector<Draft> drafts(columns.size());
  for (std::size_t i = 0; i < child_.columns.size(); ++i) {
    const Column& from = *parent_.columns[i];
    const Column& to = *child_.columns[i];
    auto cell =
        convertCell(parent_.table->pager(), from, parent != nullptr ? parent->cell(from) : std::nullopt, to);
    if (!cell) {
      return {Failure::other, "the value does not fit the field " + to.name};
    }
    drafts[static_cast<std::size_t>(&to - columns.data())] = {*std::move(cell), true};
  }
  return drafts;
}

}  // namespace veltrano::access
