#include "database/access/relations/related_tables.h"

#include <algorithm>
#include <utility>

#include "database/access/schema/catalog.h"

namespace veltrano::access {

Result<RelatedTable*> RelatedTables::read(PageNumber page) {
  const auto known = tables_.find(page);
  if (known != tables_.end()) {
    return known->second.get();
  }
  auto definition = findTable(*pager_, page);
  if (!definition) {
    return definition.status();
  }
  auto table = std::make_unique<RelatedTable>(Table(*pager_, *std::move(definition)));
  return tables_.emplace(page, std::move(table)).first->second.get();
}

// A relation is a logical index in each of the two tables; each names the other one.
Result<Relation> RelatedTables::makeRelation(const RelatedTable& table, const RelationSide& side) {
  const auto other = read(side.otherTable);
  if (!other) {
    return {Failure::other, "its other table is not in this file"};
  }
  const TableDefinition& definition = (*other)->table.definition();
  const auto otherSide = std::ranges::find_if(definition.relations, [&](const RelationSide& one) {
    return one.number == side.otherNumber && one.role != side.role &&
           one.otherTable == table.table.definition().page;
  });
  if (otherSide == definition.relations.end()) {
    return {Failure::other, "the table " + definition.name + " does not have it"};
  }
  return side.role == RelationSide::Role::parent
             ? Relation::create(table.table, side, (*other)->table, *otherSide)
             : Relation::create((*other)->table, *otherSide, table.table, side);
}

Status RelatedTables::connect(RelatedTable& table) {
  std::vector<Relation> asParent;
  std::vector<Relation> asChild;
  for (const RelationSide& side : table.table.definition().relations) {
    auto relation = makeRelation(table, side);
    if (!relation) {
      return {Failure::notAllowed,
              "the relation " + side.name + " cannot be enforced: " + relation.status().reason()};
    }
    (side.role == RelationSide::Role::parent ? asParent : asChild).push_back(*std::move(relation));
  }
  table.asParent = std::move(asParent);
  table.asChild = std::move(asChild);
  table.connected = true;
  return {};
}

Result<RelatedTable*> RelatedTables::find(PageNumber page) {
  auto table = read(page);
  if (!table || (*table)->connected) {
    return table;
  }
  Status connected = connect(**table);
  if (!connected) {
    return connected;
  }
  return table;
}

}  // namespace veltrano::access
