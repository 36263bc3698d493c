#include "base/text/code_page.h"
#include "base/trace.h"

namespace veltrano {

std::string utf16ToAnsi(std::u16string_view text) {
  std::string ansi = convertToAnsi(text);
  if (traceEnabled() && ansiToUtf16(ansi) != text) {
    trace("The code page ", codePage(), " lacks characters of a text; others stand in their place.");
  }
  return ansi;
}

std::string utf8ToAnsi(std::string_view text) {
  return utf16ToAnsi(utf8ToUtf16(text));
}

std::string ansiToUtf8(std::string_view text) {
  return utf16ToUtf8(ansiToUtf16(text));
}

}  // namespace veltrano
