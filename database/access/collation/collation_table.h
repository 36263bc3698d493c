#ifndef VELTRANO_DATABASE_ACCESS_COLLATION_COLLATION_TABLE_H
#define VELTRANO_DATABASE_ACCESS_COLLATION_COLLATION_TABLE_H

// The form in which the weights of a text order are kept: runs of characters whose codes follow one rule.
// scripts/make_collations.py writes the tables, collation.cpp reads them.

#include <cstdint>
#include <span>

namespace veltrano::access {

/// What a character adds to the key of a text.
enum class CharacterClass : std::uint8_t {
  ignored,      ///< nothing
  simple,       ///< its inline code
  significant,  ///< its inline code, counted (General 97 alone)
  accented,     ///< its inline code and an extra code
  unprintable,  ///< a code with its position, at the end
  modifier,     ///< a value added to the extra code before it
  extended,     ///< its inline code, an extra code and two more bits (kana)
};

/// How the inline code of a run's first character becomes that of character i of the run: it grows by i, by
/// 0, by i / 2 or by i / 4. The last byte of a code counts from 02 to FF. In the latter two cases character i
/// has the kind i % 2 or i % 4 entries further on.
enum class Advance : std::uint8_t { each, never, second, fourth };

struct CollationKind {
  CharacterClass characterClass;
  std::uint8_t inlineLength;
  Advance advance;
  std::uint8_t extraLength;
  std::uint8_t extra[3];
  bool small;  ///< of an extended character: one of the small kana
};

struct CollationTable {
  std::span<const CollationKind> kinds;
  /// First character (bits 48 to 63), kind of the first character (32 to 47) and its inline code, or, when
  /// that is longer than four bytes, where it starts among the long codes. In the order of the characters;
  /// none for surrogates.
  std::span<const std::uint64_t> runs;
  std::span<const std::uint8_t> longCodes;
};

extern const CollationTable generalTable;
extern const CollationTable generalLegacyTable;
extern const CollationTable general97Table;

}  // namespace veltrano::access

#endif
