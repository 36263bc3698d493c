#ifndef VELTRANO_SETTINGS_XML_CHARACTERS_H
#define VELTRANO_SETTINGS_XML_CHARACTERS_H

// Characters as XML has them, in UTF-8.

#include <string>
#include <string_view>

namespace veltrano {

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
