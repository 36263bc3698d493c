#ifndef VELTRANO_BASE_TEXT_ENCODINGS_H
#define VELTRANO_BASE_TEXT_ENCODINGS_H

// Text in any encoding that the system can convert, by the names that files use: "ISO-8859-15", "Shift_JIS",
// "GB18030". The case of a name does not matter. Names mean what they mean on Windows: "Shift_JIS" is code
// page 932, whose backslash is a backslash.

#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

/// True if the system knows the encoding and ASCII text is itself in it, so that a declaration can be read
/// before its encoding is known. UTF-16, UTF-7 and EBCDIC are not among them.
bool isKnownEncoding(std::string_view name);

/// Empty if the encoding is not known, or the bytes are malformed in it.
std::optional<std::u16string> decodeText(std::string_view encoding, std::string_view bytes);

/// Empty if the encoding is not known, or lacks one of the characters.
std::optional<std::string> encodeText(std::string_view encoding, std::u16string_view text);

}  // namespace veltrano

#endif
