#ifndef VELTRANO_BASE_NUMBERS_NUMBERS_H
#define VELTRANO_BASE_NUMBERS_NUMBERS_H

// How numbers become text and whole numbers, as the host runtime's own conversions do it. Nothing here depends
// on the locale, allocates or throws; these are the hottest functions of the library.
//
// All texts follow the decimal digits of the value (15 significant ones, or 7 for single precision), not its
// binary form: 0.125 with two decimals is 0.13, and so is 1.005 1.01, although the double nearest to 1.005
// lies below it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/numbers/general_numbers.h"
#include "base/numbers/number_text.h"
#include "base/numbers/pdf_numbers.h"

namespace veltrano {

/// Decimal text of a whole number.
NumberText integerText(std::int64_t value);

/// Writes the same to `target`, which has room for `longestInteger` characters; returns where the text ends.
char* writeInteger(char* target, std::int64_t value);
inline constexpr std::size_t longestInteger = 20;

/// Rounds to the nearest whole number, ties to even, into 16 bits (2.5 gives 2, 3.5 gives 4). Empty if the
/// value is not a number or the result does not fit: the host's runtime calls that an overflow.
std::optional<std::int16_t> roundToInt16(double value);

/// The same into 32 bits.
std::optional<std::int32_t> roundToInt32(double value);

/// Parses a decimal number with a point in every locale ("-12.5e3", blanks around it allowed). Empty if the text
/// is anything else.
std::optional<double> parseNumber(std::string_view text);

}  // namespace veltrano

#endif
