#include "base/text/wtf8.h"

#include "base/text/code_page.h"

namespace veltrano {

namespace {

constexpr bool isSurrogate(char16_t unit) {
  return (unit & 0xF800) == 0xD800;
}
constexpr bool isHigh(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}
constexpr bool isLow(char16_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}

bool startsPair(std::u16string_view text, std::size_t i) {
  return isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1]);
}

constexpr char surrogateLead = '\xED';

/// True when the bytes at `i` are those of a surrogate: ED A0 80 to ED BF BF.
bool surrogateAt(std::string_view text, std::size_t i) {
  return i + 2 < text.size() && (text[i + 1] & 0xE0) == 0xA0 && (text[i + 2] & 0xC0) == 0x80;
}

}  // namespace

std::string utf16ToWtf8(std::u16string_view text) {
  std::string result;
  std::size_t done = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isSurrogate(text[i])) {
      continue;
    }
    if (startsPair(text, i)) {
      ++i;
      continue;
    }
    result += utf16ToUtf8(text.substr(done, i - done));
    result += {surrogateLead, static_cast<char>(0x80 | ((text[i] >> 6) & 0x3F)),
               static_cast<char>(0x80 | (text[i] & 0x3F))};
    done = i + 1;
  }
  return done == 0 ? utf16ToUtf8(text) : result + utf16ToUtf8(text.substr(done));
}

std::u16string wtf8ToUtf16(std::string_view text) {
  std::u16string result;
  std::size_t done = 0;
  for (std::size_t i = text.find(surrogateLead); i != std::string_view::npos;
       i = text.find(surrogateLead, i + 1)) {
    if (!surrogateAt(text, i)) {
      continue;
    }
    result += utf8ToUtf16(text.substr(done, i - done));
    result += static_cast<char16_t>(0xD000 | (text[i + 1] & 0x3F) << 6 | (text[i + 2] & 0x3F));
    done = i + 3;
  }
  return done == 0 ? utf8ToUtf16(text) : result + utf8ToUtf16(text.substr(done));
}

}  // namespace veltrano
