#ifndef VELTRANO_DATABASE_ACCESS_RULES_VALIDATION_H
#define VELTRANO_DATABASE_ACCESS_RULES_VALIDATION_H

// The validation rules of a table and of its fields.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "database/access/rules/expression.h"
#include "database/access/schema/table.h"

namespace veltrano::access {

class Validation {
 public:
  /// No rules.
  Validation() = default;
  /// Fails if a rule is not understood: the table must not be written then.
  static Result<Validation> create(const Table& table);

  /// Checks a record that is about to be stored. Of the fields' rules, those of which `assigned` says so (by the place
  /// of the field in the definition) are checked. Fails with the rule that the record violates.
  [[nodiscard]] Status check(const Table& table, const RowView& row,
                             const std::function<bool(std::size_t)>& assigned) const;

 private:
  struct Rule {
    std::optional<std::size_t> field;  // empty: the table's
    RuleNode node;
  };
  static std::string nameOf(const TableDefinition& table, std::optional<std::size_t> field);

  std::vector<Rule> rules_;
  TextOrder order_{};
};

}  // namespace veltrano::access

#endif
