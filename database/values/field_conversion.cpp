#include "database/values/field_conversion.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/numbers/numbers.h"
#include "base/text/code_page.h"
#include "base/text/lower_case.h"
#include "base/text/wtf8.h"
#include "database/values/date_from_text.h"
#include "database/values/dates.h"
#include "database/values/user_locale.h"

namespace veltrano {

namespace {

/// A decimal number of any length: digits * 10^exponent.
struct Digits {
  bool negative = false;
  std::string digits;  ///< no leading zeros; empty for zero
  int exponent = 0;
};

constexpr int largestExponent = 400;

/// Reads what parseNumber accepts, without its rounding to a double.
std::optional<Digits> readDigits(std::string_view text) {
  if (!parseNumber(text)) {
    return std::nullopt;
  }
  Digits number;
  bool afterPoint = false;
  std::size_t i = text.find_first_of("+-.0123456789");
  for (; i < text.size() && text[i] != 'e' && text[i] != 'E'; ++i) {
    const char c = text[i];
    if (c == '-') {
      number.negative = true;
    } else if (c == '.') {
      afterPoint = true;
    } else if (c >= '0' && c <= '9') {
      number.exponent -= afterPoint ? 1 : 0;
      if (c != '0' || !number.digits.empty()) {
        number.digits.push_back(c);
      }
    }
  }
  if (i < text.size()) {
    const auto exponent = parseNumber(text.substr(i + 1));
    if (!exponent || std::fabs(*exponent) > largestExponent) {
      return std::nullopt;
    }
    number.exponent += static_cast<int>(*exponent);
  }
  return number;
}

/// The number in units of 10^-scale, rounded half to even, as plain digits ("" for zero). Empty if there are
/// more than `most` of them.
std::optional<std::string> scaled(const Digits& number, int scale, std::size_t most) {
  std::string digits = number.digits;
  const int shift = number.exponent + scale;
  if (digits.empty()) {
    return digits;
  }
  if (shift >= 0) {
    if (digits.size() + static_cast<std::size_t>(shift) > most) {
      return std::nullopt;
    }
    return digits.append(static_cast<std::size_t>(shift), '0');
  }
  const auto dropped = static_cast<std::size_t>(-shift);
  if (dropped > digits.size()) {
    return std::string();
  }
  const std::string tail = digits.substr(digits.size() - dropped);
  digits.erase(digits.size() - dropped);
  const bool half = tail[0] == '5' && tail.find_first_not_of('0', 1) == std::string::npos;
  const bool odd = !digits.empty() && (digits.back() - '0') % 2 != 0;
  if (half ? odd : tail[0] >= '5') {
    std::size_t i = digits.size();
    while (i > 0 && digits[i - 1] == '9') {
      digits[--i] = '0';
    }
    if (i == 0) {
      digits.insert(0, 1, '1');
    } else {
      ++digits[i - 1];
    }
  }
  return digits.size() <= most ? std::optional(digits) : std::nullopt;
}

/// The exact decimal form of a value that counts as a number.
std::optional<Digits> digitsOf(const Value& value) {
  if (const auto* text = value.as<std::string>()) {
    auto number = readDigits(*text);
    if (!number) {
      const auto own = ownFormOfNumber(*text);
      number = own ? readDigits(*own) : std::nullopt;
    }
    return number;
  }
  if (value.as<Decimal>() != nullptr) {
    return readDigits(*value.toText());
  }
  if (const auto* amount = value.as<Currency>()) {
    auto number = readDigits(integerText(amount->tenThousandths));
    if (number) {
      number->exponent -= 4;
    }
    return number;
  }
  if (const auto* number = value.as<std::int64_t>()) {
    return readDigits(integerText(*number));
  }
  const auto real = toReal(value);
  return real ? readDigits(generalNumberText(*real)) : std::nullopt;
}

/// The number in units of 10^-scale as 64 bits.
std::optional<std::int64_t> scaledInteger(const Value& value, int scale) {
  const auto number = digitsOf(value);
  const auto digits = number ? scaled(*number, scale, 19) : std::nullopt;
  if (!digits) {
    return std::nullopt;
  }
  std::uint64_t magnitude = 0;  // 19 digits always fit
  for (const char c : *digits) {
    magnitude = magnitude * 10 + static_cast<unsigned>(c - '0');
  }
  const std::uint64_t most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (magnitude > most + (number->negative ? 1U : 0U)) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(number->negative ? 0 - magnitude : magnitude);
}

/// The number that the value's own digits show. Whole ones up to 2^24 are exact, although they may have 8
/// digits.
std::optional<double> realOfSingle(float value) {
  constexpr float mostExact = 16777216;
  if (std::fabs(value) <= mostExact && value == std::trunc(value)) {
    return value;
  }
  return parseNumber(singleNumberText(value));
}

std::optional<std::uint8_t> hexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return static_cast<std::uint8_t>(c - '0');
  }
  const int letter = c | 0x20;
  return letter >= 'a' && letter <= 'f' ? std::optional(static_cast<std::uint8_t>(letter - 'a' + 10))
                                        : std::nullopt;
}

