#ifndef VELTRANO_BASE_TEXT_UTF_H
#define VELTRANO_BASE_TEXT_UTF_H

// The Unicode encodings, each conversion once.

#include <cstddef>
#include <string>
#include <string_view>

namespace veltrano {

/// Stands for what is malformed.
constexpr char32_t replacementCharacter = 0xFFFD;

constexpr bool isHighSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool isLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}
/// The character of a high and a low surrogate.
constexpr char32_t fromSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

/// `c` is at most U+10FFFF. A surrogate gets the three bytes that its number would have.
void appendUtf8(std::string& target, char32_t c);
void appendUtf16(std::u16string& target, char32_t c);

/// What becomes of half a character, which UTF-16 may hold and UTF-8 may not.
enum class LoneSurrogate {
  replaced,  ///< U+FFFD, as for all that is malformed
  kept,      ///< three bytes in UTF-8: for text that must come back from there as it was
};

/// Decodes the character at `i`, which must be within `text`, and moves `i` after it. A malformed sequence is
/// U+FFFD, once for each maximal broken part.
char32_t nextCharacter(std::string_view text, std::size_t& i, LoneSurrogate lone = LoneSurrogate::replaced);
char32_t nextCharacter(std::u16string_view text, std::size_t& i,
                       LoneSurrogate lone = LoneSurrogate::replaced);

std::string utf16ToUtf8(std::u16string_view text, LoneSurrogate lone = LoneSurrogate::replaced);
std::u16string utf8ToUtf16(std::string_view text, LoneSurrogate lone = LoneSurrogate::replaced);

}  // namespace veltrano

#endif
