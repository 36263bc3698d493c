#include "database/access/authoring/relation_plan.h"

#include <algorithm>
#include <iterator>

#include "base/text/lower_case.h"

namespace veltrano::access {

namespace {

constexpr std::size_t mostIndexes = 32;

TablePlan* find(std::vector<TablePlan>& plans, const std::string& name) {
  const auto found =
      std::ranges::find_if(plans, [&](const TablePlan& plan) { return sameName(plan.table.name, name); });
  return found != plans.end() ? &*found : nullptr;
}

const NewColumn* find(const NewTable& table, const std::string& name) {
  const auto found = std::ranges::find_if(
      table.columns, [&](const NewColumn& column) { return sameName(column.name, name); });
  return found != table.columns.end() ? &*found : nullptr;
}

bool isOn(const NewIndex& index, const std::vector<std::string>& columns) {
  return std::ranges::equal(index.columns, columns, [](const NewIndexColumn& a, const std::string& b) {
    return sameName(a.name, b);
  });
}

bool validColumns(const NewRelation& relation, const NewTable& parent, const NewTable& child) {
  return !relation.childColumns.empty() &&
         std::ranges::equal(relation.parentColumns, relation.childColumns,
                            [&](const std::string& parentName, const std::string& childName) {
                              const NewColumn* a = find(parent, parentName);
                              const NewColumn* b = find(child, childName);
                              return a != nullptr && b != nullptr && a->type == b->type;
                            });
}

// Numbers follow those of the ordinary logical indexes, which are the ones with names.
std::uint32_t nextNumber(const TablePlan& plan) {
  const auto named =
      std::ranges::count_if(plan.table.indexes, [](const NewIndex& index) { return !index.name.empty(); });
  return static_cast<std::uint32_t>(named) + static_cast<std::uint32_t>(plan.relations.size());
}

std::size_t childIndex(TablePlan& plan, const std::vector<std::string>& columns) {
  std::vector<NewIndex>& indexes = plan.table.indexes;
  const auto found =
      std::ranges::find_if(indexes, [&](const NewIndex& index) { return isOn(index, columns); });
  const auto at = static_cast<std::size_t>(std::distance(indexes.begin(), found));
  if (found == indexes.end()) {
    NewIndex index;
    for (const std::string& name : columns) {
      index.columns.push_back({name});
    }
    indexes.push_back(std::move(index));
  }
  return at;
}

}  // namespace

Status planRelation(const NewRelation& relation, std::vector<TablePlan>& plans) {
  Status invalid(Failure::other, "not a valid relation: " + relation.name);
  TablePlan* parent = find(plans, relation.parent);
  TablePlan* child = find(plans, relation.child);
  if (relation.name.empty() || parent == nullptr || child == nullptr ||
      !validColumns(relation, parent->table, child->table)) {
    return invalid;
  }
  const auto key = std::ranges::find_if(parent->table.indexes, [&](const NewIndex& index) {
    return (index.primary || index.unique) && isOn(index, relation.parentColumns);
  });
  if (key == parent->table.indexes.end()) {
    return invalid;
  }
  RelationSide side;
  side.cascadesUpdates = relation.cascadeUpdates;
  side.onDelete = relation.onDelete;

  RelationSide parentSide = side;
  parentSide.role = RelationSide::Role::parent;
  parentSide.name = std::string(".r") + static_cast<char>('B' + parent->relations.size());
  parentSide.index = static_cast<std::size_t>(std::distance(parent->table.indexes.begin(), key));
  parentSide.number = nextNumber(*parent);
  parentSide.otherTable = child->page;
  parent->relations.push_back(parentSide);

  RelationSide childSide = side;
  childSide.role = RelationSide::Role::child;
  childSide.name = relation.name;
  childSide.index = childIndex(*child, relation.childColumns);
  childSide.number = nextNumber(*child);
  childSide.otherTable = parent->page;
  childSide.otherNumber = parentSide.number;
  child->relations.push_back(childSide);
  const auto last = std::ranges::find_if(
      parent->relations, [&](const RelationSide& one) { return one.number == parentSide.number; });
  last->otherNumber = childSide.number;

  const auto fits = [](const TablePlan& plan) { return nextNumber(plan) <= mostIndexes; };
  return fits(*parent) && fits(*child) ? Status() : invalid;
}

}  // namespace veltrano::access
