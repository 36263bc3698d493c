#include "storm_model.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace veltrano::access {

namespace {

// The children that a record has by a relation.
std::vector<int> childrenOf(const StormModel& model, const StormRelation& relation, int parent) {
  std::vector<int> found;
  for (const auto& [id, row] : model[relation.child]) {
    if (row.parent == parent) {
      found.push_back(id);
    }
  }
  return found;
}

// False if a relation refuses it.
bool remove(StormModel& model, StormTable table, int id) {
  model[table].erase(id);
  for (const StormRelation& relation : stormRelations) {
    for (const int child : relation.parent == table ? childrenOf(model, relation, id) : std::vector<int>()) {
      if (relation.onDelete == OnDelete::refuse ||
          (relation.onDelete == OnDelete::cascade && !remove(model, relation.child, child))) {
        return false;
      }
      if (relation.onDelete == OnDelete::setNull) {
        model[relation.child][child].parent.reset();
      }
    }
  }
  return true;
}

bool rename(StormModel& model, StormTable table, int id, int newId) {
  if (id != newId && model[table].contains(newId)) {
    return false;
  }
  auto node = model[table].extract(id);
  node.key() = newId;
  model[table].insert(std::move(node));
  for (const StormRelation& relation : stormRelations) {
    for (const int child :
         relation.parent == table && id != newId ? childrenOf(model, relation, id) : std::vector<int>()) {
      if (!relation.cascadeUpdates) {
        return false;
      }
      model[relation.child][child].parent = newId;
    }
  }
  return true;
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
  bool done = true;
  switch (change.kind) {
    case StormChange::Kind::add:
      done = hasParent(model, change.table, change.row) &&
             model[change.table].emplace(change.id, change.row).second;
      break;
    case StormChange::Kind::edit:
      done = hasParent(model, change.table, change.row);
      model[change.table][change.id] = change.row;
      break;
    case StormChange::Kind::rename:
      done = rename(model, change.table, change.id, change.newId);
      break;
    case StormChange::Kind::remove:
      done = remove(model, change.table, change.id);
  }
  return done ? std::optional(std::move(model)) : std::nullopt;
}

StormChange drawChange(std::mt19937& random, const StormModel& model) {
  constexpr int mostIds = 400;
  StormChange change = {StormChange::Kind::add, records, below(random, mostIds), {}, below(random, mostIds)};
  const int kind = below(random, 20);
  change.table = static_cast<StormTable>(std::max(0, below(random, 7) - 3));
  const StormRows& rows = model[change.table];
  if (kind >= 8 && !rows.empty()) {
    change.kind = kind < 13   ? StormChange::Kind::edit
                  : kind < 15 ? StormChange::Kind::rename
                              : StormChange::Kind::remove;
    change.id = std::next(rows.begin(), below(random, static_cast<int>(rows.size())))->first;
  }
  if (change.table == records) {
    change.row.version = below(random, 100000);
    return change;
  }
  // Mostly one that exists.
  const StormRows& parents = model[change.table == held ? followers : records];
  const int parent = below(random, 8);
  if (parent > 1 && !parents.empty()) {
    change.row.parent = std::next(parents.begin(), below(random, static_cast<int>(parents.size())))->first;
  } else if (parent == 1) {
    change.row.parent = below(random, mostIds);
  }
  return change;
}

std::string describe(const StormModel& model) {
  std::string all;
  for (const StormTable table : {records, followers, loose, held}) {
    all += std::string("\n ") + stormTableNames[table];
    for (const auto& [id, row] : model[table]) {
      all += " " + std::to_string(id) + ":" + std::to_string(row.version);
      all += row.parent ? "<" + std::to_string(*row.parent) : "";
    }
  }
  return all;
}

}  // namespace veltrano::access
