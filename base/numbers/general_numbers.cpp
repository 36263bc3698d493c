#include "base/numbers/general_numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "base/numbers/decimal_digits.h"
#include "base/numbers/digit_writing.h"
#include "base/numbers/numbers.h"

namespace veltrano {

namespace {

// The common case of generalNumberText: a value that a person or a receiver wrote with at most eight
// decimals. If the nearest multiple of 1e-8 has at most 15 digits and its division gives the value back, its
// digits are the value's: the division rounds correctly, and no two texts of up to 15 digits share a double.
// False when undecided.
bool generalQuickly(NumberText& text, double value) {
  constexpr int decimals = 8;
  constexpr std::int64_t unit = 100'000'000;
  constexpr double smallestPlain = 0.0001;
  constexpr double largest = 1e7;
  const double magnitude = std::fabs(value);
  if (!(magnitude >= smallestPlain && magnitude < largest)) {
    return false;
  }
  // Any candidate will do, as the division below judges it; lround would take as long as all the rest.
  const auto scaled =
      static_cast<std::int64_t>(magnitude * unit + 0.5);  // NOLINT(bugprone-incorrect-roundings)
  if (static_cast<double>(scaled) / static_cast<double>(unit) != magnitude) {
    return false;
  }
  std::array<char, 32> digits;
  char* const end = digits.data() + digits.size();
  char* last = end;
  auto fraction = static_cast<std::uint64_t>(scaled % unit);
  char* begin = end - decimals;
  if (fraction != 0) {
    // Written as 1dddddddd, so that leading zeros of the fraction are there; the 1 gives way to the point.
    begin = writeBackwards(end, fraction + static_cast<std::uint64_t>(unit));
    *begin = '.';
    while (last[-1] == '0') {
      --last;
    }
  } else {
    last = begin;
  }
  begin = writeBackwards(begin, static_cast<std::uint64_t>(scaled / unit));
  if (value < 0) {
    *--begin = '-';
  }
  text.append({begin, static_cast<std::size_t>(last - begin)});
  return true;
}

// "1.25E-05", or the plain form when the point stands within `significant` digits.
NumberText generalText(const DecimalDigits& number, bool negative, int significant) {
  NumberText text;
  if (number.count == 0) {
    text.push('0');
    return text;
  }
  if (negative) {
    text.push('-');
  }
  if (number.pointAfter > significant || number.pointAfter < -3) {
    text.push(number.digits[0]);
    if (number.count > 1) {
      text.push('.');
      text.append({number.digits.data() + 1, static_cast<std::size_t>(number.count - 1)});
    }
    const int exponent = number.pointAfter - 1;
    text.push('E');
    text.push(exponent < 0 ? '-' : '+');
    if (std::abs(exponent) < 10) {
      text.push('0');
    }
    text.append(integerText(std::abs(exponent)));
    return text;
  }
  if (number.pointAfter <= 0) {
    text.append("0.");
    for (int i = number.pointAfter; i < 0; ++i) {
      text.push('0');
    }
    text.append({number.digits.data(), static_cast<std::size_t>(number.count)});
    return text;
  }
  for (int i = 0; i < std::max(number.pointAfter, number.count); ++i) {
    if (i == number.pointAfter) {
      text.push('.');
    }
    text.push(number.at(i));
  }
  return text;
}

}  // namespace

NumberText generalNumberText(double value) {
  NumberText text;
  if (generalQuickly(text, value)) {
    return text;
  }
  return std::isfinite(value) ? generalText(significantDigits(std::fabs(value)), value < 0, 15) : text;
}

NumberText singleNumberText(float value) {
  return std::isfinite(value) ? generalText(significantDigits(std::fabs(value)), value < 0, 7) : NumberText{};
}

}  // namespace veltrano
