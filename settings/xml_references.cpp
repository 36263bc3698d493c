#include "settings/xml_references.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "settings/xml_characters.h"

namespace veltrano {

namespace {

/// `text` begins behind the "&".
bool beginsWithReference(std::string_view text) {
  for (const std::string_view entity : {"amp;", "lt;", "gt;", "quot;", "apos;"}) {
    if (text.starts_with(entity)) {
      return true;
    }
  }
  if (!text.starts_with('#')) {
    return false;
  }
  const bool hexadecimal = text.starts_with("#x");
  text.remove_prefix(hexadecimal ? 2 : 1);
  std::uint32_t code = 0;
  const char* const textEnd = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), textEnd, code, hexadecimal ? 16 : 10);
  return error == std::errc() && end != textEnd && *end == ';' && isXmlCharacter(code);
}

const char* findAmpersand(const char* from, const char* to) {
  return static_cast<const char*>(std::memchr(from, '&', static_cast<std::size_t>(to - from)));
}

}  // namespace

bool haveOnlyReferences(const char* from, const char* to, const char* end) {
  while (from != to && (from = findAmpersand(from, to)) != nullptr) {
    ++from;
    if (!beginsWithReference({from, static_cast<std::size_t>(end - from)})) {
      return false;
    }
  }
  return true;
}

}  // namespace veltrano
