#ifndef VELTRANO_SETTINGS_XML_ENCODING_H
#define VELTRANO_SETTINGS_XML_ENCODING_H

// How a settings file is encoded, so that it is saved as it was found: what wrote it must be able to read it.
// Known are UTF-8, UTF-16 in both byte orders, US-ASCII, ISO-8859-1, Windows-1250 to 1252 and the other
// single-byte encodings that the system knows.

#include <optional>
#include <string>
#include <string_view>

#include "base/text/code_page.h"

namespace veltrano {

struct XmlForm {
  enum class Encoding { utf8, utf16Little, utf16Big, singleByte };

  Encoding encoding = Encoding::utf8;
  /// Characters of the codes 128 to 255 of a single-byte encoding; zero where it has none.
  CodePageTable upperHalf = {};
  bool byteOrderMark = false;
  /// "<?xml ... ?>" in UTF-8 as it stood in the file, or empty.
  std::string declaration;
  /// Line ends are CR LF.
  bool crlf = false;

  /// False for what needs a character reference in this encoding.
  [[nodiscard]] bool canHold(char32_t code) const;
};

struct DecodedXml {
  XmlForm form;
  /// All of the file in UTF-8, without a byte-order mark.
  std::string text;
};

/// Nothing when the encoding is not known, the bytes are none of it or the declaration is malformed.
std::optional<DecodedXml> decodeXml(std::string bytes);

/// The bytes of a file in that form, from its UTF-8 text, declaration included. The encoding must be able to
/// hold all characters of the text.
std::string encodeXml(const XmlForm& form, std::string text);

/// The same form in UTF-8; its declaration says so.
XmlForm inUtf8(XmlForm form);

}  // namespace veltrano

#endif
