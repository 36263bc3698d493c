#ifndef VELTRANO_PDF_FONTS_AFM_FILE_H
#define VELTRANO_PDF_FONTS_AFM_FILE_H

// Font metrics as AFM files hold them.

#include <optional>
#include <string_view>

#include "pdf/fonts/metrics.h"

namespace veltrano {

/// Reads metrics from the start of an AFM file. Lines end at CR LF, LF or CR. Only the positions of the
/// fields count; a line with a field that cannot be read leaves its width at 0. Empty if the text ends before
/// the metrics do: `wholeFile` says that nothing follows, and a file without an end of its metrics measures 0
/// everywhere.
std::optional<FontMetrics> parseAfm(std::string_view text, bool wholeFile);

}  // namespace veltrano

#endif
