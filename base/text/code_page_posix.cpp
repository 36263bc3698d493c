#include <algorithm>
#include <unordered_map>

#include "base/text/code_page.h"
#include "base/text/encodings.h"
#include "base/text/iconv_posix.h"

namespace veltrano {

namespace {

struct ActivePage {
  CodePageTable unicode{};
  std::unordered_map<char16_t, char> codes;
  std::string name = "windows-1252";
  /// The system's name of a page of several bytes a character, which has no table; else empty.
  std::string encoding;

  explicit ActivePage(const CodePageTable& table) { use(table); }

  void use(const CodePageTable& table, const std::string& multiByteEncoding = {}) {
    unicode = table;
    encoding = multiByteEncoding;
    codes.clear();
    for (std::size_t i = 0; i < table.size(); ++i) {
      codes.emplace(table[i], static_cast<char>(i + 128));
    }
  }

  [[nodiscard]] char16_t character(unsigned char code) const {
    return code < 128 ? static_cast<char16_t>(code) : unicode[code - 128U];
  }

  [[nodiscard]] char ansi(char16_t c) const {
    if (c < 128) {
      return static_cast<char>(c);
    }
    const auto found = codes.find(c);
    return found == codes.end() ? '?' : found->second;
  }
};

ActivePage& activePage() {
  static ActivePage page(windows1252);
  return page;
}

std::string toMultiByte(std::u16string_view text, const std::string& encoding) {
  const std::string_view units(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
  std::string result;
  Converter(nativeUtf16, encoding).convert(units, result, [&](std::string_view rest, std::string& bytes) {
    const char16_t unit = text[text.size() - rest.size() / sizeof(char16_t)];
    bytes.push_back('?');
    return (unit >= 0xD800 && unit < 0xDC00 ? 2 : 1) * sizeof(char16_t);
  });
  return result;
}

std::u16string fromMultiByte(std::string_view text, const std::string& encoding) {
  static constexpr char16_t replacement = 0xFFFD;
  std::string units;
  Converter(encoding, nativeUtf16).convert(text, units, [](std::string_view, std::string& result) {
    result.append(reinterpret_cast<const char*>(&replacement), sizeof replacement);
    return std::size_t{1};
  });
  std::u16string result(units.size() / sizeof(char16_t), u'\0');
  units.copy(reinterpret_cast<char*>(result.data()), units.size());
  return result;
}

}  // namespace

std::string codePage() {
  return activePage().name;
}

bool setCodePage(std::string_view encoding) {
  if (!isKnownEncoding(encoding)) {
    return false;
  }
  CodePageTable table{};
  bool singleByte = true;
  for (std::size_t i = 0; i < table.size(); ++i) {
    const auto byte = static_cast<char>(i + 128);
    const auto character = decodeText(encoding, {&byte, 1});
    table[i] = character ? character->front() : u'\0';
    singleByte &= character.has_value();
  }
  activePage().use(table, singleByte ? std::string() : systemEncodingName(encoding));
  activePage().name = encoding;
  return true;
}

std::string convertToAnsi(std::u16string_view text) {
  const ActivePage& page = activePage();
  if (!page.encoding.empty()) {
    return toMultiByte(text, page.encoding);
  }
  std::string result(text.size(), '\0');
  std::transform(text.begin(), text.end(), result.begin(), [&page](char16_t c) { return page.ansi(c); });
  return result;
}

std::u16string ansiToUtf16(std::string_view text) {
  const ActivePage& page = activePage();
  if (!page.encoding.empty()) {
    return fromMultiByte(text, page.encoding);
  }
  std::u16string result(text.size(), u'\0');
  std::transform(text.begin(), text.end(), result.begin(),
                 [&page](char c) { return page.character(static_cast<unsigned char>(c)); });
  return result;
}

}  // namespace veltrano
