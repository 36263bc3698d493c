#ifndef VELTRANO_BASE_TEXT_WTF8_H
#define VELTRANO_BASE_TEXT_WTF8_H

// UTF-8 that can hold every UTF-16 text, for texts that must come back as they were given: an unpaired
// surrogate, which UTF-8 has no form for, takes the three bytes that its number would have (WTF-8).
// Everything else is UTF-8, and UTF-8 texts mean the same in both. Used between the automation boundary and
// database files; files that promise UTF-8 must never get such a text.

#include <algorithm>
#include <string>
#include <string_view>

#include "base/text/utf.h"

namespace veltrano {

/// Text without unpaired surrogates becomes plain UTF-8.
inline std::string utf16ToWtf8(std::u16string_view text) {
  return utf16ToUtf8(text, LoneSurrogate::kept);
}
/// The inverse. Other malformed sequences become U+FFFD, one for each maximal broken part.
inline std::u16string wtf8ToUtf16(std::string_view text) {
  return utf8ToUtf16(text, LoneSurrogate::kept);
}

/// True if a text is UTF-8 but for unpaired surrogates.
inline bool isWtf8(std::string_view text) {
  const bool ascii = std::ranges::all_of(text, [](char c) { return static_cast<signed char>(c) >= 0; });
  return ascii || utf16ToWtf8(wtf8ToUtf16(text)) == text;
}

}  // namespace veltrano

#endif
