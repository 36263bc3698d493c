#ifndef VELTRANO_SETTINGS_XML_PLAIN_TEXT_LANES_H
#define VELTRANO_SETTINGS_XML_PLAIN_TEXT_LANES_H

// The scan itself, for source files that are compiled for one width each.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/byte_lanes.h"
#include "settings/xml_character_lanes.h"
#include "settings/xml_plain_text.h"
#include "settings/xml_references.h"
#include "settings/xml_well_formed.h"

namespace veltrano {

bool scanPlainTextBy16(const char* text, const char* end);
bool scanPlainTextBy32(const char* text, const char* end);

template <std::size_t width>
class PlainTextLanes {
 public:
  PlainTextLanes(const char* text, const char* end) : text_(text), end_(end), at_(text), tagsKnown_(text) {}

  bool run() {
    // Bytes around a block are looked at too, which the text's first and last blocks lack.
    if (!takeCopy()) {
      return false;
    }
    for (; end_ - at_ >= blockSize + lookAhead; at_ += blockSize) {
      if (!takeBlock(at_)) {
        return false;
      }
    }
    while (at_ < end_) {
      if (!takeCopy()) {
        return false;
      }
    }
    return true;
  }

 private:
  static constexpr std::ptrdiff_t blockSize = 512;
  static constexpr std::ptrdiff_t wordSize = 64;
  static constexpr std::ptrdiff_t step = width;
  static constexpr std::ptrdiff_t lookBack = 3;
  static constexpr std::ptrdiff_t lookAhead = 4;

  /// Takes what stands at `at_` between blanks, as far as it goes, and moves behind it.
  bool takeCopy() {
    char copy[lookBack + blockSize + lookAhead];
    std::memset(copy, ' ', sizeof copy);
    const std::ptrdiff_t before = at_ - text_ < lookBack ? at_ - text_ : lookBack;
    const std::ptrdiff_t rest = end_ - at_;
    const std::ptrdiff_t from = rest < blockSize + lookAhead ? rest : blockSize + lookAhead;
    std::memcpy(copy + lookBack - before, at_ - before, static_cast<std::size_t>(before + from));
    const bool taken = takeBlock(copy + lookBack);
    at_ = blockEnd();
    return taken;
  }

  [[nodiscard]] const char* blockEnd() const { return end_ - at_ < blockSize ? end_ : at_ + blockSize; }

  // `block` is what stands at `at_`.

  bool takeBlock(const char* block) {
    if (!unusual_) {
      const Look look = quickLook(block);
      if (!look.unusual) {
        return nest(look.tags, look.endTags);
      }
    }
    return takeUnusual(block);
  }

  struct Look {
    bool unusual;
    std::size_t tags;
    std::size_t endTags;
  };

  /// All that most blocks of many files need. An unusual block needs more.
  Look quickLook(const char* block) const {
    Lanes<width> unusual;
    Lanes<width> tags;
    Lanes<width> endTags;
    for (std::ptrdiff_t i = 0; i < blockSize; i += step) {
      const Lanes<width> c(block + i);
      const Lanes<width> blank = (c == ' ') | (c == '\n') | (c == '\r') | (c == '\t');
      const Lanes<width> tag = c == '<';
      // Nearly all characters of interest stand before "(" or beyond ASCII.
      unusual |= (signedLess(c, '(') & ~blank) | (c == ']') | (c == '?');
      tags.countHits(tag);
      endTags.countHits(tag & (Lanes<width>(block + i + 1) == '/'));
    }
    return {unusual.any(), tags.sum(), endTags.sum()};
  }

  bool nest(std::size_t tags, std::size_t ends) {
    // No element in this block is nested deeper than if all its start tags came first. An end tag is a tag
    // too.
    const std::size_t deepest = nesting_ + tags - ends;
    nesting_ = deepest - ends;
    return deepest <= deepestNesting && deepest >= ends;
  }

