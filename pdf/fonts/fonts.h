#ifndef VELTRANO_PDF_FONTS_FONTS_H
#define VELTRANO_PDF_FONTS_FONTS_H

// The fonts that the metrics folder offers, the current font and how text is set in it.

#include <cstdint>
#include <string>
#include <vector>

#include "pdf/fonts/metrics_cache.h"

namespace veltrano {

/// A text behind which the current position lies. It is measured when the position is asked for, by the
/// metrics of the time when it was written: texts mostly come with positions of their own, and looking at the
/// metrics file for each would cost more than the rest.
struct PendingAdvance {
  std::string text;
  std::string fontName;
  std::int16_t size = 0;
  std::int64_t writtenAt = 0;  ///< clock of FileIdentity
  /// The current x is still where the text begins. Whoever sets it puts an end to the waiting.
  bool waiting = false;
};

struct FontState {
  std::vector<std::string> fontTable;  ///< base-font names; the resource of entry i is "/F" followed by i + 1
  std::string currentFontFamily;
  std::string currentFontName;
  std::int16_t fontSize = 0;  ///< points; 0 is not set, and whoever writes a text then sets the usual size
  static constexpr std::int16_t usualSize = 10;
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

  [[nodiscard]] const FontMetrics& currentMetrics() { return metrics.metrics(currentFontName); }
};

}  // namespace veltrano

#endif
