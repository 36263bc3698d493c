#ifndef VELTRANO_PDF_GRAPHICS_COLOR_H
#define VELTRANO_PDF_GRAPHICS_COLOR_H

// How colours are given and how they are written.

#include <string>
#include <string_view>

#include "veltrano/value.h"

namespace veltrano {

/// Whether a colour is text without "#" at its start, which hosts are told.
bool isMisspelledColor(const Value& color);

/// Makes `op` the operator of a colour: "1.000 0.502 0.000 rg" for the name "rg". The colour is a number with
/// red in the lowest byte, green in the next and blue in the third; "#RRGGBB"; or a list of red, green and
/// blue, of which what is missing or does not fit 16 bits counts as 0. A misspelled one is black.
void setColorOperator(std::string& op, const Value& color, std::string_view name);

/// The fill operator of the same colour as a line operator: "rg" for "RG", "g" for "G".
std::string fillOperatorOf(std::string_view lineOperator);

}  // namespace veltrano

#endif