  /// Judges any block. Its loop is the price of accents and references, hence that it looks at many things at
  /// once and leaves to others what is rare.
  bool takeUnusual(const char* block) {
    findWhetherInTag();
    Lanes<width> tags;
    Lanes<width> endTags;
    Lanes<width> oddTags;  // do not begin with a letter
    Lanes<width> brackets;
    Lanes<width> smallest(block);
    Lanes<width> largest(block - lookBack);
    Lanes<width> distanceFromC0 = smallest ^ '\xC0';
    std::uint64_t inTags = 0;
    std::uint64_t anyMarks = 0;
    std::uint64_t anyBeyondAscii = 0;
    std::uint64_t wrongPairs = 0;
    std::uint64_t wasLead = static_cast<unsigned char>(block[-1]) >= 0xC0 ? 1 : 0;
    for (std::ptrdiff_t word = 0; word < blockSize; word += wordSize) {
      std::uint64_t begins = 0;
      std::uint64_t ends = 0;
      std::uint64_t marks = 0;  // both quotes, "&" and "#": there are none in the tags of plain documents
      std::uint64_t beyondAscii = 0;
      std::uint64_t continuations = 0;
      for (std::ptrdiff_t i = 0; i < wordSize; i += step) {
        const Lanes<width> c(block + word + i);
        const Lanes<width> next(block + word + i + 1);
        const Lanes<width> tag = c == '<';
        tags.countHits(tag);
        endTags.countHits(tag & (next == '/'));
        oddTags.countHits(tag & signedLess(next, 'A'));
        brackets |= c == ']';
        smallest = smaller(smallest, c);
        largest = larger(largest, c);
        distanceFromC0 = smaller(distanceFromC0, c ^ '\xC0');
        begins |= tag.bits() << i;
        ends |= (c == '>').bits() << i;
        marks |= ((c | '\x05') == '\'').bits() << i;
        beyondAscii |= c.bits() << i;
        continuations |= signedLess(c, '\xC0').bits() << i;
      }
      const std::uint64_t leads = beyondAscii & ~continuations;
      // Right for characters of two bytes, and told to be wrong where there are longer ones.
      wrongPairs |= ((leads << 1U) | wasLead) ^ continuations;
      wasLead = leads >> (wordSize - 1);
      // The difference has all bits from a begin to before the next end.
      begins |= inTag_;
      anyMarks |= marks;
      anyBeyondAscii |= beyondAscii;
      inTags |= (ends - begins) & ~ends & (marks | beyondAscii);
      inTag_ = begins > ends ? 1 : 0;
    }
    // Also makes the next block notice a character that this one's end cuts off.
    unusual_ = (anyMarks | anyBeyondAscii) != 0;
    const bool declares = block[-1] == '<' && (block[0] == '!' || block[0] == '?');
    const std::size_t endTagCount = endTags.sum();
    if (inTags != 0 || declares || oddTags.sum() != endTagCount || !nest(tags.sum(), endTagCount)) {
      return false;
    }
    // Longer characters, controls that may be forbidden, and leads that waste bytes.
    const bool needsCloserLook = (~(largest < '\xE0') | (smallest < ' ') | (distanceFromC0 < '\2')).any();
    if (needsCloserLook ? !isXmlBlock<width, blockSize>(block) : wrongPairs != 0) {
      return false;
    }
    return (!brackets.any() || !haveBracketPair(block)) && (anyMarks == 0 || haveReferences(block));
  }

  static bool haveBracketPair(const char* block) {
    Lanes<width> pairs;
    for (std::ptrdiff_t i = 0; i < blockSize; i += step) {
      pairs |= (Lanes<width>(block + i) == ']') & (Lanes<width>(block + i + 1) == ']');
    }
    return pairs.any();
  }

  /// Sets `inTag_` for `at_`, and `tagsKnown_` for what takeUnusual() makes of it.
  void findWhetherInTag() {
    for (const char* p = at_; p != tagsKnown_;) {
      --p;
      if (*p == '<' || *p == '>') {
        inTag_ = *p == '<' ? 1 : 0;
        break;
      }
    }
    tagsKnown_ = blockEnd();
  }

  /// True when each "&" begins a reference. Most of them are "&amp;".
  bool haveReferences(const char* block) const {
    Lanes<width> others;
    for (std::ptrdiff_t i = 0; i < blockSize; i += step) {
      others |= (Lanes<width>(block + i) == '&') & differencesFromAmp(block + i);
    }
    return !others.any() || haveOtherReferences(block);
  }

  bool haveOtherReferences(const char* block) const {
    Lanes<width> others;
    for (std::ptrdiff_t i = 0; i < blockSize; i += step) {
      const char* const bytes = block + i;
      const Lanes<width> first(bytes + 1);
      const Lanes<width> ltOrGt = ((first == 'l') | (first == 'g')) & (Lanes<width>(bytes + 2) == 't') &
                                  (Lanes<width>(bytes + 3) == ';');
      others |= (Lanes<width>(bytes) == '&') & ~(ltOrGt | (differencesFromAmp(bytes) == '\0'));
    }
    return !others.any() || haveOnlyReferences(at_, blockEnd(), end_);
  }

  /// Of each byte: zero when "amp;" stands behind it.
  static Lanes<width> differencesFromAmp(const char* bytes) {
    return (Lanes<width>(bytes + 1) ^ 'a') | (Lanes<width>(bytes + 2) ^ 'm') |
           (Lanes<width>(bytes + 3) ^ 'p') | (Lanes<width>(bytes + 4) ^ ';');
  }

  const char* const text_;
  const char* const end_;
  const char* at_;
  std::size_t nesting_ = 0;
  /// Whether the last block was, as the next one then is likely to be.
  bool unusual_ = false;
  /// 1 when a tag goes on at `tagsKnown_`.
  std::uint64_t inTag_ = 0;
  const char* tagsKnown_;
};

}  // namespace veltrano

#endif
