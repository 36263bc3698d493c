#include "base/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace veltrano {

namespace {

// The decimal digits of a finite magnitude: 0.d1 d2 d3 ... times ten to the power `pointAfter`, so that the
// decimal point stands behind digit number `pointAfter`. Trailing zeros are not kept; zero has no digits at
// all.
struct DecimalDigits {
  std::array<char, 20> digits{};
  int count = 0;
  int pointAfter = 0;
};

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
// faster to make.
template <typename Float>
DecimalDigits significantDigits(Float magnitude, int significant) {
  std::array<char, 40> text;
  auto end =
      std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::scientific).ptr;
  DecimalDigits digits = fromScientific({text.data(), static_cast<std::size_t>(end - text.data())});
  if (digits.count > significant) {
    end = std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::scientific,
                        significant - 1)
              .ptr;
    digits = fromScientific({text.data(), static_cast<std::size_t>(end - text.data())});
  }
  return digits;
}

char digitAt(const DecimalDigits& number, int index) {
  return index >= 0 && index < number.count ? number.digits[static_cast<std::size_t>(index)] : '0';
}

// Keeps `keep` digits, the last one rounded half away from zero. `keep` may be zero (0.5 becomes 1) or
// negative.
void roundDigits(DecimalDigits& number, int keep) {
  if (keep >= number.count) {
    return;
  }
  const bool up = keep >= 0 && digitAt(number, keep) >= '5';
  number.count = std::max(keep, 0);
  int i = number.count - 1;
  if (up) {
    for (; i >= 0 && number.digits[static_cast<std::size_t>(i)] == '9'; --i) {
      --number.count;
    }
    if (i >= 0) {
      ++number.digits[static_cast<std::size_t>(i)];
    } else {
      number.digits[0] = '1';
      number.count = 1;
      ++number.pointAfter;
    }
  }
  while (number.count > 0 && number.digits[static_cast<std::size_t>(number.count - 1)] == '0') {
    --number.count;
  }
}

constexpr std::array<std::int64_t, 4> smallPowersOfTen = {1, 10, 100, 1000};

// Two digits at a time halve the divisions, which are what printing a whole number costs.
constexpr auto digitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// Writes `value` so that its last digit stands before `end`; returns where it begins.
template <typename Unsigned>
char* writeBackwards(char* end, Unsigned value) {
  while (value >= 100) {
    const auto pair = static_cast<std::size_t>(value % 100);
    value /= 100;
    end -= 2;
    std::memcpy(end, &digitPairs[2 * pair], 2);
  }
  if (value >= 10) {
    end -= 2;
    std::memcpy(end, &digitPairs[2 * static_cast<std::size_t>(value)], 2);
  } else {
    *--end = static_cast<char>('0' + value);
  }
  return end;
}

char* writePair(char* target, std::uint32_t value) {
  std::memcpy(target, &digitPairs[std::size_t{2} * value], 2);
  return target + 2;
}

char* writeOneOrTwo(char* target, std::uint32_t value) {
  if (value >= 10) {
    return writePair(target, value);
  }
  *target = static_cast<char>('0' + value);
  return target + 1;
}

// Returns where the digits end.
template <typename Unsigned>
char* writeDigits(char* target, Unsigned value) {
  if (value < 100) {
    return writeOneOrTwo(target, static_cast<std::uint32_t>(value));
  }
  if (value < 10000) {
    const auto few = static_cast<std::uint32_t>(value);
    return writePair(writeOneOrTwo(target, few / 100), few % 100);
  }
  std::array<char, 20> digits;
  char* const end = digits.data() + digits.size();
  return std::copy(writeBackwards(end, value), end, target);
}

// The common case of writePdfNumber: few decimals, page-sized magnitudes, and no tie near. The product's
// error and that of the 15-digit rounding together stay below 1e-5 here, so a value that is further than
// `tieMargin` from a tie is rounded as its decimal digits would be. Returns where the text ends, null when
// undecided. The number of decimals is a constant: dividing by a variable is what would cost most.
template <int decimals>
char* writeQuickly(char* target, double value) {
  constexpr double largestScaled = 1e9;
  constexpr double tieMargin = 1e-4;
  constexpr auto unit = static_cast<std::uint32_t>(smallPowersOfTen[static_cast<std::size_t>(decimals)]);
  const double scaled = std::fabs(value) * unit;
  if (!(scaled < largestScaled)) {
    return nullptr;
  }
  // Lround would take as long as all the rest, and where it differs the tie is near.
  const auto whole = static_cast<std::uint32_t>(
      static_cast<std::int32_t>(scaled + 0.5));  // NOLINT(bugprone-incorrect-roundings)
  if (std::fabs(scaled - whole) > 0.5 - tieMargin) {
    return nullptr;
  }
  if (value < 0 && whole != 0) {
    *target++ = '-';
  }
  target = writeDigits(target, whole / unit);
  *target++ = '.';
  const std::uint32_t fraction = whole % unit;
  if constexpr (decimals == 1) {
    *target++ = static_cast<char>('0' + fraction);
    return target;
  } else if constexpr (decimals == 2) {
    return writePair(target, fraction);
  } else {
    *target++ = static_cast<char>('0' + fraction / 100);
    return writePair(target, fraction % 100);
  }
}

char* writeQuickly(char* target, double value, int decimals) {
  switch (decimals) {
    case 1:
      return writeQuickly<1>(target, value);
    case 2:
      return writeQuickly<2>(target, value);
    case 3:
      return writeQuickly<3>(target, value);
    default:
      return nullptr;
  }
}

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
    text.push(digitAt(number, i));
  }
  return text;
}

// Kept apart so that the common case need not set up its stack.
[[gnu::noinline]] char* writeDigitByDigit(char* target, double value, int decimals) {
  if (!std::isfinite(value)) {
    return target;
  }
  decimals = std::clamp(decimals, 0, 15);
  DecimalDigits number = significantDigits(std::fabs(value), 15);
  roundDigits(number, number.pointAfter + decimals);
  if (value < 0 && number.count > 0) {
    *target++ = '-';
  }
  if (number.count == 0 || number.pointAfter <= 0) {
    *target++ = '0';
  }
  for (int i = 0; i < number.pointAfter && number.count > 0; ++i) {
    *target++ = digitAt(number, i);
  }
  *target++ = '.';
  for (int i = 0; i < decimals; ++i) {
    *target++ = number.count == 0 ? '0' : digitAt(number, number.pointAfter + i);
  }
  return target;
}

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

void NumberText::append(std::string_view text) {
  std::memcpy(digits_ + length_, text.data(), text.size());
  length_ += text.size();
}

char* writePdfNumber(char* target, double value, int decimals) {
  char* const end = writeQuickly(target, value, decimals);
  return end != nullptr ? end : writeDigitByDigit(target, value, decimals);
}

NumberText formatPdfNumber(double value, int decimals) {
  NumberText text;
  text.length_ = static_cast<std::size_t>(writePdfNumber(text.digits_, value, decimals) - text.digits_);
  return text;
}

NumberText generalNumberText(double value) {
  NumberText text;
  if (generalQuickly(text, value)) {
    return text;
  }
  return std::isfinite(value) ? generalText(significantDigits(std::fabs(value), 15), value < 0, 15) : text;
}

NumberText singleNumberText(float value) {
  return std::isfinite(value) ? generalText(significantDigits(std::fabs(value), 7), value < 0, 7)
                              : NumberText{};
}

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
