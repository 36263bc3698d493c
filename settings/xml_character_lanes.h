#ifndef VELTRANO_SETTINGS_XML_CHARACTER_LANES_H
#define VELTRANO_SETTINGS_XML_CHARACTER_LANES_H

// Judging the characters of XML by many bytes at a time.

#include <cstddef>

#include "base/byte_lanes.h"

namespace veltrano {

template <std::size_t width>
Lanes<width> forbiddenControls(Lanes<width> c) {
  return (c < ' ') & ~((c == '\t') | (c == '\n') | (c == '\r'));
}

// Of each byte: whether it is wrong behind the three bytes before it, which are looked at too.

/// Whether characters begin and go on where they must.
template <std::size_t width>
Lanes<width> wrongLengths(const char* bytes) {
  const Lanes<width> c(bytes);
  const Lanes<width> continues = c.beyondAscii() & (c < '\xC0');
  const Lanes<width> mayNotContinue = (Lanes<width>(bytes - 1) < '\xC0') &
                                      (Lanes<width>(bytes - 2) < '\xE0') & (Lanes<width>(bytes - 3) < '\xF0');
  const Lanes<width> wastesBytes = (c == '\xC0') | (c == '\xC1');
  return ~(continues ^ mayNotContinue) | wastesBytes;
}

/// What else can be wrong with characters of three or four bytes.
template <std::size_t width>
Lanes<width> wrongLongCharacters(const char* bytes) {
  const Lanes<width> c(bytes);
  const Lanes<width> last(bytes - 1);
  const Lanes<width> wastesBytes = ((last == '\xE0') & (c < '\xA0')) | ((last == '\xF0') & (c < '\x90'));
  const Lanes<width> surrogate = (last == '\xED') & ~(c < '\xA0');
  const Lanes<width> tooLarge = ((last == '\xF4') & ~(c < '\x90')) | ~(last < '\xF5');
  const Lanes<width> noCharacter = (Lanes<width>(bytes - 2) == '\xEF') & (last == '\xBF') & ~(c < '\xBE');
  return wastesBytes | surrogate | tooLarge | noCharacter;
}

/// Judges a block behind at least three bytes of the text. Of a character that goes on behind the block, only
/// what the block holds of it.
template <std::size_t width, std::size_t blockSize>
bool isXmlBlock(const char* block) {
  const Lanes<width> before(block - 3);
  Lanes<width> beyondAscii = before.beyondAscii();
  Lanes<width> longLeads = ~(before < '\xE0');
  Lanes<width> wrong;
  for (std::size_t i = 0; i < blockSize; i += width) {
    const Lanes<width> c(block + i);
    beyondAscii |= c.beyondAscii();
    longLeads |= ~(c < '\xE0');
    wrong |= forbiddenControls(c);
  }
  if (!beyondAscii.any()) {
    return !wrong.any();
  }
  for (std::size_t i = 0; i < blockSize; i += width) {
    wrong |= wrongLengths<width>(block + i);
  }
  if (longLeads.any()) {
    for (std::size_t i = 0; i < blockSize; i += width) {
      wrong |= wrongLongCharacters<width>(block + i);
    }
  }
  return !wrong.any();
}

}  // namespace veltrano

#endif
