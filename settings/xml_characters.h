#ifndef VELTRANO_SETTINGS_XML_CHARACTERS_H
#define VELTRANO_SETTINGS_XML_CHARACTERS_H

// Characters and names as XML 1.0 (fifth edition) has them, in UTF-8.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

struct DecodedCharacter {
  char32_t code = 0;
  std::size_t length = 0;  ///< bytes
};

/// The character at the begin of `text`; nothing when `text` is empty or does not begin with well-formed
/// UTF-8.
std::optional<DecodedCharacter> decodeCharacter(std::string_view text);
void appendUtf8(std::string& target, char32_t code);

/// What an XML document may hold, as such or as a character reference.
bool isXmlCharacter(char32_t code);
constexpr std::string_view xmlBlanks = " \t\n\r";
inline bool isXmlBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool isBlank(std::string_view text);

/// True when all of `text` is well-formed UTF-8 and may stand in an XML document.
bool isXmlText(std::string_view text);
/// `text` without what XML cannot hold: control characters, U+FFFE, U+FFFF, malformed bytes.
std::string withoutForbiddenCharacters(std::string_view text);

/// Bytes of the XML name at the begin of `text`; 0 when there is none.
std::size_t nameLength(std::string_view text);
/// A name that an element can have as far as its characters go: one name, or two with a colon between them.
bool isQualifiedName(std::string_view text);

}  // namespace veltrano

#endif
