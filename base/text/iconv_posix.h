#ifndef VELTRANO_BASE_TEXT_ICONV_POSIX_H
#define VELTRANO_BASE_TEXT_ICONV_POSIX_H

#include <iconv.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "base/os/owned.h"

namespace veltrano {

/// The system's name of UTF-16 in the byte order of this machine.
extern const char* const nativeUtf16;

/// The system's name of an encoding that files name so; empty if it cannot be one.
std::string systemEncodingName(std::string_view name);

/// The system's converter between two encodings.
class Converter {
 public:
  Converter(const std::string& from, const std::string& to);

  /// False if the system does not know one of the encodings.
  explicit operator bool() const { return static_cast<bool>(handle_); }

  /// Called where the text cannot be converted: puts something into `result` instead and returns how many
  /// bytes of `rest` that stands for; 0 gives up.
  using Otherwise = std::function<std::size_t(std::string_view rest, std::string& result)>;

  /// All of `text`. False if `otherwise` gave up.
  bool convert(std::string_view text, std::string& result, const Otherwise& otherwise);

 private:
  static void close(iconv_t handle) { iconv_close(handle); }
  Owned<iconv_t, close> handle_;
};

}  // namespace veltrano

#endif
