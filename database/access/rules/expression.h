#ifndef VELTRANO_DATABASE_ACCESS_RULES_EXPRESSION_H
#define VELTRANO_DATABASE_ACCESS_RULES_EXPRESSION_H

// A validation rule as a tree, made by parser.h and evaluated by evaluation.h.

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "database/access/rules/pattern.h"
#include "database/access/schema/table_definition.h"

namespace veltrano::access {

/// Null, a number or a text. Dates are numbers (days), truth values are -1 and 0.
using RuleValue = std::variant<std::monostate, double, std::u16string>;

/// What a part of a rule gives, if it is not null.
enum class RuleType {
  null,  ///< only null
  number,
  date,
  text,
  truth,
  opaque,  ///< can only be tested for null: GUIDs, binary values
};

enum class Comparison { equal, unequal, less, lessOrEqual, greater, greaterOrEqual };

struct RuleNode {
  enum class Kind {
    constant,
    column,
    now,
    today,
    timeOfDay,
    length,  ///< of the one part, in UTF-16 units
    negative,
    sum,
    compare,
    between,  ///< the first part, between the other two in either order
    in,       ///< the first part, equal to one of the others
    like,
    isNull,
    opposite,
    all,
    any,
  };
  Kind kind = Kind::constant;
  RuleType type = RuleType::null;
  Comparison comparison{};      ///< compare
  RuleValue constant = {};      ///< constant
  std::size_t column = 0;       ///< column: its place in the table's definition
  LikePattern pattern = {};     ///< like
  std::vector<RuleNode> parts;  ///< the operands
};

template <typename... Parts>
RuleNode nodeOf(RuleNode::Kind kind, RuleType type, Parts... parts) {
  RuleNode node{.kind = kind, .type = type, .parts = {}};
  (node.parts.push_back(std::move(parts)), ...);
  return node;
}
RuleNode constantOf(RuleType type, RuleValue value);

RuleType ruleTypeOf(const Column& column);
/// Whether values of the type are numbers.
bool isNumeric(RuleType type);

}  // namespace veltrano::access

#endif
