#ifndef VELTRANO_DATABASE_ACCESS_RULES_EVALUATION_H
#define VELTRANO_DATABASE_ACCESS_RULES_EVALUATION_H

// What a validation rule says of a record.

#include "database/access/rules/expression.h"
#include "database/access/schema/table.h"

namespace veltrano::access {

/// False if the rule is violated. A rule of which the answer is null is kept: a comparison with a null says nothing.
/// Texts are compared in `order`, without regard to case and blanks at the end.
bool keepsRule(const RuleNode& rule, const Table& table, const RowView& row, TextOrder order);

}  // namespace veltrano::access

#endif
