#include "base/text/excerpt.h"

#include <algorithm>

namespace veltrano {

std::string excerpt(std::string_view text) {
  constexpr std::size_t most = 40;
  std::size_t end = std::min(text.size(), most);
  // Not within a character.
  while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
    --end;
  }
  return "\"" + printable(std::string(text.substr(0, end))) + (end < text.size() ? "...\"" : "\"");
}

std::string printable(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; }, '?');
  return text;
}

}  // namespace veltrano
