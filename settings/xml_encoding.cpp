#include "settings/xml_encoding.h"

#include <algorithm>
#include <array>
#include <utility>

#include "settings/xml_characters.h"

namespace veltrano {

namespace {

using Encoding = XmlForm::Encoding;

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16LittleMark = "\xFF\xFE";
constexpr std::string_view utf16BigMark = "\xFE\xFF";
constexpr std::string_view declarationBegin = "<?xml";

constexpr CodePageTable latin1 = [] {
  CodePageTable table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    table[i] = static_cast<char16_t>(0x80 + i);
  }
  return table;
}();

/// US-ASCII has no upper half.
constexpr CodePageTable nothing = {};

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [lower](char x, char y) { return lower(x) == lower(y); });
}

// Declaration
// -------------------------------------------------------------------------------------------------------

bool isDeclaration(std::string_view text) {
  return text.starts_with(declarationBegin) && text.size() > declarationBegin.size() &&
         isXmlBlank(text[declarationBegin.size()]);
}

/// Where the value of a declaration's attribute lies in it.
struct Extent {
  std::size_t begin = 0;
  std::size_t size = 0;
};

/// Reads blanks, name="value" at `at`, which moves behind it.
std::optional<Extent> pseudoAttribute(std::string_view text, std::size_t& at, std::string_view name) {
  std::size_t i = at;
  const auto skipBlanks = [&] {
    const std::size_t before = i;
    while (i < text.size() && isXmlBlank(text[i])) {
      ++i;
    }
    return i != before;
  };
  if (!skipBlanks() || !text.substr(i).starts_with(name)) {
    return std::nullopt;
  }
  i += name.size();
  skipBlanks();
  if (!text.substr(i).starts_with('=')) {
    return std::nullopt;
  }
  ++i;
  skipBlanks();
  const char quote = i < text.size() ? text[i] : '\0';
  const std::size_t end = text.find(quote, i + 1);
  if ((quote != '"' && quote != '\'') || end == std::string_view::npos) {
    return std::nullopt;
  }
  at = end + 1;
  return Extent{i + 1, end - i - 1};
}

struct Declaration {
  std::size_t size = 0;
  std::optional<Extent> encoding;
};

/// Nothing when it is malformed. Only the characters of ASCII are looked at.
std::optional<Declaration> parseDeclaration(std::string_view text) {
  std::size_t at = declarationBegin.size();
  const auto version = pseudoAttribute(text, at, "version");
  if (!version || !text.substr(version->begin, version->size).starts_with("1.")) {
    return std::nullopt;
  }
  Declaration declaration;
  declaration.encoding = pseudoAttribute(text, at, "encoding");
  pseudoAttribute(text, at, "standalone");
  while (at < text.size() && isXmlBlank(text[at])) {
    ++at;
  }
  if (!text.substr(at).starts_with("?>")) {
    return std::nullopt;
  }
  declaration.size = at + 2;
  return declaration;
}

/// The usual ones are the same everywhere; the system is asked for the others.
std::optional<CodePageTable> singleByteTable(std::string_view encoding) {
  const struct {
    std::string_view name;
    const CodePageTable& table;
  } known[] = {{"iso-8859-1", latin1},        {"latin1", latin1},      {"iso_8859-1", latin1},
               {"windows-1252", windows1252}, {"cp1252", windows1252}, {"windows-1250", windows1250},
               {"windows-1251", windows1251}, {"us-ascii", nothing},   {"ascii", nothing}};
  for (const auto& [name, table] : known) {
    if (equalIgnoringCase(name, encoding)) {
      return table;
    }
  }
  return codePageNamed(encoding);
}

// Bytes to UTF-8
// ----------------------------------------------------------------------------------------------------

/// Nothing for an odd number of bytes or unpaired surrogates.
std::optional<std::string> fromUtf16(std::string_view bytes, bool big) {
  if (bytes.size() % 2 != 0) {
    return std::nullopt;
  }
  const auto unitAt = [&](std::size_t i) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return static_cast<char32_t>(big ? first * 256 + second : second * 256 + first);
  };
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    char32_t code = unitAt(i);
    if (code >= 0xD800 && code <= 0xDFFF) {
      const char32_t low = i + 2 < bytes.size() ? unitAt(i + 2) : 0;
      if (code > 0xDBFF || low < 0xDC00 || low > 0xDFFF) {
        return std::nullopt;
      }
      code = 0x10000 + ((code - 0xD800) << 10U) + (low - 0xDC00);
      i += 2;
    }
    appendUtf8(text, code);
  }
  return text;
}

std::optional<std::string> fromSingleByte(std::string_view bytes, const CodePageTable& upperHalf) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    const char32_t code = byte < 0x80 ? byte : upperHalf[byte - 0x80U];
    if (code == 0 && byte >= 0x80) {
      return std::nullopt;
    }
    appendUtf8(text, code);
  }
  return text;
}

