#include "base/numbers/decimal_digits.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace veltrano {

namespace {

// Reads "d.ddde+XX", the form that to_chars gives.
DecimalDigits fromScientific(std::string_view text) {
  DecimalDigits result;
  std::size_t i = 0;
  for (; i < text.size() && text[i] != 'e'; ++i) {
    if (text[i] != '.') {
      result.digits[static_cast<std::size_t>(result.count++)] = text[i];
    }
  }
  int exponent = 0;
  bool negative = false;
  for (++i; i < text.size(); ++i) {
    if (text[i] == '-') {
      negative = true;
    } else if (text[i] != '+') {
      exponent = exponent * 10 + (text[i] - '0');
    }
  }
  while (result.count > 0 && result.digits[static_cast<std::size_t>(result.count - 1)] == '0') {
    --result.count;
  }
  result.pointAfter = result.count == 0 ? 0 : (negative ? -exponent : exponent) + 1;
  return result;
}

// The `significant` (15 or 7) significant digits of a magnitude. A shortest text that is short enough already
// is the rounded one, since so few digits survive the trip to binary and back; it is also several times
// faster to make. Below the normal numbers fewer digits survive: the shortest text of 4.94E-324 is "5e-324".
template <typename Float>
DecimalDigits mostSignificant(Float magnitude, int significant) {
  std::array<char, 40> text;
  auto end =
      std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::scientific).ptr;
  DecimalDigits digits = fromScientific({text.data(), static_cast<std::size_t>(end - text.data())});
  if (digits.count > significant || magnitude < std::numeric_limits<Float>::min()) {
    end = std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::scientific,
                        significant - 1)
              .ptr;
    digits = fromScientific({text.data(), static_cast<std::size_t>(end - text.data())});
  }
  return digits;
}

}  // namespace

void DecimalDigits::round(int keep) {
  if (keep >= count) {
    return;
  }
  const bool up = keep >= 0 && at(keep) >= '5';
  count = std::max(keep, 0);
  int i = count - 1;
  if (up) {
    for (; i >= 0 && digits[static_cast<std::size_t>(i)] == '9'; --i) {
      --count;
    }
    if (i >= 0) {
      ++digits[static_cast<std::size_t>(i)];
    } else {
      digits[0] = '1';
      count = 1;
      ++pointAfter;
    }
  }
  while (count > 0 && digits[static_cast<std::size_t>(count - 1)] == '0') {
    --count;
  }
}

DecimalDigits significantDigits(double magnitude) {
  return mostSignificant(magnitude, 15);
}

DecimalDigits significantDigits(float magnitude) {
  return mostSignificant(magnitude, 7);
}

}  // namespace veltrano
