#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <unordered_map>

#include "base/text/code_page.h"

namespace veltrano {

namespace {

// Lower-case form of the characters that single-byte code pages hold: Latin, Greek and Cyrillic.
char16_t lowerCharacter(char16_t c) {
  const auto within = [c](char16_t first, char16_t last) { return c >= first && c <= last; };
  const auto plus = [c](int distance) { return static_cast<char16_t>(c + distance); };
  if (within(u'A', u'Z') || (within(0x00C0, 0x00DE) && c != 0x00D7) || within(0x0391, 0x03A9) ||
      within(0x0410, 0x042F)) {
    return plus(0x20);
  }
  if (within(0x0400, 0x040F)) {
    return plus(0x50);
  }
  if (c == 0x0178) {
    return 0x00FF;
  }
  // Latin Extended-A pairs a capital with the character after it; the capital is odd in two stretches.
  if (within(0x0139, 0x0147) || within(0x0179, 0x017D)) {
    return (c & 1) != 0 ? plus(1) : c;
  }
  if (within(0x0100, 0x0137) || within(0x014A, 0x0177) || c == 0x0490) {
    return (c & 1) == 0 ? plus(1) : c;
  }
  return c;
}

struct ActivePage {
  CodePageTable unicode{};
  std::unordered_map<char16_t, char> codes;
  std::array<char, 256> lower{};

  explicit ActivePage(const CodePageTable& table) { use(table); }

  void use(const CodePageTable& table) {
    unicode = table;
    codes.clear();
    for (std::size_t i = 0; i < table.size(); ++i) {
      codes.emplace(table[i], static_cast<char>(i + 128));
    }
    for (std::size_t code = 0; code < lower.size(); ++code) {
      lower[code] =
          ansi(lowerCharacter(character(static_cast<unsigned char>(code))), static_cast<char>(code));
    }
  }

  [[nodiscard]] char16_t character(unsigned char code) const {
    return code < 128 ? static_cast<char16_t>(code) : unicode[code - 128U];
  }

  [[nodiscard]] char ansi(char16_t c, char otherwise) const {
    if (c < 128) {
      return static_cast<char>(c);
    }
    const auto found = codes.find(c);
    return found == codes.end() ? otherwise : found->second;
  }
};

ActivePage& activePage() {
  static ActivePage page(windows1252);
  return page;
}

/// The system's converter of one encoding to UTF-16.
class Converter {
 public:
  explicit Converter(const std::string& from)
      : handle_(
            iconv_open(std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE", from.c_str())) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (*this) {
      iconv_close(handle_);
    }
  }
  explicit operator bool() const { return handle_ != invalid(); }

  /// The one character that the byte stands for, zero when it stands for none. Nothing when more bytes would
  /// have to follow, or when the byte stands for anything else.
  std::optional<char16_t> character(unsigned char code) {
    auto byte = static_cast<char>(code);
    char16_t result = 0;
    char* from = &byte;
    char* to = reinterpret_cast<char*>(&result);
    std::size_t inputLeft = 1;
    std::size_t outputLeft = sizeof result;
    if (iconv(handle_, &from, &inputLeft, &to, &outputLeft) != 0) {
      const bool unassigned = errno == EILSEQ;
      iconv(handle_, nullptr, nullptr, nullptr, nullptr);
      return unassigned ? std::optional<char16_t>(u'\0') : std::nullopt;
    }
    return outputLeft == 0 ? std::optional(result) : std::nullopt;
  }

 private:
  // NOLINTNEXTLINE(performance-no-int-to-ptr): what iconv_open answers.
  static iconv_t invalid() { return reinterpret_cast<iconv_t>(-1); }

  iconv_t handle_;
};

}  // namespace

std::optional<CodePageTable> codePageNamed(std::string_view name) {
  // The system would read more than a name from others ("//TRANSLIT").
  const bool plain = std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
  });
  if (name.empty() || !plain) {
    return std::nullopt;
  }
  Converter converter((std::string(name)));
  CodePageTable table{};
  for (unsigned code = 0; code < 256; ++code) {
    const auto character = converter ? converter.character(static_cast<unsigned char>(code)) : std::nullopt;
    if (!character || (code < 128 && *character != code)) {
      return std::nullopt;
    }
    if (code >= 128) {
      table[code - 128U] = *character;
    }
  }
  return table;
}

void setCodePage(const CodePageTable& table) {
  activePage().use(table);
}

std::string utf16ToAnsi(std::u16string_view text) {
  const ActivePage& page = activePage();
  std::string result(text.size(), '\0');
  std::transform(text.begin(), text.end(), result.begin(), [&page](char16_t c) { return page.ansi(c, '?'); });
  return result;
}

std::u16string ansiToUtf16(std::string_view text) {
  const ActivePage& page = activePage();
  std::u16string result(text.size(), u'\0');
  std::transform(text.begin(), text.end(), result.begin(),
                 [&page](char c) { return page.character(static_cast<unsigned char>(c)); });
  return result;
}

const std::array<char, 256>& ansiLowerTable() {
  return activePage().lower;
}

}  // namespace veltrano