/// Decodes what has no byte-order mark and begins with ASCII characters: its declaration decides. One that
/// names a two-byte encoding is wrong, evidently; such files are UTF-8 texts that were saved without looking
/// at it.
std::optional<std::string> decodeAsDeclared(std::string bytes, XmlForm& form) {
  if (!isDeclaration(bytes)) {
    return bytes;
  }
  const auto declaration = parseDeclaration(bytes);
  if (!declaration) {
    return std::nullopt;
  }
  if (!declaration->encoding) {
    return bytes;
  }
  const auto name = std::string_view(bytes).substr(declaration->encoding->begin, declaration->encoding->size);
  if (equalIgnoringCase(name, "utf-8") || equalIgnoringCase(name, "utf8") ||
      equalIgnoringCase(name, "utf-16")) {
    return bytes;
  }
  const auto table = singleByteTable(name);
  if (!table) {
    return std::nullopt;
  }
  form.encoding = Encoding::singleByte;
  form.upperHalf = *table;
  return fromSingleByte(bytes, *table);
}

std::optional<std::string> decode(std::string bytes, XmlForm& form) {
  const std::string_view view = bytes;
  using namespace std::string_view_literals;
  const bool little = view.starts_with(utf16LittleMark);
  const bool big = view.starts_with(utf16BigMark);
  if (little || big || view.starts_with("<\0"sv) || view.starts_with("\0<"sv)) {
    form.byteOrderMark = little || big;
    const bool bigEndian = big || view.starts_with('\0');
    form.encoding = bigEndian ? Encoding::utf16Big : Encoding::utf16Little;
    return fromUtf16(view.substr(form.byteOrderMark ? 2 : 0), bigEndian);
  }
  if (view.starts_with(utf8Mark)) {
    form.byteOrderMark = true;
    bytes.erase(0, utf8Mark.size());
    return bytes;
  }
  return decodeAsDeclared(std::move(bytes), form);
}

// UTF-8 to bytes
// ----------------------------------------------------------------------------------------------------

void appendUnit(std::string& bytes, char32_t unit, bool big) {
  const auto high = static_cast<char>(unit >> 8U);
  const auto low = static_cast<char>(unit & 0xFFU);
  bytes.push_back(big ? high : low);
  bytes.push_back(big ? low : high);
}

void appendUtf16(std::string& bytes, std::string_view text, bool big) {
  while (const auto character = decodeCharacter(text)) {
    const char32_t code = character->code;
    if (code < 0x10000) {
      appendUnit(bytes, code, big);
    } else {
      appendUnit(bytes, 0xD800 + ((code - 0x10000) >> 10U), big);
      appendUnit(bytes, 0xDC00 + ((code - 0x10000) & 0x3FFU), big);
    }
    text.remove_prefix(character->length);
  }
}

void appendSingleBytes(std::string& bytes, std::string_view text, const CodePageTable& upperHalf) {
  while (const auto character = decodeCharacter(text)) {
    char32_t byte = character->code;
    if (byte >= 0x80) {
      const auto at = std::find(upperHalf.begin(), upperHalf.end(), character->code);
      byte = at == upperHalf.end() ? '?' : static_cast<char32_t>(0x80 + (at - upperHalf.begin()));
    }
    bytes.push_back(static_cast<char>(byte));
    text.remove_prefix(character->length);
  }
}

}  // namespace

bool XmlForm::canHold(char32_t code) const {
  return encoding != Encoding::singleByte || code < 0x80 ||
         std::find(upperHalf.begin(), upperHalf.end(), code) != upperHalf.end();
}

std::optional<DecodedXml> decodeXml(std::string bytes) {
  DecodedXml result;
  auto text = decode(std::move(bytes), result.form);
  if (!text) {
    return std::nullopt;
  }
  result.text = *std::move(text);
  if (isDeclaration(result.text)) {
    const auto declaration = parseDeclaration(result.text);
    if (!declaration) {
      return std::nullopt;
    }
    result.form.declaration = result.text.substr(0, declaration->size);
  }
  const std::size_t lineFeed = result.text.find('\n');
  result.form.crlf = lineFeed != std::string::npos && lineFeed > 0 && result.text[lineFeed - 1] == '\r';
  return result;
}

std::string encodeXml(const XmlForm& form, std::string text) {
  std::string bytes;
  switch (form.encoding) {
    case Encoding::utf8:
      return form.byteOrderMark ? std::move(text.insert(0, utf8Mark)) : text;
    case Encoding::utf16Little:
    case Encoding::utf16Big: {
      const bool big = form.encoding == Encoding::utf16Big;
      bytes.reserve(text.size() * 2 + utf16BigMark.size());
      if (form.byteOrderMark) {
        bytes.append(big ? utf16BigMark : utf16LittleMark);
      }
      appendUtf16(bytes, text, big);
      break;
    }
    case Encoding::singleByte:
      bytes.reserve(text.size());
      appendSingleBytes(bytes, text, form.upperHalf);
      break;
  }
  return bytes;
}

XmlForm inUtf8(XmlForm form) {
  form.encoding = Encoding::utf8;
  if (isDeclaration(form.declaration)) {
    const auto declaration = parseDeclaration(form.declaration);
    if (declaration && declaration->encoding) {
      form.declaration.replace(declaration->encoding->begin, declaration->encoding->size, "UTF-8");
    }
  }
  return form;
}

}  // namespace veltrano
