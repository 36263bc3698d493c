#ifndef VELTRANO_BASE_NUMBERS_DECIMAL_DIGITS_H
#define VELTRANO_BASE_NUMBERS_DECIMAL_DIGITS_H

// The decimal digits of numbers, by which every text of a number is rounded.

#include <array>
#include <cstddef>

namespace veltrano {

/// The decimal digits of a finite magnitude: 0.d1 d2 d3 ... times ten to the power `pointAfter`, so that the
/// decimal point stands after digit number `pointAfter`. Trailing zeros are not kept; zero has no digits.
struct DecimalDigits {
  std::array<char, 20> digits{};
  int count = 0;
  int pointAfter = 0;

  /// '0' outside the digits.
  [[nodiscard]] char at(int index) const {
    return index >= 0 && index < count ? digits[static_cast<std::size_t>(index)] : '0';
  }
  /// Keeps `keep` digits, the last one rounded half away from zero. `keep` may be zero (0.5 becomes 1) or
  /// negative.
  void round(int keep);
};

/// The 15 significant digits of a magnitude, or the 7 of a single-precision one.
DecimalDigits significantDigits(double magnitude);
DecimalDigits significantDigits(float magnitude);

}  // namespace veltrano

#endif
