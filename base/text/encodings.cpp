#include "base/text/encodings.h"

namespace veltrano {

bool isKnownEncoding(std::string_view name) {
  std::string ascii = "\t\n\r";
  for (char c = ' '; c < 0x7F; ++c) {
    ascii.push_back(c);
  }
  return decodeText(name, ascii) == std::u16string(ascii.begin(), ascii.end());
}

}  // namespace veltrano
