#include "settings/xml_characters.h"

#include <algorithm>
#include <array>

#include "settings/xml_character_lanes.h"

namespace veltrano {

namespace {

unsigned char byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80;
}

constexpr std::size_t blockSize = 128;

/// Moves `at`, which is where a character and no earlier than the fourth byte begins, to the begin of the
/// last character that whole blocks hold, wholly or in part. False when they hold a wrong one.
bool skipXmlBlocks(std::string_view text, std::size_t& at) {
  const std::size_t begin = at;
  for (; text.size() - at >= blockSize; at += blockSize) {
    if (!isXmlBlock<ByteLanes::count, blockSize>(text.data() + at)) {
      return false;
    }
  }
  while (at > begin && isContinuation(byteAt(text, at - 1))) {
    --at;
  }
  at -= at > begin ? 1 : 0;
  return true;
}

/// Moves `at` behind characters, to `end` or the first that ends behind it. False when there is a wrong one.
bool skipXmlCharacters(std::string_view text, std::size_t& at, std::size_t end) {
  while (at < end) {
    const auto character = decodeCharacter(text.substr(at));
    if (!character || !isXmlCharacter(character->code)) {
      return false;
    }
    at += character->length;
  }
  return true;
}

struct Range {
  char32_t first;
  char32_t last;
};

constexpr std::array<Range, 12> nameStartRanges = {{{0xC0, 0xD6},
                                                    {0xD8, 0xF6},
                                                    {0xF8, 0x2FF},
                                                    {0x370, 0x37D},
                                                    {0x37F, 0x1FFF},
                                                    {0x200C, 0x200D},
                                                    {0x2070, 0x218F},
                                                    {0x2C00, 0x2FEF},
                                                    {0x3001, 0xD7FF},
                                                    {0xF900, 0xFDCF},
                                                    {0xFDF0, 0xFFFD},
                                                    {0x10000, 0xEFFFF}}};
constexpr std::array<Range, 3> nameOnlyRanges = {{{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}}};

template <std::size_t count>
bool isIn(const std::array<Range, count>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const Range& range) { return code >= range.first && code <= range.last; });
}

enum class NamePart : char { none, later, start };

constexpr auto asciiNameParts = [] {
  std::array<NamePart, 128> parts{};
  for (std::size_t c = 0; c < parts.size(); ++c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
    const bool later = (c >= '0' && c <= '9') || c == '-' || c == '.';
    parts[c] = letter ? NamePart::start : (later ? NamePart::later : NamePart::none);
  }
  return parts;
}();

NamePart namePart(char32_t code) {
  if (code < asciiNameParts.size()) {
    return asciiNameParts[code];
  }
  if (isIn(nameStartRanges, code)) {
    return NamePart::start;
  }
  return isIn(nameOnlyRanges, code) ? NamePart::later : NamePart::none;
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

void appendUtf8(std::string& target, char32_t code) {
  const auto put = [&target](char32_t byte) { target.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0U | (code >> 6U));
    put(0x80U | (code & 0x3FU));
  } else if (code < 0x10000) {
    put(0xE0U | (code >> 12U));
    put(0x80U | ((code >> 6U) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  } else {
    put(0xF0U | (code >> 18U));
    put(0x80U | ((code >> 12U) & 0x3FU));
    put(0x80U | ((code >> 6U) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  }
}

bool isXmlCharacter(char32_t code) {
  if (code < 0x20) {
    return code == '\t' || code == '\n' || code == '\r';
  }
  return code <= 0xD7FF || (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

bool isBlank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isXmlBlank);
}

bool isXmlText(std::string_view text) {
  // As many bytes must come before the first block.
  constexpr std::size_t lookBack = 3;
  std::size_t at = 0;
  return skipXmlCharacters(text, at, std::min(lookBack, text.size())) && skipXmlBlocks(text, at) &&
         skipXmlCharacters(text, at, text.size());
}

std::string withoutForbiddenCharacters(std::string_view text) {
  if (isXmlText(text)) {
    return std::string(text);
  }
  std::string result;
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

std::size_t nameLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size()) {
    const unsigned char byte = byteAt(text, length);
    if (byte < asciiNameParts.size() && (asciiNameParts[byte] == NamePart::start ||
                                         (asciiNameParts[byte] == NamePart::later && length > 0))) {
      ++length;
      continue;
    }
    const auto character = decodeCharacter(text.substr(length));
    const NamePart part = character ? namePart(character->code) : NamePart::none;
    if (part == NamePart::none || (length == 0 && part != NamePart::start)) {
      break;
    }
    length += character->length;
  }
  return length;
}

bool isQualifiedName(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) {
    return !text.empty() && nameLength(text) == text.size();
  }
  const std::string_view prefix = text.substr(0, colon);
  const std::string_view local = text.substr(colon + 1);
  return local.find(':') == std::string_view::npos && isQualifiedName(prefix) && isQualifiedName(local);
}

}  // namespace veltrano
