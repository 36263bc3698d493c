#ifndef VELTRANO_PDF_FONTS_H
#define VELTRANO_PDF_FONTS_H

// The fonts that the metrics folder offers, the current font and how text is set in it.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace veltrano {

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
};

}  // namespace veltrano

#endif
