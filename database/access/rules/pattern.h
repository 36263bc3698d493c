#ifndef VELTRANO_DATABASE_ACCESS_RULES_PATTERN_H
#define VELTRANO_DATABASE_ACCESS_RULES_PATTERN_H

// The patterns of the operator Like:
//   *       any characters, or none
//   ?       one character
//   #       one digit
//   [a-z]   one of these characters; with ! after the bracket one that is not among them
// Case does not count. Ranges go by the text order, so that [a-z] holds letters with accents.

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "database/access/collation/collation.h"

namespace veltrano::access {

class LikePattern {
 public:
  LikePattern() = default;
  /// Empty if a bracket is not closed or a range runs backwards.
  static std::optional<LikePattern> parse(std::u16string_view pattern, TextOrder order);

  [[nodiscard]] bool matches(std::u16string_view text) const;

 private:
  struct Element {
    enum class Kind { character, one, digit, any, set } kind{};
    char16_t character = 0;
    bool excluded = false;
    std::vector<std::pair<char16_t, char16_t>> ranges = {};
  };
  static std::optional<Element> parseSet(std::u16string_view body, TextOrder order);
  [[nodiscard]] bool matches(const Element& element, char16_t c) const;

  TextOrder order_{};
  std::vector<Element> elements_;
};

}  // namespace veltrano::access

#endif
