#ifndef VELTRANO_PNG_H
#define VELTRANO_PNG_H

// Saves pictures as PNG files: 8-bit RGB, not interlaced, libpng's own choice of compression and filters. Members
// never report more than their result; only memory exhaustion leaves them as an exception (std::bad_alloc).

#include <filesystem>
#include <memory>
#include <string>

#include "veltrano/export.h"
#include "veltrano/picture.h"

namespace veltrano {

class VELTRANO_API VeltranoPNG {
 public:
  VeltranoPNG();
  VeltranoPNG(VeltranoPNG&&) noexcept;
  VeltranoPNG& operator=(VeltranoPNG&&) noexcept;
  VeltranoPNG(const VeltranoPNG&) = delete;
  VeltranoPNG& operator=(const VeltranoPNG&) = delete;
  ~VeltranoPNG();

  /// Keeps the text; it has no effect on saving.
  void Init(std::string xInitString);
  [[nodiscard]] const std::string& initString() const;

  /// True if the file was written completely; otherwise there is no new file, and an old one of that name is
  /// as it was. False for a picture that is Nothing, not a bitmap, or a bitmap selected into a device
  /// context, and if the file cannot be written.
  bool SavePNG(const Picture& pct, const std::filesystem::path& sPNGFileName);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace veltrano

#endif
