#include "base/numbers/pdf_numbers.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/numbers/decimal_digits.h"
#include "base/numbers/digit_writing.h"

namespace veltrano {

namespace {

constexpr std::array<std::int64_t, 4> smallPowersOfTen = {1, 10, 100, 1000};

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

// Kept apart so that the common case need not set up its stack.
[[gnu::noinline]] char* writeDigitByDigit(char* target, double value, int decimals) {
  if (!std::isfinite(value)) {
    return target;
  }
  decimals = std::clamp(decimals, 0, 15);
  DecimalDigits number = significantDigits(std::fabs(value));
  number.round(number.pointAfter + decimals);
  if (value < 0 && number.count > 0) {
    *target++ = '-';
  }
  if (number.count == 0 || number.pointAfter <= 0) {
    *target++ = '0';
  }
  for (int i = 0; i < number.pointAfter && number.count > 0; ++i) {
    *target++ = number.at(i);
  }
  *target++ = '.';
  for (int i = 0; i < decimals; ++i) {
    *target++ = number.count == 0 ? '0' : number.at(number.pointAfter + i);
  }
  return target;
}

}  // namespace

char* writePdfNumber(char* target, double value, int decimals) {
  char* const end = writeQuickly(target, value, decimals);
  return end != nullptr ? end : writeDigitByDigit(target, value, decimals);
}

NumberText formatPdfNumber(double value, int decimals) {
  NumberText text;
  text.length_ = static_cast<std::size_t>(writePdfNumber(text.digits_, value, decimals) - text.digits_);
  return text;
}

}  // namespace veltrano
