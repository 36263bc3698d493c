#include "database/access/storage/text_codec.h"

#include <algorithm>
#include <cstring>

#include "base/text/code_page.h"
#include "base/text/encodings.h"
#include "base/text/wtf8.h"

namespace veltrano::access {

// Compressed text: FF FE, then a state machine that starts in one-byte mode.
//   one-byte mode: a byte is the character U+0001 to U+00FF; 00 switches to two-byte mode
//   two-byte mode: UTF-16 units; a 00 byte where a unit would start switches back
// The text may end in either mode. Since a 00 byte switches, no unit with a zero byte occurs in two-byte mode.

namespace {

constexpr std::size_t markSize = 2;

void appendLatin1AsUtf8(Bytes bytes, std::string& text) {
  // Most texts are plain ASCII, which is UTF-8 as it stands.
  constexpr std::uint64_t highBits = 0x8080808080808080;
  std::size_t plain = 0;
  while (plain + 8 <= bytes.size() && (load64(bytes.data() + plain) & highBits) == 0) {
    plain += 8;
  }
  text.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(plain));
  for (const std::uint8_t byte : bytes.subspan(plain)) {
    if (byte < 0x80) {
      text.push_back(static_cast<char>(byte));
    } else {
      appendUtf8(text, byte);
    }
  }
}

}  // namespace

std::optional<std::string> codePageToUtf8(std::uint16_t codePage, Bytes bytes) {
  if (codePage >= 1250 && codePage <= 1252) {
    // Nearly all files. Their text is read cell by cell, so it does not go through the system.
    const CodePageTable& table = codePage == 1250   ? windows1250
                                 : codePage == 1251 ? windows1251
                                                    : windows1252;
    std::string text;
    text.reserve(bytes.size());
    for (const std::uint8_t byte : bytes) {
      appendUtf8(text, byte < 0x80 ? char32_t{byte} : char32_t{table[byte - 0x80U]});
    }
    return text;
  }
  const std::string encoding = "cp" + std::to_string(codePage);
  const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (auto units = decodeText(encoding, all)) {
    return utf16ToUtf8(*units);
  }
  if (!isKnownCodePage(codePage)) {
    return std::nullopt;
  }
  // Malformed somewhere: byte by byte, so that what can be read is.
  std::u16string units;
  for (std::size_t i = 0; i < all.size(); ++i) {
    units += decodeText(encoding, all.substr(i, 1)).value_or(u"\uFFFD");
  }
  return utf16ToUtf8(units);
}

bool isKnownCodePage(std::uint16_t codePage) {
  return (codePage >= 1250 && codePage <= 1252) || decodeText("cp" + std::to_string(codePage), "A") == u"A";
}

void appendUtf16AsUtf8(Bytes bytes, std::string& text) {
  const std::size_t size = bytes.size() & ~std::size_t{1};
  for (std::size_t i = 0; i < size; i += 2) {
    const char32_t unit = load16(bytes.data() + i);
    if (unit < 0x80) {
      text.push_back(static_cast<char>(unit));
      continue;
    }
    // A lone surrogate stays what it is.
    const char32_t next = i + 2 < size ? load16(bytes.data() + i + 2) : 0;
    const bool pair = isHighSurrogate(unit) && isLowSurrogate(next);
    appendUtf8(text, pair ? fromSurrogates(unit, next) : unit);
    i += pair ? 2 : 0;
  }
}

Bytes plainLatin1(Bytes stored) {
  const Bytes body = stored.subspan(markSize);
  if (!body.empty() && std::memchr(body.data(), 0, body.size()) != nullptr) {
    return {};
  }
  return body;
}

Bytes expandStoredText(Bytes stored, std::vector<std::uint8_t>& buffer) {
  if (!isCompressed(stored)) {
    return stored.first(stored.size() & ~std::size_t{1});
  }
  buffer.clear();
  buffer.reserve(stored.size() * 2);
  bool wide = false;
  for (std::size_t i = markSize; i < stored.size(); ++i) {
    if (stored[i] == 0) {
      wide = !wide;
    } else if (!wide) {
      buffer.push_back(stored[i]);
      buffer.push_back(0);
    } else if (i + 1 < stored.size()) {
      buffer.push_back(stored[i]);
      buffer.push_back(stored[++i]);
    }
  }
  return buffer;
}

void storedTextToUtf8(Bytes stored, std::string& text) {
  text.clear();
  if (!isCompressed(stored)) {
    appendUtf16AsUtf8(stored, text);
  } else if (const Bytes latin1 = plainLatin1(stored); latin1.data() != nullptr) {
    appendLatin1AsUtf8(latin1, text);
  } else {
    std::vector<std::uint8_t> buffer;
    appendUtf16AsUtf8(expandStoredText(stored, buffer), text);
  }
}

void encodeStoredText(std::string_view utf8, bool mayCompress, std::vector<std::uint8_t>& stored) {
  constexpr std::size_t leastCompressed = 3;
  constexpr std::size_t mostCompressed = 1024;
  stored.clear();
  const bool ascii = std::all_of(utf8.begin(), utf8.end(), [](char c) { return c != 0 && (c & 0x80) == 0; });
  if (ascii && mayCompress && utf8.size() >= leastCompressed && utf8.size() <= mostCompressed) {
    stored.reserve(markSize + utf8.size());
    stored.assign({0xFF, 0xFE});
    stored.insert(stored.end(), utf8.begin(), utf8.end());
    return;
  }
  const std::u16string units = wtf8ToUtf16(utf8);
  const auto fitsByte = [](char16_t unit) { return unit >= 1 && unit <= 0xFF; };
  if (mayCompress && units.size() >= leastCompressed && units.size() <= mostCompressed &&
      std::all_of(units.begin(), units.end(), fitsByte)) {
    stored.reserve(markSize + units.size());
    stored.assign({0xFF, 0xFE});
    for (const char16_t unit : units) {
      stored.push_back(static_cast<std::uint8_t>(unit));
    }
    return;
  }
  stored.resize(units.size() * 2);
  for (std::size_t i = 0; i < units.size(); ++i) {
    store16(stored.data() + 2 * i, units[i]);
  }
}

}  // namespace veltrano::access
