#ifndef VELTRANO_IMAGING_VELTRANO_PNG_H
#define VELTRANO_IMAGING_VELTRANO_PNG_H

// Saves pictures as PNG files: 8-bit RGB, not interlaced, libpng's own choice of compression and filters.

#include <filesystem>
#include <string>

#include "imaging/picture.h"

namespace veltrano {

class VeltranoPNG {
 public:
  /// Keeps the text; it has no effect on saving.
  void Init(std::string xInitString);
  [[nodiscard]] const std::string& initString() const { return initString_; }

  /// True when the file was written completely; otherwise there is no new file and an old one of that name is
  /// as it was. False for Nothing, for what is no bitmap, and for a file that cannot be written.
  bool SavePNG(const Picture& pct, const std::filesystem::path& sPNGFileName);

 private:
  std::string initString_;
};

}  // namespace veltrano

#endif
