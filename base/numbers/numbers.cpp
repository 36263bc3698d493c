#include "base/numbers/numbers.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "base/numbers/digit_writing.h"

namespace veltrano {

namespace {

// Ties to even, whatever rounding mode the host has set.
double roundHalfEven(double value) {
  const double down = std::floor(value);
  const double fraction = value - down;
  if (fraction < 0.5) {
    return down;
  }
  if (fraction > 0.5) {
    return down + 1;
  }
  return std::fmod(down, 2.0) == 0.0 ? down : down + 1;
}

}  // namespace

char* writeInteger(char* target, std::int64_t value) {
  auto magnitude = static_cast<std::uint64_t>(value);
  if (value < 0) {
    *target++ = '-';
    magnitude = 0 - magnitude;
  }
  return writeDigits(target, magnitude);
}

NumberText integerText(std::int64_t value) {
  NumberText text;
  text.length_ = static_cast<std::size_t>(writeInteger(text.digits_, value) - text.digits_);
  return text;
}

std::optional<std::int16_t> roundToInt16(double value) {
  const auto wide = roundToInt32(value);
  if (!wide || *wide < INT16_MIN || *wide > INT16_MAX) {
    return std::nullopt;
  }
  return static_cast<std::int16_t>(*wide);
}

std::optional<std::int32_t> roundToInt32(double value) {
  const double rounded = roundHalfEven(value);
  if (!(rounded >= INT32_MIN && rounded <= INT32_MAX)) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(rounded);
}

std::optional<double> parseNumber(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) {
    return std::nullopt;
  }
  text = text.substr(first, text.find_last_not_of(blanks) - first + 1);
  if (text.front() == '+' && text.size() > 1 && text[1] != '-') {
    text.remove_prefix(1);
  }
  // "inf" and "nan" are words to a host, not numbers; a second sign is no number either.
  const std::size_t digit = text.find_first_not_of('-');
  if (digit == std::string_view::npos || digit > 1 ||
      (text[digit] != '.' && (text[digit] < '0' || text[digit] > '9'))) {
    return std::nullopt;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

}  // namespace veltrano
