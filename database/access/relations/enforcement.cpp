#include "database/access/relations/enforcement.h"

namespace veltrano::access {

// What a change of a row demands of its relations:
//
//   the row        new               changed, the key too                    deleted
//   as a child     a parent exists   a parent exists                         nothing
//   as a parent    nothing           refuse: no child has the old key        refuse: no child has the key
//                                    cascade: the children get the new key   cascade: they are deleted
//                                                                            set null: they get nulls
//
// A key is the same if its bytes in the indexes are.

namespace {

Status damagedRow() {
  return {Failure::damaged, "the record is damaged"};
}

Status inRelation(const Relation& relation, const Status& why) {
  return {why.failure(), "the relation " + relation.name() + ": " + why.reason()};
}

}  // namespace

Result<Enforcement> Enforcement::create(const Table& table) {
  const PageNumber page = table.definition().page;
  RelatedTables tables(table.pager());
  const auto found = tables.find(page);
  if (!found) {
    return found.status();
  }
  return Enforcement(std::move(tables), page);
}

Status Enforcement::follow(const RowView& before, const RowView& after) {
  steps_.clear();
  checks_.clear();
  timesChanged_.clear();
  deleted_.clear();
  const auto table = tables_.find(table_);
  if (!table) {
    return table.status();
  }
  // Steps wait in a queue: children of children can go as deep as there are records.
  Status done = note(**table, before, after);
  for (; done && !steps_.empty(); steps_.pop_front()) {
    done = take(steps_.front());
  }
  for (auto check = checks_.begin(); done && check != checks_.end(); ++check) {
    done = make(*check);
  }
  return done;
}

Status Enforcement::note(const RelatedTable& table, const RowView& before, const RowView& after) {
  Status done;
  for (auto one = table.asParent.begin(); done && one != table.asParent.end(); ++one) {
    done = noteParent(*one, before, after);
  }
  for (auto one = table.asChild.begin(); done && one != table.asChild.end(); ++one) {
    done = noteChild(*one, before, after);
  }
  return done;
}

Status Enforcement::noteParent(const Relation& relation, const RowView& before, const RowView& after) {
  if (!before.valid()) {
    return {};
  }
  auto key = relation.keyOf(Relation::Role::parent, before);
  const auto newKey = after.valid() ? relation.keyOf(Relation::Role::parent, after) : key;
  if (!key || !newKey) {
    return damagedRow();
  }
  if (key->allNull || (after.valid() && *newKey == *key)) {
    return {};
  }
  if (after.valid() ? !relation.cascadesUpdates() : relation.onDelete() == OnDelete::refuse) {
    addCheck(relation, *std::move(key), Relation::Role::parent);
    return {};
  }
  if (!after.valid() && relation.onDelete() == OnDelete::cascade) {
    steps_.push_back({&relation, *std::move(key), std::nullopt});
    return {};
  }
  auto fields = relation.assignment(after.valid() ? &after : nullptr);
  if (!fields) {
    return inRelation(relation, fields.status());
  }
  steps_.push_back({&relation, *std::move(key), *std::move(fields)});
  return {};
}

Status Enforcement::noteChild(const Relation& relation, const RowView& before, const RowView& after) {
  if (!after.valid()) {
    return {};
  }
  auto key = relation.keyOf(Relation::Role::child, after);
  const auto oldKey = before.valid() ? relation.keyOf(Relation::Role::child, before) : key;
  if (!key || !oldKey) {
    return damagedRow();
  }
  if (!key->allNull && (!before.valid() || *oldKey != *key)) {
    addCheck(relation, *std::move(key), Relation::Role::child);
  }
  return {};
}

// Many children of one parent make the same check.
void Enforcement::addCheck(const Relation& relation, RelationKey key, Relation::Role changed) {
  if (checks_.empty() || checks_.back().relation != &relation || checks_.back().key != key) {
    checks_.push_back({&relation, std::move(key), changed});
  }
}

Status Enforcement::take(const Step& step) {
  const auto table = tables_.find(step.relation->child().definition().page);
  if (!table) {
    return table.status();
  }
  const auto children = step.relation->children(step.key);
  Status done = children.status();
  for (std::size_t i = 0; done && i < children->size(); ++i) {
    done = changeChild(**table, (*children)[i], step);
  }
  return done;
}

Status Enforcement::changeChild(RelatedTable& table, RowPointer row, const Step& step) {
  if (!table.writer) {
    return inRelation(*step.relation, table.writer.status());
  }
  if (step.fields && leadsInACircle(table, row)) {
    return inRelation(*step.relation, {Failure::other, "its changes lead in a circle"});
  }
  RowWriter& writer = *table.writer;
  if (Status done = step.fields ? writer.update(row, *step.fields) : writer.remove(row); !done) {
    return inRelation(*step.relation, done);
  }
  if (!step.fields) {
    deleted_.push_back({table.table.definition().page, row});
  }
  return note(table, writer.before(), writer.after());
}

// Relations between the same tables in both directions could exchange the columns of a key for ever.
bool Enforcement::leadsInACircle(const RelatedTable& table, RowPointer row) {
  constexpr int mostChanges = 32;  // more than one for each relation of a table
  return !table.asParent.empty() && ++timesChanged_[{table.table.definition().page, row}] > mostChanges;
}

Status Enforcement::make(const Check& check) {
  const Relation& relation = *check.relation;
  const auto parent = relation.hasParent(check.key);
  if (!parent || *parent) {
    return parent.status();
  }
  const auto children = relation.hasChildren(check.key);
  if (!children || !*children) {
    return children.status();
  }
  const bool child = check.changed == Relation::Role::child;
  return inRelation(
      relation,
      {Failure::other, child ? "no record of " + relation.parent().definition().name + " has the key"
                             : "records of " + relation.child().definition().name + " depend on the record"});
}

}  // namespace veltrano::access
