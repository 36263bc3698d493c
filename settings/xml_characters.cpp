#include "settings/xml_characters.h"

#include <algorithm>

namespace veltrano {

namespace {

unsigned char byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80;
}

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

std::optional<DecodedCharacter> decodeCharacter(std::string_view text) {
  if (text.empty()) {
    return std::nullopt;
  }
  const unsigned char lead = byteAt(text, 0);
  if (lead < 0x80) {
    return DecodedCharacter{lead, 1};
  }
  std::size_t length = 0;
  char32_t code = 0;
  char32_t smallest = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    code = lead & 0x1FU;
    smallest = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    code = lead & 0x0FU;
    smallest = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    code = lead & 0x07U;
    smallest = 0x10000;
  }
  if (length == 0 || text.size() < length) {
    return std::nullopt;
  }
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned char next = byteAt(text, i);
    if (!isContinuation(next)) {
      return std::nullopt;
    }
    code = (code << 6U) | (next & 0x3FU);
  }
  if (code < smallest || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    return std::nullopt;
  }
  return DecodedCharacter{code, length};
}

bool isBlank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isXmlBlank);
}

std::string withoutForbiddenCharacters(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto character = decodeCharacter(text);
    const std::size_t length = character ? character->length : 1;
    if (character && isXmlCharacter(character->code)) {
      result.append(text.substr(0, length));
    }
    text.remove_prefix(length);
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
