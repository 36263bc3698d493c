#ifndef VELTRANO_DATABASE_VALUES_TEXT_MATCHER_H
#define VELTRANO_DATABASE_VALUES_TEXT_MATCHER_H

// The comparison of a record search, prepared once and used for every record. It takes stored text in the forms
// in which files hold it, so that engines need not convert what they only compare.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace veltrano {

enum class CaseRule { exact, lowered };

class TextMatcher {
 public:
  /// `wanted` is UTF-8 (unpaired surrogates as in base/text/wtf8.h). With CaseRule::lowered both sides are
  /// compared in lower case.
  TextMatcher(std::string_view wanted, CaseRule rule);

  [[nodiscard]] CaseRule rule() const { return rule_; }
  /// The text as it was given.
  [[nodiscard]] const std::string& wanted() const { return exact_; }
  /// The text in UTF-16, in lower case where the rule says so.
  [[nodiscard]] std::u16string_view units() const { return wanted_; }

  [[nodiscard]] bool matchesUtf8(std::string_view text) const;
  /// UTF-16, low byte first; an odd last byte is ignored.
  [[nodiscard]] bool matchesUtf16(std::span<const std::uint8_t> bytes) const;
  /// Each byte is the character of that number (U+0000 to U+00FF).
  [[nodiscard]] bool matchesLatin1(std::span<const std::uint8_t> bytes) const;

 private:
  [[nodiscard]] bool same(char16_t stored, char16_t wanted) const;

  CaseRule rule_;
  std::string exact_;      ///< as given
  std::u16string wanted_;  ///< in lower case where the rule says so
};

}  // namespace veltrano

#endif
