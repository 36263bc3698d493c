#include "database/access/rules/expression.h"

namespace veltrano::access {

RuleNode constantOf(RuleType type, RuleValue value) {
  return {.kind = RuleNode::Kind::constant, .type = type, .constant = std::move(value), .parts = {}};
}

RuleType ruleTypeOf(const Column& column) {
  switch (column.type) {
    case ColumnType::boolean:
      return RuleType::truth;
    case ColumnType::byte:
    case ColumnType::integer:
    case ColumnType::longInteger:
    case ColumnType::bigInteger:
    case ColumnType::currency:
    case ColumnType::single:
    case ColumnType::real:
    case ColumnType::numeric:
      return RuleType::number;
    case ColumnType::dateTime:
      return RuleType::date;
    case ColumnType::text:
    case ColumnType::memo:
      return RuleType::text;
    default:
      return RuleType::opaque;
  }
}

bool isNumeric(RuleType type) {
  return type != RuleType::text && type != RuleType::opaque;
}

}  // namespace veltrano::access
