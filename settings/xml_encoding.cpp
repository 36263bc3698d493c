#include "settings/xml_encoding.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/text/encodings.h"
#include "base/text/utf.h"
#include "settings/xml_characters.h"

namespace veltrano {

namespace {

using Encoding = XmlForm::Encoding;

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16LittleMark = "\xFF\xFE";
constexpr std::string_view utf16BigMark = "\xFE\xFF";
constexpr std::string_view declarationStart = "<?xml";

/// True for encodings whose names are in lower case here.
bool isOneOf(std::initializer_list<std::string_view> names, std::string_view encoding) {
  std::string lowered(encoding);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
  return std::find(names.begin(), names.end(), lowered) != names.end();
}

// Declaration
// -----------------------------------------------------------------------------------------------------------

bool isDeclaration(std::string_view text) {
  return text.starts_with(declarationStart) && text.size() > declarationStart.size() &&
         isXmlBlank(text[declarationStart.size()]);
}

/// Where the value of a declaration's attribute lies in it.
struct Extent {
  std::size_t begin = 0;
  std::size_t size = 0;
};

/// Reads blanks, name="value" at `at`, which moves to after it.
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

/// Empty if it is malformed.
std::optional<Declaration> parseDeclaration(std::string_view text) {
  std::size_t at = declarationStart.size();
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

// Bytes to UTF-8
// -----------------------------------------------------------------------------------------------------------

/// Empty for an odd number of bytes or unpaired surrogates.
std::optional<std::string> fromUtf16(std::string_view bytes, bool big) {
  if (bytes.size() % 2 != 0) {
    return std::nullopt;
  }
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    units.push_back(static_cast<char16_t>(big ? first * 256 + second : second * 256 + first));
  }
  std::string text = utf16ToUtf8(units);
  return utf8ToUtf16(text) == units ? std::optional(std::move(text)) : std::nullopt;
}

/// Decodes what has no byte-order mark and starts with ASCII characters: its declaration decides. One that
/// names an encoding of two bytes a character is evidently wrong; such files are UTF-8 texts that were saved
/// without regard to it.
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
  const std::string name = bytes.substr(declaration->encoding->begin, declaration->encoding->size);
  if (isOneOf({"utf-8", "utf8", "utf-16", "utf-16le", "utf-16be", "ucs-2", "iso-10646-ucs-2", "unicode"},
              name)) {
    return bytes;
  }
  if (!isKnownEncoding(name)) {
    return std::nullopt;
  }
  form.encoding = Encoding::named;
  form.name = name;
  const auto text = decodeText(name, bytes);
  return text ? std::optional(utf16ToUtf8(*text)) : std::nullopt;
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
// -----------------------------------------------------------------------------------------------------------

std::string toUtf16(const XmlForm& form, std::string_view text) {
  const bool big = form.encoding == Encoding::utf16Big;
  const std::u16string units = utf8ToUtf16(text);
  std::string bytes;
  bytes.reserve(units.size() * 2 + utf16BigMark.size());
  if (form.byteOrderMark) {
    bytes.append(big ? utf16BigMark : utf16LittleMark);
  }
  for (const char16_t unit : units) {
    const auto high = static_cast<char>(unit >> 8U);
    const auto low = static_cast<char>(unit & 0xFFU);
    bytes.push_back(big ? high : low);
    bytes.push_back(big ? low : high);
  }
  return bytes;
}

}  // namespace

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

std::optional<std::string> encodeXml(const XmlForm& form, std::string text) {
  switch (form.encoding) {
    case Encoding::utf8:
      return form.byteOrderMark ? std::move(text.insert(0, utf8Mark)) : std::move(text);
    case Encoding::utf16Little:
    case Encoding::utf16Big:
      return toUtf16(form, text);
    case Encoding::named:
      break;
  }
  return encodeText(form.name, utf8ToUtf16(text));
}

std::u32string missingCharacters(const XmlForm& form, std::string_view text) {
  std::set<char32_t> characters;
  for (std::size_t i = 0; i < text.size();) {
    characters.insert(nextCharacter(text, i));
  }
  std::u32string missing;
  for (const char32_t code : characters) {
    std::string character;
    appendUtf8(character, code);
    if (code >= 0x80 && !encodeXml(form, character)) {
      missing.push_back(code);
    }
  }
  return missing;
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
