#include "base/numbers/scaled_numbers.h"

#include <charconv>

namespace veltrano {

namespace {

/// Puts the point into the digits of a scaled number and drops the zeros at its end.
void placePoint(std::string& digits, std::size_t scale) {
  if (scale == 0) {
    return;
  }
  if (digits.size() <= scale) {
    digits.insert(0, scale + 1 - digits.size(), '0');
  }
  digits.insert(digits.size() - scale, 1, '.');
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') {
    digits.pop_back();
  }
}

void placeSign(bool negative, std::string& text) {
  if (negative && text != "0") {
    text.insert(0, 1, '-');
  }
}

/// Divides in place and answers the remainder.
std::uint32_t divide(std::array<std::uint32_t, 4>& number, std::uint32_t divisor) {
  std::uint64_t rest = 0;
  for (std::size_t i = number.size(); i-- > 0;) {
    rest = rest << 32 | number[i];
    number[i] = static_cast<std::uint32_t>(rest / divisor);
    rest %= divisor;
  }
  return static_cast<std::uint32_t>(rest);
}

}  // namespace

void scaledToText(bool negative, std::array<std::uint32_t, 4> magnitude, unsigned scale, std::string& text) {
  text.clear();
  do {
    text.push_back(static_cast<char>('0' + divide(magnitude, 10)));
  } while (magnitude != std::array<std::uint32_t, 4>{});
  text.assign(text.rbegin(), text.rend());
  placePoint(text, scale);
  placeSign(negative, text);
}

void currencyToText(std::int64_t tenThousandths, std::string& text) {
  const bool negative = tenThousandths < 0;
  // Unsigned negation also covers the least value, whose positive form does not fit.
  const auto magnitude = static_cast<std::uint64_t>(tenThousandths);
  char digits[24];
  text.assign(digits,
              std::to_chars(digits, digits + sizeof digits, negative ? 0 - magnitude : magnitude).ptr);
  placePoint(text, 4);
  placeSign(negative, text);
}

}  // namespace veltrano
