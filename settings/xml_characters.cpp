#include "settings/xml_characters.h"

#include <algorithm>

#include "base/text/utf.h"

namespace veltrano {

namespace {

/// What an XML document may hold, as such or as a character reference.
bool isXmlCharacter(char32_t code) {
  if (code < 0x20) {
    return code == '\t' || code == '\n' || code == '\r';
  }
  return code <= 0xD7FF || (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

bool startsAsciiName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isInAsciiName(char c) {
  return startsAsciiName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

}  // namespace

bool isBlank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isXmlBlank);
}

std::string withoutForbiddenCharacters(std::string_view text) {
  constexpr std::string_view replacement = "\xEF\xBF\xBD";
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t start = i;
    const char32_t code = nextCharacter(text, i);
    const std::string_view character = text.substr(start, i - start);
    const bool malformed = code == replacementCharacter && character != replacement;
    if (!malformed && isXmlCharacter(code)) {
      result.append(character);
    }
  }
  return result;
}

bool isAsciiName(std::string_view text) {
  return !text.empty() && startsAsciiName(text.front()) &&
         std::all_of(text.begin(), text.end(), isInAsciiName);
}

bool maybeElementName(std::string_view text) {
  return std::count(text.begin(), text.end(), ':') <= 1 && !text.empty() &&
         std::all_of(text.begin(), text.end(),
                     [](char c) { return isInAsciiName(c) || c == ':' || (c & 0x80) != 0; }) &&
         (startsAsciiName(text.front()) || (text.front() & 0x80) != 0);
}

}  // namespace veltrano
