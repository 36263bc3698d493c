#ifndef VELTRANO_PDF_FONTS_FONTS_H
#define VELTRANO_PDF_FONTS_FONTS_H

// The fonts that the metrics folder offers, the current font and how text is set in it.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pdf/fonts/metrics_folder.h"

namespace veltrano {

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
  MetricsFolder folder;
  /// Of the current font, never null. What is drawn uses these; their file is looked at when a font is set,
  /// the fonts are loaded, a page begins or a width is asked for.
  std::shared_ptr<const FontMetrics> metrics = FontMetrics::none();

  void lookAtMetrics() { metrics = folder.look(currentFontName); }
};

}  // namespace veltrano

#endif
