#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_TEXT_CODEC_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_TEXT_CODEC_H

// Text as rows hold it: UTF-16 or compressed (Jet 4 and later), in a code page (Jet 3).

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

/// Text in a Windows code page as UTF-8; malformed bytes become U+FFFD. Empty if the system cannot convert from it.
std::optional<std::string> codePageToUtf8(std::uint16_t codePage, Bytes bytes);
bool isKnownCodePage(std::uint16_t codePage);

/// Appends UTF-16 (low byte first; an odd last byte is ignored) as UTF-8. Unpaired surrogates stay
/// (base/text/wtf8.h).
void appendUtf16AsUtf8(Bytes bytes, std::string& text);

/// True for text that starts with the mark of the compressed form.
inline bool isCompressed(Bytes stored) {
  return stored.size() >= 2 && stored[0] == 0xFF && stored[1] == 0xFE;
}

/// The characters of compressed text if it is one byte a character throughout, otherwise an empty pointer.
Bytes plainLatin1(Bytes stored);

/// Replaces `text` by the stored text of a Jet 4 column, compressed or not, in UTF-8 (as above).
void storedTextToUtf8(Bytes stored, std::string& text);

/// The UTF-16 bytes of a stored text of a Jet 4 column: `stored` itself, or `buffer` when it was compressed.
Bytes expandStoredText(Bytes stored, std::vector<std::uint8_t>& buffer);

/// Replaces `stored` by the form in which a Jet 4 row holds the UTF-8 text: compressed if that is allowed and
/// possible.
void encodeStoredText(std::string_view utf8, bool mayCompress, std::vector<std::uint8_t>& stored);

}  // namespace veltrano::access

#endif
