#include "settings/ini_lines.h"

#include "base/text/code_page.h"
#include "base/text/lower_case.h"

namespace veltrano {

namespace {

/// No code page takes more for one unit of UTF-16.
constexpr std::size_t mostBytesAUnit = 4;

bool startsWithIgnoringCase(std::u16string_view text, std::u16string_view lowered) {
  return text.size() >= lowered.size() &&
         std::equal(lowered.begin(), lowered.end(), text.begin(),
                    [](char16_t wanted, char16_t c) { return lowerCase(c) == wanted; });
}

}  // namespace

IniKey::IniKey(std::u16string_view key) : lowered_(key) {
  std::transform(lowered_.begin(), lowered_.end(), lowered_.begin(), lowerCase);
  lowered_.push_back(u'=');
}

std::optional<std::size_t> IniKey::valueIn(std::u16string_view line) const {
  return startsWithIgnoringCase(line, lowered_) ? std::optional(lowered_.size()) : std::nullopt;
}

std::optional<std::size_t> IniKey::valueIn(std::string_view line) const {
  // ASCII bytes stand for themselves up to the first other one; from there on a byte may be part of a
  // character.
  for (std::size_t i = 0; i < lowered_.size(); ++i) {
    if (i == line.size()) {
      return std::nullopt;
    }
    const auto byte = static_cast<unsigned char>(line[i]);
    if (byte >= 0x80) {
      const std::u16string_view rest = std::u16string_view(lowered_).substr(i);
      if (!startsWithIgnoringCase(ansiToUtf16(line.substr(i, rest.size() * mostBytesAUnit)), rest)) {
        return std::nullopt;
      }
      break;
    }
    if (lowerCase(byte) != lowered_[i]) {
      return std::nullopt;
    }
  }
  // "=" is never part of another character, so counting them finds the one after the key.
  std::size_t value = 0;
  for (auto signs = std::count(lowered_.begin(), lowered_.end(), u'='); signs > 0; --signs) {
    value = line.find('=', value) + 1;
  }
  return value;
}

}  // namespace veltrano
