#ifndef VELTRANO_DATABASE_ACCESS_RULES_PARSER_H
#define VELTRANO_DATABASE_ACCESS_RULES_PARSER_H

// Reads the validation rules of fields and tables, as people write them:
//
//   >= 0 And <= 150     Between 1 And 9     In ("a", "b")     Is Not Null     Like "[A-Z]##*"     "x" Or "y"
//   [Until] >= [From] Or [Until] Is Null     Len([Code]) = 5     <= Date() + 30     >= #1/31/2000#
//
//   rule        and { Or and }
//   and         not { And not }
//   not         Not not | predicate
//   predicate   [sum] comparison sum | [sum] Is [Not] Null | [sum] [Not] Between sum And sum
//               | [sum] [Not] In (sum {, sum}) | [sum] [Not] Like text | sum
//   sum         primary { + primary | - primary }
//   primary     constant | field | - primary | (rule) | Len(rule) | IsNull(rule) | Date() | Now() | Time()
//
// In the rule of a field, a predicate that lacks its first operand is about the field, and a value alone stands for
// "= value".

#include <optional>
#include <string_view>

#include "base/status.h"
#include "database/access/rules/expression.h"
#include "database/access/schema/table_definition.h"

namespace veltrano::access {

/// `field` is the place of the field whose rule it is in the definition; empty for the table's. `order` is that of the
/// database's texts; without it, rules that compare texts are refused. Fails, with the reason, if the rule is not
/// understood.
Result<RuleNode> parseRule(std::string_view rule, const TableDefinition& table,
                           std::optional<std::size_t> field, std::optional<TextOrder> order);

}  // namespace veltrano::access

#endif