/// "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX", also in braces and as "{guid {...}}".
std::optional<Guid> guidFromText(std::string_view text) {
  constexpr std::string_view longForm = "{guid {";
  if (text.size() > longForm.size() && sameAsciiName(text.substr(0, longForm.size()), longForm) &&
      text.ends_with("}}")) {
    text = text.substr(longForm.size() - 1, text.size() - longForm.size());
  }
  if (text.size() == 38 && text.front() == '{' && text.back() == '}') {
    text = text.substr(1, 36);
  }
  if (text.size() != 36) {
    return std::nullopt;
  }
  Guid guid{};
  std::size_t at = 0;
  for (std::size_t i = 0; i < guid.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) {
      if (text[at++] != '-') {
        return std::nullopt;
      }
    }
    const auto high = hexDigit(text[at]);
    const auto low = hexDigit(text[at + 1]);
    if (!high || !low) {
      return std::nullopt;
    }
    guid[i] = static_cast<std::uint8_t>(*high << 4 | *low);
    at += 2;
  }
  return guid;
}

/// `digits` (at most 28, "" for zero) as the magnitude of a decimal.
Decimal decimalOf(const std::string& digits, bool negative, int scale) {
  Decimal result;
  result.negative = negative && !digits.empty();
  result.scale = static_cast<std::uint8_t>(scale);
  for (const char c : digits) {
    std::uint64_t carry = static_cast<unsigned>(c - '0');
    for (auto& part : result.magnitude) {
      carry += std::uint64_t{part} * 10;
      part = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  return result;
}

constexpr int mostDecimalDigits = 28;

}  // namespace

std::optional<double> toReal(const Value& value) {
  std::optional<double> number;
  if (const auto* text = value.as<std::string>()) {
    number = parseNumber(*text);
    if (!number) {
      const auto own = ownFormOfNumber(*text);
      number = own ? parseNumber(*own) : std::nullopt;
    }
  } else if (const auto* single = value.as<float>()) {
    number = realOfSingle(*single);
  } else {
    number = value.toDouble();
  }
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<float> toSingle(const Value& value) {
  if (const auto* single = value.as<float>()) {
    return std::isfinite(*single) ? std::optional(*single) : std::nullopt;
  }
  const auto number = toReal(value);
  if (!number || std::fabs(*number) > static_cast<double>(std::numeric_limits<float>::max())) {
    return std::nullopt;
  }
  return static_cast<float>(*number);
}

std::optional<bool> toBoolean(const Value& value) {
  if (const auto* flag = value.as<bool>()) {
    return *flag;
  }
  if (const auto* text = value.as<std::string>()) {
    if (sameAsciiName(*text, "true")) {
      return true;
    }
    if (sameAsciiName(*text, "false")) {
      return false;
    }
  }
  if (const auto number = toReal(value)) {
    return *number != 0;
  }
  return value.isText() ? flagInUserLocale(*value.as<std::string>()) : std::nullopt;
}

std::optional<std::int64_t> toInteger(const Value& value, std::int64_t least, std::int64_t most) {
  std::optional<std::int64_t> number;
  if (const auto* flag = value.as<bool>()) {
    // An unsigned byte takes the low byte of "true", as variants do.
    number = !*flag ? 0 : least >= 0 ? most : -1;
  } else if (const auto* whole = value.as<std::int64_t>()) {
    number = *whole;
  } else if (value.isText() || value.as<Currency>() != nullptr || value.as<Decimal>() != nullptr) {
    number = scaledInteger(value, 0);
  } else if (const auto real = value.as<float>() != nullptr ? value.toDouble() : toReal(value)) {
    const double rounded = std::nearbyint(*real);
    if (rounded >= -0x1p63 && rounded < 0x1p63) {
      number = static_cast<std::int64_t>(rounded);
    }
  }
  return number && *number >= least && *number <= most ? number : std::nullopt;
}

std::optional<Currency> toCurrency(const Value& value) {
  const auto number = scaledInteger(value, 4);
  return number ? std::optional(Currency{*number}) : std::nullopt;
}

std::optional<Decimal> toDecimal(const Value& value, int precision, int scale) {
  const auto number = digitsOf(value);
  const auto most = static_cast<std::size_t>(std::clamp(precision, 1, mostDecimalDigits));
  const auto digits = number ? scaled(*number, scale, most) : std::nullopt;
  return digits ? std::optional(decimalOf(*digits, number->negative, scale)) : std::nullopt;
}

std::optional<Decimal> toDecimal(const Value& value) {
  auto number = digitsOf(value);
  if (!number) {
    return std::nullopt;
  }
  const std::size_t significant = number->digits.find_last_not_of('0') + 1;
  number->exponent += static_cast<int>(number->digits.size() - significant);
  number->digits.resize(significant);
  const int scale = std::max(0, significant == 0 ? 0 : -number->exponent);
  const auto digits = scale <= mostDecimalDigits ? scaled(*number, scale, mostDecimalDigits) : std::nullopt;
  return digits ? std::optional(decimalOf(*digits, number->negative, scale)) : std::nullopt;
}

std::optional<Date> toDate(const Value& value) {
  std::optional<Date> date;
  if (const auto* text = value.as<std::string>()) {
    date = dateFromText(*text);
    if (!date) {
      date = dateInUserLocale(*text);
    }
  }
  if (!date) {
    if (const auto days = toReal(value)) {
      date = Date{*days};
    }
  }
  return date && isDateInRange(date->days) ? date : std::nullopt;
}

std::optional<Guid> toGuid(const Value& value) {
  const auto* text = value.as<std::string>();
  return text != nullptr ? guidFromText(*text) : std::nullopt;
}

std::optional<Value::Bytes> toBinary(const Value& value) {
  if (const auto* bytes = value.as<Value::Bytes>()) {
    return *bytes;
  }
  const auto* text = value.as<std::string>();
  if (text == nullptr) {
    return std::nullopt;
  }
  const std::string bytes = utf8ToAnsi(*text);
  if (ansiToUtf8(bytes) != *text) {
    return std::nullopt;
  }
  return Value::Bytes(bytes.begin(), bytes.end());
}

std::optional<std::string> toFieldText(const Value& value) {
  std::string text;
  if (const auto* date = value.as<Date>()) {
    return dateToText(*date, text) ? std::optional(text) : std::nullopt;
  }
  if (const auto* amount = value.as<Currency>()) {
    currencyToText(*amount, text);
    return text;
  }
  if (const auto* bytes = value.as<Value::Bytes>()) {
    binaryToText(*bytes, text);
    return text;
  }
  return value.toText();
}

std::size_t utf16Length(std::string_view utf8) {
  const bool ascii =
      std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  return ascii ? utf8.size() : wtf8ToUtf16(utf8).size();
}

}  // namespace veltrano
