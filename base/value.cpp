#include "veltrano/value.h"

#include "base/numbers/numbers.h"
#include "base/numbers/scaled_numbers.h"

namespace veltrano {

namespace {

constexpr double tenThousand = 10000.0;

}  // namespace

bool Value::isNumeric() const {
  return std::holds_alternative<bool>(data_) || std::holds_alternative<std::int64_t>(data_) ||
         std::holds_alternative<double>(data_) || std::holds_alternative<float>(data_) ||
         std::holds_alternative<Currency>(data_) || std::holds_alternative<Decimal>(data_);
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
  if (const auto* number = as<float>()) {
    return double{*number};
  }
  if (const auto* date = as<Date>()) {
    return date->days;
  }
  if (const auto* amount = as<Currency>()) {
    return static_cast<double>(amount->tenThousandths) / tenThousand;
  }
  if (as<Decimal>() != nullptr) {
    return parseNumber(*toText());
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
  if (const auto* number = as<float>()) {
    return std::string(singleNumberText(*number).view());
  }
  if (const auto* amount = as<Currency>()) {
    std::string text;
    currencyToText(amount->tenThousandths, text);
    return text;
  }
  if (const auto* decimal = as<Decimal>()) {
    std::string text;
    scaledToText(decimal->negative, decimal->magnitude, decimal->scale, text);
    return text;
  }
  if (const auto* text = as<std::string>()) {
    return *text;
  }
  return std::nullopt;
}

}  // namespace veltrano
