#ifndef VELTRANO_SETTINGS_XML_CHARACTERS_H
#define VELTRANO_SETTINGS_XML_CHARACTERS_H

// Characters as XML has them, in UTF-8.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

struct DecodedCharacter {
  char32_t code = 0;
  std::size_t length = 0;  ///< bytes
};

/// The character at the start of `text`; empty if `text` is empty or does not start with well-formed UTF-8.
std::optional<DecodedCharacter> decodeCharacter(std::string_view text);

inline bool isXmlBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool isBlank(std::string_view text);

/// `text` without what XML cannot hold: control characters, U+FFFE, U+FFFF, malformed bytes.
std::string withoutForbiddenCharacters(std::string_view text);

/// True for an XML name that is all ASCII and has no colon.
bool isAsciiName(std::string_view text);
/// False for what is certainly not an element name but may be an XPath expression: it holds ASCII characters
/// that no name has, or more than one colon.
bool maybeElementName(std::string_view text);

}  // namespace veltrano

#endif
