#include "database/values/text_matcher.h"

#include <algorithm>

#include "base/text/lower_case.h"
#include "base/text/wtf8.h"

namespace veltrano {

namespace {

std::u16string unitsOf(std::string_view text, CaseRule rule) {
  std::u16string units = wtf8ToUtf16(text);
  if (rule == CaseRule::lowered) {
    std::transform(units.begin(), units.end(), units.begin(), lowerCase);
  }
  return units;
}

}  // namespace

TextMatcher::TextMatcher(std::string_view wanted, CaseRule rule)
    : rule_(rule), exact_(wanted), wanted_(unitsOf(wanted, rule)) {}

bool TextMatcher::same(char16_t stored, char16_t wanted) const {
  return (rule_ == CaseRule::lowered ? lowerCase(stored) : stored) == wanted;
}

bool TextMatcher::matchesUtf8(std::string_view text) const {
  if (rule_ == CaseRule::exact) {
    return text == exact_;
  }
  const std::size_t count = std::min(text.size(), wanted_.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (static_cast<unsigned char>(text[i]) >= 0x80) {
      return unitsOf(text.substr(i), rule_) == std::u16string_view(wanted_).substr(i);
    }
    if (!same(static_cast<char16_t>(text[i]), wanted_[i])) {
      return false;
    }
  }
  return text.size() == wanted_.size();
}

bool TextMatcher::matchesUtf16(std::span<const std::uint8_t> bytes) const {
  if (bytes.size() / 2 != wanted_.size()) {
    return false;
  }
  for (std::size_t i = 0; i < wanted_.size(); ++i) {
    const auto unit = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    if (!same(unit, wanted_[i])) {
      return false;
    }
  }
  return true;
}

bool TextMatcher::matchesLatin1(std::span<const std::uint8_t> bytes) const {
  if (bytes.size() != wanted_.size()) {
    return false;
  }
  for (std::size_t i = 0; i < wanted_.size(); ++i) {
    if (!same(bytes[i], wanted_[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace veltrano
