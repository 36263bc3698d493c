#include "database/access/schema/default_value.h"

#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "base/numbers/numbers.h"
#include "base/text/lower_case.h"
#include "database/access/schema/field_codec.h"
#include "database/values/current_date.h"
#include "veltrano/value.h"

namespace veltrano::access {

namespace {

// A text in quotes, which are doubled inside.
std::optional<Value> quotedText(std::string_view expression) {
  if (expression.size() < 2 || expression.front() != '"' || expression.back() != '"') {
    return std::nullopt;
  }
  std::string text;
  expression = expression.substr(1, expression.size() - 2);
  for (std::size_t i = 0; i < expression.size(); ++i) {
    text.push_back(expression[i]);
    if (expression[i] == '"' && ++i < expression.size() && expression[i] != '"') {
      return std::nullopt;
    }
  }
  return Value(std::move(text));
}

std::optional<Value> evaluate(std::string_view expression) {
  if (!expression.empty() && expression.front() == '=') {
    expression.remove_prefix(1);
  }
  while (!expression.empty() && expression.front() == ' ') {
    expression.remove_prefix(1);
  }
  if (auto text = quotedText(expression)) {
    return text;
  }
  constexpr std::pair<std::string_view, CurrentDate> moments[] = {
      {"Now()", CurrentDate::now}, {"Date()", CurrentDate::today}, {"Time()", CurrentDate::timeOfDay}};
  for (const auto& [name, moment] : moments) {
    if (sameName(expression, name)) {
      return Value(currentDate(moment));
    }
  }
  constexpr std::pair<std::string_view, bool> flags[] = {{"True", true},   {"Yes", true}, {"On", true},
                                                         {"False", false}, {"No", false}, {"Off", false}};
  for (const auto& [name, flag] : flags) {
    if (sameName(expression, name)) {
      return Value(flag);
    }
  }
  const auto number = parseNumber(expression);
  return number ? std::optional<Value>(*number) : std::nullopt;
}

std::vector<std::uint8_t> randomGuid() {
  std::random_device random;
  std::vector<std::uint8_t> guid(16);
  for (std::uint8_t& byte : guid) {
    byte = static_cast<std::uint8_t>(random());
  }
  // Version 4, variant 1; the third group is little-endian.
  guid[7] = static_cast<std::uint8_t>((guid[7] & 0x0F) | 0x40);
  guid[8] = static_cast<std::uint8_t>((guid[8] & 0x3F) | 0x80);
  return guid;
}

bool drawsNumbers(const Column& column) {
  return column.autoNumber &&
         (sameName(column.defaultValue, "GenUniqueID()") || sameName(column.defaultValue, "=GenUniqueID()"));
}

}  // namespace

bool countsUp(const Column& column) {
  return column.autoNumber && column.type == ColumnType::longInteger && !drawsNumbers(column);
}

std::optional<std::vector<std::uint8_t>> initialCell(const Column& column, std::optional<std::int32_t> next) {
  if (column.autoGuid) {
    return randomGuid();
  }
  if (drawsNumbers(column)) {
    return valueToCell(column, Value(static_cast<int>(std::random_device()())));
  }
  if (column.autoNumber) {
    return next ? valueToCell(column, Value(*next)) : std::nullopt;
  }
  const auto value = column.defaultValue.empty() ? std::nullopt : evaluate(column.defaultValue);
  return value ? valueToCell(column, *value) : std::nullopt;
}

}  // namespace veltrano::access
