#ifndef VELTRANO_BASE_TEXT_LOWER_CASE_H
#define VELTRANO_BASE_TEXT_LOWER_CASE_H

// Lower case of Unicode text and comparison without regard to case, character by character and the same on every
// system and in every locale.

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

namespace veltrano {

/// Characters first, first + step, ... last whose lower-case form lies `shift` further on.
struct LowerCaseRun {
  char16_t first;
  char16_t last;
  int shift;
  int step;
};

/// Ordered by `first`, not overlapping; nothing below U+0080.
extern const LowerCaseRun lowerCaseRuns[];
extern const std::size_t lowerCaseRunCount;

/// The lower-case form of a character beyond U+007F.
char16_t lowerCaseBeyondAscii(char16_t c);

inline char16_t lowerCase(char16_t c) {
  if (c < 0x80) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 0x20) : c;
  }
  return lowerCaseBeyondAscii(c);
}

/// Lower case of UTF-8 text, as UTF-16.
std::u16string lowerCaseUtf16(std::string_view utf8);

/// True if two names (UTF-8) differ at most in their case.
bool sameName(std::string_view left, std::string_view right);

/// Lower case of ASCII letters only, in characters of any type.
template <typename Character>
constexpr Character lowerAscii(Character c) {
  return c >= 'A' && c <= 'Z' ? static_cast<Character>(c + 0x20) : c;
}

/// True if two strings of one character type differ at most in the case of ASCII letters: for keywords and
/// names that consist of these.
template <typename Character>
bool sameAsciiName(std::basic_string_view<Character> left,
                   std::type_identity_t<std::basic_string_view<Character>> right) {
  return std::ranges::equal(left, right, {}, lowerAscii<Character>, lowerAscii<Character>);
}
inline bool sameAsciiName(std::string_view left, std::string_view right) {
  return sameAsciiName<char>(left, right);
}

}  // namespace veltrano

#endif
