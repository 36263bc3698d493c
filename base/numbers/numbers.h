#ifndef VELTRANO_BASE_NUMBERS_NUMBERS_H
#define VELTRANO_BASE_NUMBERS_NUMBERS_H

// How numbers become text and whole numbers, as the host runtime's own conversions do it. Nothing here looks
// at the locale, allocates or throws; these are the hottest functions of the library.
//
// All texts follow the decimal digits of the value (15 significant ones, or 7 for single precision), not its
// binary form: 0.125 with two decimals is 0.13, and so is 1.005 1.01, although the double nearest to 1.005
// lies below it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

/// Text of a number, held in place. Long enough for every finite double with up to 15 decimals.
class NumberText {
 public:
  static constexpr std::size_t capacity = 352;

  [[nodiscard]] std::string_view view() const { return {digits_, length_}; }
  operator std::string_view() const { return view(); }  // NOLINT: meant to stand for the text

  void push(char c) { digits_[length_++] = c; }
  void append(std::string_view text);

 private:
  friend NumberText formatPdfNumber(double value, int decimals);
  friend NumberText integerText(std::int64_t value);

  std::size_t length_ = 0;
  char digits_[capacity];
};

/// "###0.00": `decimals` (0 to 15) digits after a point, halves rounded away from zero on the 15 significant
/// decimal digits, no grouping, never "-0.00". Without decimals the point stays ("12."), as the pattern has
/// it. Not a number and the infinities give an empty text: the statement that writes them fails.
NumberText formatPdfNumber(double value, int decimals);

/// Writes the same to `target`, which has room for `longestPdfNumber` characters; returns where the text
/// ends.
char* writePdfNumber(char* target, double value, int decimals);
inline constexpr std::size_t longestPdfNumber = NumberText::capacity;

/// The runtime's general number text: up to 15 significant digits, no trailing zeros, exponent form ("1E-05",
/// "1E+15", at least two exponent digits) from 1E+15 up and below 0.0001, minus zero as "0". Empty when not
/// finite.
NumberText generalNumberText(double value);

/// The same for a single-precision value: up to 7 significant digits, exponent form from 1E+07 up.
NumberText singleNumberText(float value);

/// Decimal text of a whole number.
NumberText integerText(std::int64_t value);

/// Writes the same to `target`, which has room for `longestInteger` characters; returns where the text ends.
char* writeInteger(char* target, std::int64_t value);
inline constexpr std::size_t longestInteger = 20;

/// Rounds to the nearest whole number, ties to even, into 16 bits (2.5 gives 2, 3.5 gives 4). Nothing when
/// the value is not a number or the result does not fit: the host's runtime calls that an overflow.
std::optional<std::int16_t> roundToInt16(double value);

/// The same into 32 bits.
std::optional<std::int32_t> roundToInt32(double value);

/// Reads an invariant decimal number ("-12.5e3", blanks around it allowed). Nothing when the text is not one
/// number.
std::optional<double> parseNumber(std::string_view text);

}  // namespace veltrano

#endif
