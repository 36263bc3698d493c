#include "veltrano/value.h"

#include "base/numbers/numbers.h"

namespace veltrano {

namespace {

constexpr double tenThousand = 10000.0;

// "12.3456" from the exact scaled integer; a double would lose digits of large amounts.
std::string currencyText(Currency amount) {
  const bool negative = amount.tenThousandths < 0;
  const auto magnitude = negative ? 0 - static_cast<std::uint64_t>(amount.tenThousandths)
                                  : static_cast<std::uint64_t>(amount.tenThousandths);
  std::string text = negative ? "-" : "";
  text += integerText(static_cast<std::int64_t>(magnitude / 10000)).view();
  std::string fraction = std::to_string(10000 + magnitude % 10000).substr(1);
  fraction.erase(fraction.find_last_not_of('0') + 1);
  return fraction.empty() ? text : text + "." + fraction;
}

}  // namespace

bool Value::isNumeric() const {
  return std::holds_alternative<bool>(data_) || std::holds_alternative<std::int64_t>(data_) ||
         std::holds_alternative<double>(data_) || std::holds_alternative<Currency>(data_);
}

std::optional<double> Value::toDouble() const {
  if (isEmpty()) {
    return 0.0;
  }
  if (const auto* flag = as<bool>()) {
    return *flag ? -1.0 : 0.0;
  }
  if (const auto* integer = as<std::int64_t>()) {
    return static_cast<double>(*integer);
  }
  if (const auto* number = as<double>()) {
    return *number;
  }
  if (const auto* date = as<Date>()) {
    return date->days;
  }
  if (const auto* amount = as<Currency>()) {
    return static_cast<double>(amount->tenThousandths) / tenThousand;
  }
  if (const auto* text = as<std::string>()) {
    return parseNumber(*text);
  }
  return std::nullopt;
}

std::optional<std::int32_t> Value::toInt32() const {
  const auto number = toDouble();
  return number ? roundToInt32(*number) : std::nullopt;
}

std::optional<std::int16_t> Value::toInt16() const {
  const auto number = toDouble();
  return number ? roundToInt16(*number) : std::nullopt;
}

std::optional<std::string> Value::toText() const {
  if (isEmpty()) {
    return std::string();
  }
  if (const auto* flag = as<bool>()) {
    return std::string(*flag ? "True" : "False");
  }
  if (const auto* integer = as<std::int64_t>()) {
    return std::string(integerText(*integer).view());
  }
  if (const auto* number = as<double>()) {
    return std::string(generalNumberText(*number).view());
  }
  if (const auto* amount = as<Currency>()) {
    return currencyText(*amount);
  }
  if (const auto* text = as<std::string>()) {
    return *text;
  }
  return std::nullopt;
}

}  // namespace veltrano
