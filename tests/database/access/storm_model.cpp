#include "storm_model.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace veltrano::access {

namespace {

// What the children of a record do when it goes, or gets a new number. False if a relation refuses that.
bool follow(StormModel& model, StormTable table, int id, std::optional<int> newId) {
  for (const StormRelation& relation : stormRelations) {
    const StormRows children = relation.parent == table ? model[relation.child] : StormRows();
    for (const auto& [child, row] : children) {
      if (row.parent != id) {
        continue;
      }
      if (newId ? !relation.cascadeUpdates : relation.onDelete == OnDelete::refuse) {
        return false;
      }
      if (newId || relation.onDelete == OnDelete::setNull) {
        model[relation.child].at(child).parent = newId;
      } else {
        model[relation.child].erase(child);
        if (!follow(model, relation.child, child, {})) {
          return false;
        }
      }
    }
  }
  return true;
}

bool rename(StormModel& model, StormTable table, int id, int newId) {
  if (id == newId) {
    return true;
  }
  auto node = model[table].extract(id);
  node.key() = newId;
  return model[table].insert(std::move(node)).inserted && follow(model, table, id, newId);
}

bool hasParent(const StormModel& model, StormTable table, const StormRow& row) {
  return !row.parent ||
         std::any_of(stormRelations.begin(), stormRelations.end(), [&](const StormRelation& relation) {
           return relation.child == table && model[relation.parent].contains(*row.parent);
         });
}

}  // namespace

int below(std::mt19937& random, int limit) {
  return static_cast<int>(random() % static_cast<unsigned>(limit));
}

std::optional<StormModel> expected(StormModel model, const StormChange& change) {
  StormRows& rows = model[change.table];
  bool done = true;
  switch (change.kind) {
    case StormChange::Kind::add:
      done = rows.emplace(change.id, change.row).second && hasParent(model, change.table, change.row);
      break;
    case StormChange::Kind::edit:
      rows[change.id] = change.row;
      done = hasParent(model, change.table, change.row);
      break;
    case StormChange::Kind::rename:
      done = rename(model, change.table, change.id, change.newId);
      break;
    case StormChange::Kind::remove:
      rows.erase(change.id);
      done = follow(model, change.table, change.id, {});
  }
  return done ? std::optional(std::move(model)) : std::nullopt;
}

StormChange drawChange(std::mt19937& random, const StormModel& model) {
  constexpr int mostIds = 400;
  StormChange change = {StormChange::Kind::add, records, below(random, mostIds), {}, below(random, mostIds)};
  const int kind = below(random, 20);
  change.table = static_cast<StormTable>(std::max(0, below(random, 8) - 3));
  const StormRows& rows = model[change.table];
  if (kind >= 8 && !rows.empty()) {
    change.kind = kind < 13   ? StormChange::Kind::edit
                  : kind < 15 ? StormChange::Kind::rename
                              : StormChange::Kind::remove;
    change.id = std::next(rows.begin(), below(random, static_cast<int>(rows.size())))->first;
  }
  change.row.version = below(random, change.table == records ? 100000 : 300);
  // Mostly one that exists.
  const StormTable parentTable = change.table == held ? followers : change.table == nested ? nested : records;
  const StormRows& parents = model[parentTable];
  const int parent = change.table == records ? 0 : below(random, 8);
  if (parent > 1 && !parents.empty()) {
    change.row.parent = std::next(parents.begin(), below(random, static_cast<int>(parents.size())))->first;
  } else if (parent == 1) {
    change.row.parent = below(random, mostIds);
  }
  return change;
}

}  // namespace veltrano::access
