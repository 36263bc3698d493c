#ifndef VELTRANO_PDF_GRAPHICS_LINE_STYLE_H
#define VELTRANO_PDF_GRAPHICS_LINE_STYLE_H

// Dash patterns.

#include <cstdint>
#include <optional>
#include <string>

namespace veltrano {

/// The operator of a PDFStyleLgn, as "[45 22 ] 0 d", in the unit that has `scaleFactor` points. Empty if
/// `style` is not one.
std::optional<std::string> dashOperator(std::int32_t style, double scaleFactor);

}  // namespace veltrano

#endif
