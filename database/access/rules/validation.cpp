#include "database/access/rules/validation.h"

#include <utility>

#include "database/access/rules/evaluation.h"
#include "database/access/rules/parser.h"

namespace veltrano::access {

// "the validation rule of the field Age, ">=0""
std::string Validation::nameOf(const TableDefinition& table, std::optional<std::size_t> field) {
  return field ? "the validation rule of the field " + table.columns[*field].name + ", " +
                     table.columns[*field].validationRule
               : "the validation rule of the table, " + table.validationRule;
}

Result<Validation> Validation::create(const Table& table) {
  const TableDefinition& definition = table.definition();
  const auto order = textOrder(table.pager().version(), 0, 0, table.pager().defaultTextOrder());
  Validation made;
  made.order_ = order.value_or(TextOrder::general);
  Status done;
  const auto add = [&](const std::string& rule, std::optional<std::size_t> field) {
    if (!done || rule.empty()) {
      return;
    }
    auto node = parseRule(rule, definition, field, order);
    if (node) {
      made.rules_.push_back({field, *std::move(node)});
    } else {
      done = {Failure::notAllowed,
              nameOf(definition, field) + ", cannot be checked: " + node.status().reason()};
    }
  };
  for (std::size_t i = 0; i < definition.columns.size(); ++i) {
    add(definition.columns[i].validationRule, i);
  }
  add(definition.validationRule, std::nullopt);
  return done ? Result<Validation>(std::move(made)) : done;
}

Status Validation::check(const Table& table, const RowView& row,
                         const std::function<bool(std::size_t)>& assigned) const {
  for (const Rule& rule : rules_) {
    if ((!rule.field || assigned(*rule.field)) && !keepsRule(rule.node, table, row, order_)) {
      return {Failure::other, nameOf(table.definition(), rule.field) + ", is violated"};
    }
  }
  return {};
}

}  // namespace veltrano::access
