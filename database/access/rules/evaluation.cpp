#include "database/access/rules/evaluation.h"

#include <algorithm>
#include <optional>

#include "base/numbers/numbers.h"
#include "base/text/wtf8.h"
#include "database/access/schema/field_codec.h"
#include "database/values/current_date.h"

namespace veltrano::access {

namespace {

using Kind = RuleNode::Kind;
using Truth = std::optional<bool>;  // empty: null

RuleValue valueOf(Truth truth) {
  return truth ? RuleValue(*truth ? -1.0 : 0.0) : RuleValue();
}

bool isNull(const RuleValue& value) {
  return std::holds_alternative<std::monostate>(value);
}

std::u16string textOf(const RuleValue& value) {
  if (const auto* text = std::get_if<std::u16string>(&value)) {
    return *text;
  }
  const auto number = generalNumberText(std::get<double>(value));
  const std::string_view digits = number.view();
  return {digits.begin(), digits.end()};
}

class Evaluator {
 public:
  Evaluator(const Table& table, const RowView& row, TextOrder order)
      : table_(table), row_(row), order_(order) {}

  Truth truthOf(const RuleNode& node) const {
    switch (node.kind) {
      case Kind::opposite: {
        const Truth part = truthOf(node.parts.front());
        return part ? Truth(!*part) : part;
      }
      case Kind::all:
        return combined(node, false);
      case Kind::any:
        return combined(node, true);
      case Kind::isNull:
        return isNull(valueOfNode(node.parts.front()));
      case Kind::compare:
        return compared(node);
      case Kind::between:
        return isBetween(node);
      case Kind::in:
        return isIn(node);
      case Kind::like: {
        const RuleValue value = valueOfNode(node.parts.front());
        return isNull(value) ? Truth() : node.pattern.matches(textOf(value));
      }
      default: {
        const RuleValue value = valueOfNode(node);
        return isNull(value) ? Truth() : std::get<double>(value) != 0;
      }
    }
  }

 private:
  RuleValue valueOfNode(const RuleNode& node) const {
    switch (node.kind) {
      case Kind::constant:
        return node.constant;
      case Kind::column:
        return valueOfColumn(table_.definition().columns[node.column]);
      case Kind::now:
        return currentDate(CurrentDate::now).days;
      case Kind::today:
        return currentDate(CurrentDate::today).days;
      case Kind::timeOfDay:
        return currentDate(CurrentDate::timeOfDay).days;
      case Kind::length: {
        const RuleValue value = valueOfNode(node.parts.front());
        return isNull(value) ? RuleValue() : RuleValue(static_cast<double>(textOf(value).size()));
      }
      case Kind::negative:
      case Kind::sum:
        return sumOf(node);
      default:
        return valueOf(truthOf(node));
    }
  }

  [[nodiscard]] RuleValue valueOfColumn(const Column& column) const {
    const auto cell = row_.cell(column);
    std::vector<std::uint8_t> buffer;
    const auto stored = cellToStored(table_.pager(), column, cell, buffer);
    if (!stored || stored->null) {
      return RuleValue();
    }
    switch (ruleTypeOf(column)) {
      case RuleType::truth:
        return stored->data[0] != 0 ? -1.0 : 0.0;
      case RuleType::date:
        return loadDouble(stored->data.data());
      case RuleType::number: {
        std::string text;
        const auto number =
            cellToText(table_.pager(), column, *cell, text) ? parseNumber(text) : std::nullopt;
        return number ? RuleValue(*number) : RuleValue();
      }
      case RuleType::text: {
        std::u16string text(stored->data.size() / 2, u'\0');
        for (std::size_t i = 0; i < text.size(); ++i) {
          text[i] = static_cast<char16_t>(load16(&stored->data[2 * i]));
        }
        return text;
      }
      default:
        return 0.0;  // all that counts is that it is not null
    }
  }

  RuleValue sumOf(const RuleNode& node) const {
    double sum = 0;
    for (const RuleNode& part : node.parts) {
      const RuleValue value = valueOfNode(part);
      if (isNull(value)) {
        return RuleValue();
      }
      sum += std::get<double>(value);
    }
    return node.kind == Kind::negative ? -sum : sum;
  }

  // All of the parts are true, or any of them is; null where a null decides.
  Truth combined(const RuleNode& node, bool any) const {
    bool nulls = false;
    for (const RuleNode& part : node.parts) {
      const Truth truth = truthOf(part);
      if (truth == any) {
        return any;
      }
      nulls = nulls || !truth;
    }
    return nulls ? Truth() : !any;
  }

  // Negative, zero or positive; empty if one of them is null.
  std::optional<int> order(const RuleValue& left, const RuleValue& right) const {
    if (isNull(left) || isNull(right)) {
      return std::nullopt;
    }
    const auto signOf = [](const auto& a, const auto& b) { return a < b ? -1 : b < a ? 1 : 0; };
    const auto* number = std::get_if<double>(&left);
    return number != nullptr
               ? signOf(*number, std::get<double>(right))
               : signOf(keyOf(std::get<std::u16string>(left)), keyOf(std::get<std::u16string>(right)));
  }
  [[nodiscard]] std::vector<std::uint8_t> keyOf(const std::u16string& text) const {
    std::vector<std::uint8_t> bytes(2 * text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
      store16(&bytes[2 * i], text[i]);
    }
    std::vector<std::uint8_t> key;
    appendTextKey(key, bytes, order_, true);
    return key;
  }

  Truth compared(const RuleNode& node) const {
    const auto sign = order(valueOfNode(node.parts[0]), valueOfNode(node.parts[1]));
    if (!sign) {
      return std::nullopt;
    }
    switch (node.comparison) {
      case Comparison::equal:
        return *sign == 0;
      case Comparison::unequal:
        return *sign != 0;
      case Comparison::less:
        return *sign < 0;
      case Comparison::lessOrEqual:
        return *sign <= 0;
      case Comparison::greater:
        return *sign > 0;
      case Comparison::greaterOrEqual:
        break;
    }
    return *sign >= 0;
  }

  Truth isBetween(const RuleNode& node) const {
    const RuleValue value = valueOfNode(node.parts[0]);
    const auto toFirst = order(value, valueOfNode(node.parts[1]));
    const auto toSecond = order(value, valueOfNode(node.parts[2]));
    if (!toFirst || !toSecond) {
      return std::nullopt;
    }
    return (*toFirst >= 0 && *toSecond <= 0) || (*toFirst <= 0 && *toSecond >= 0);
  }

  Truth isIn(const RuleNode& node) const {
    const RuleValue value = valueOfNode(node.parts[0]);
    bool nulls = false;
    for (std::size_t i = 1; i < node.parts.size(); ++i) {
      const auto sign = order(value, valueOfNode(node.parts[i]));
      if (sign == 0) {
        return true;
      }
      nulls = nulls || !sign;
    }
    return nulls ? Truth() : false;
  }

  const Table& table_;
  const RowView& row_;
  TextOrder order_;
};

}  // namespace

bool keepsRule(const RuleNode& rule, const Table& table, const RowView& row, TextOrder order) {
  return Evaluator(table, row, order).truthOf(rule).value_or(true);
}

}  // namespace veltrano::access
