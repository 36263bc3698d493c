#include "base/text/code_page.h"

namespace veltrano {

std::string utf8ToAnsi(std::string_view text) {
  return utf16ToAnsi(utf8ToUtf16(text));
}

std::string ansiToUtf8(std::string_view text) {
  return utf16ToUtf8(ansiToUtf16(text));
}

}  // namespace veltrano
