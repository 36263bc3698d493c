#ifndef VELTRANO_SETTINGS_XML_ENCODING_H
#define VELTRANO_SETTINGS_XML_ENCODING_H

// How a settings file is encoded, so that it is saved as it was found: what wrote it must be able to read it.
// Known are UTF-8, UTF-16 in both byte orders, and what the system can convert.

#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

struct XmlForm {
  enum class Encoding { utf8, utf16Little, utf16Big, named };

  Encoding encoding = Encoding::utf8;
  std::string name;  ///< of a `named` encoding
  bool byteOrderMark = false;
  /// "<?xml ... ?>" in UTF-8 as it stood in the file, or empty.
  std::string declaration;
  /// Line ends are CR LF.
  bool crlf = false;
};

struct DecodedXml {
  XmlForm form;
  /// All of the file in UTF-8, without a byte-order mark.
  std::string text;
};

/// Empty if the encoding is not known, the bytes are malformed in it or the declaration is malformed.
std::optional<DecodedXml> decodeXml(std::string bytes);

/// The bytes of a file in that form, from its UTF-8 text, declaration included. Empty if the encoding lacks
/// one of the characters.
std::optional<std::string> encodeXml(const XmlForm& form, std::string text);

/// The characters of the text that need a reference in that form's encoding, in ascending order.
std::u32string missingCharacters(const XmlForm& form, std::string_view text);

/// The same form in UTF-8; its declaration says so.
XmlForm inUtf8(XmlForm form);

}  // namespace veltrano

#endif
