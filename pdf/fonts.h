#ifndef VELTRANO_PDF_FONTS_H
#define VELTRANO_PDF_FONTS_H

// The fonts that the metrics folder offers, the current font and how text is set in it.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "pdf/afm_file.h"

namespace veltrano {

/// A text whose width the current position waits for. The position is already what the metrics known then
/// make of it; only a metrics file that had changed by then makes it another, which is looked up when the
/// position is asked for. Texts mostly come with positions of their own, and looking at the file for each
/// would cost more than the rest.
struct PendingAdvance {
  std::string text;
  std::string fontName;
  std::int16_t size = 0;
  double start = 0;            ///< where the text began, user units
  double position = 0;         ///< the current x, as long as nothing else has moved it
  std::int64_t writtenAt = 0;  ///< clock of FileIdentity
  bool waiting = false;
};

struct FontState {
  std::filesystem::path afmPath;
  std::vector<std::string> fontTable;  ///< base-font names; the resource of entry i is "/F" followed by i + 1
  std::string currentFontFamily;
  std::string currentFontName;
  std::int16_t fontSize = 0;  ///< points; 0 is not set
  std::int32_t fontCounter = 0;
  std::int16_t fontSerial = 0;
  bool italicFlag = false;
  bool boldFlag = false;
  bool underlineFlag = false;
  double rotation = 0;  ///< degrees, negated as PDFSetRotation stores it
  /// Resource number of the current font: its position in the table from 1, 1 while no font is set, 0 when
  /// the table lacks it. Hosts know the "/F0" that comes of it.
  int fontNumber = 1;
  MetricsCache metrics;
  PendingAdvance pendingAdvance;

  [[nodiscard]] const FontMetrics& currentMetrics() { return metrics.metrics(afmPath, currentFontName); }
};

}  // namespace veltrano

#endif
