#ifndef VELTRANO_BASE_NUMBERS_PDF_NUMBERS_H
#define VELTRANO_BASE_NUMBERS_PDF_NUMBERS_H

// The numbers of PDF pages.

#include "base/numbers/number_text.h"

namespace veltrano {

/// "###0.00": `decimals` (0 to 15) digits after a point, halves rounded away from zero on the 15 significant
/// decimal digits, no grouping, never "-0.00". Without decimals the point stays ("12."), as in the
/// pattern. Empty if the value is not finite: the statement that writes it fails.
NumberText formatPdfNumber(double value, int decimals);

/// Writes the same to `target`, which has room for `longestPdfNumber` characters; returns where the text
/// ends.
char* writePdfNumber(char* target, double value, int decimals);
inline constexpr std::size_t longestPdfNumber = NumberText::capacity;

}  // namespace veltrano

#endif
