#include "base/text/utf.h"

namespace veltrano {

void appendUtf8(std::string& target, char32_t c) {
  const auto byte = [&target](char32_t value) { target.push_back(static_cast<char>(value)); };
  if (c < 0x80) {
    byte(c);
  } else if (c < 0x800) {
    byte(0xC0 | (c >> 6));
    byte(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    byte(0xE0 | (c >> 12));
    byte(0x80 | ((c >> 6) & 0x3F));
    byte(0x80 | (c & 0x3F));
  } else {
    byte(0xF0 | (c >> 18));
    byte(0x80 | ((c >> 12) & 0x3F));
    byte(0x80 | ((c >> 6) & 0x3F));
    byte(0x80 | (c & 0x3F));
  }
}

void appendUtf16(std::u16string& target, char32_t c) {
  if (c < 0x10000) {
    target.push_back(static_cast<char16_t>(c));
  } else {
    target.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    target.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
  }
}

// The ranges of the second byte (Unicode, table 3-7) keep out overlong forms, surrogates and everything above
// U+10FFFF.
char32_t nextCharacter(std::string_view text, std::size_t& i, LoneSurrogate lone) {
  const auto byteAt = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char lead = byteAt(i++);
  if (lead < 0x80) {
    return lead;
  }
  int more = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  char32_t c = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    more = 1;
    c = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    more = 2;
    c = lead & 0x0F;
    low = lead == 0xE0 ? 0xA0 : 0x80;
    high = lead == 0xED && lone == LoneSurrogate::replaced ? 0x9F : 0xBF;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    more = 3;
    c = lead & 0x07;
    low = lead == 0xF0 ? 0x90 : 0x80;
    high = lead == 0xF4 ? 0x8F : 0xBF;
  } else {
    return replacementCharacter;
  }
  for (; more > 0; --more) {
    if (i >= text.size() || byteAt(i) < low || byteAt(i) > high) {
      return replacementCharacter;
    }
    c = (c << 6) | (byteAt(i++) & 0x3F);
    low = 0x80;
    high = 0xBF;
  }
  return c;
}

char32_t nextCharacter(std::u16string_view text, std::size_t& i, LoneSurrogate lone) {
  const char32_t c = text[i++];
  if (isHighSurrogate(c) && i < text.size() && isLowSurrogate(text[i])) {
    return fromSurrogates(c, text[i++]);
  }
  const bool half = isHighSurrogate(c) || isLowSurrogate(c);
  return half && lone == LoneSurrogate::replaced ? replacementCharacter : c;
}

std::string utf16ToUtf8(std::u16string_view text, LoneSurrogate lone) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    appendUtf8(result, nextCharacter(text, i, lone));
  }
  return result;
}

std::u16string utf8ToUtf16(std::string_view text, LoneSurrogate lone) {
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    appendUtf16(result, nextCharacter(text, i, lone));
  }
  return result;
}

}  // namespace veltrano
