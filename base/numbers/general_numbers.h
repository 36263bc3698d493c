#ifndef VELTRANO_BASE_NUMBERS_GENERAL_NUMBERS_H
#define VELTRANO_BASE_NUMBERS_GENERAL_NUMBERS_H

// The text that the runtime of hosts gives a number when nothing else is said.

#include "base/numbers/number_text.h"

namespace veltrano {

/// The runtime's general number text: up to 15 significant digits, no trailing zeros, exponent form ("1E-05",
/// "1E+15", at least two exponent digits) from 1E+15 up and below 0.0001, minus zero as "0". Empty if the
/// value is not finite.
NumberText generalNumberText(double value);

/// The same for a single-precision value: up to 7 significant digits, exponent form from 1E+07 up.
NumberText singleNumberText(float value);

}  // namespace veltrano

#endif
