#ifndef VELTRANO_BASE_NUMBERS_SCALED_NUMBERS_H
#define VELTRANO_BASE_NUMBERS_SCALED_NUMBERS_H

// Exact text of numbers that are whole numbers with a decimal point in them: currencies and decimals. A
// double in between would lose digits.

#include <array>
#include <cstdint>
#include <string>

namespace veltrano {

/// Replaces `text`, whose storage is reused, by magnitude / 10^scale: no zeros at the end of the fraction,
/// never "-0". `magnitude` holds its least significant part first.
void scaledToText(bool negative, std::array<std::uint32_t, 4> magnitude, unsigned scale, std::string& text);

/// The same for an amount in ten-thousandths.
void currencyToText(std::int64_t tenThousandths, std::string& text);

}  // namespace veltrano

#endif
