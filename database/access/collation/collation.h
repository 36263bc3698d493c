#ifndef VELTRANO_DATABASE_ACCESS_COLLATION_COLLATION_H
#define VELTRANO_DATABASE_ACCESS_COLLATION_COLLATION_H

// The text sort orders of Access, as the bytes that stand for a text in index entries. Comparing two such keys byte by
// byte orders the texts regardless of case. Only the first 255 characters count, without blanks at the end.

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

enum class TextOrder {
  general97,      ///< Jet 3
  generalLegacy,  ///< Access 2000 to 2007
  general,        ///< Access 2010 and later
};

/// The order of a text column by the language and version of its record; language 0 stands for the file's default
/// order. Empty for an order whose tables are not known: an index in it can be read, but not written.
std::optional<TextOrder> textOrder(Version version, std::uint16_t language, std::uint8_t orderVersion,
                                   std::uint32_t defaultOrder);

/// Appends what follows the entry's flag byte. `text` is UTF-16LE, for General 97 bytes of code page 1252.
void appendTextKey(std::vector<std::uint8_t>& key, Bytes text, TextOrder order, bool ascending);

/// The starts of the keys of all texts whose lower case (base/text/lower_case.h) is `lowered`: one of them for each such
/// text. Most texts have one start, since their cases differ at most in what comes later in the key; a few characters,
/// like the sign of the kelvin, sort far from the letter that is their lower case. Empty if there are more than 16. Not
/// for General 97.
std::vector<std::vector<std::uint8_t>> keyStartsInAnyCase(std::u16string_view lowered, TextOrder order,
                                                          bool ascending);

}  // namespace veltrano::access

#endif
