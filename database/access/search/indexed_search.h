#ifndef VELTRANO_DATABASE_ACCESS_SEARCH_INDEXED_SEARCH_H
#define VELTRANO_DATABASE_ACCESS_SEARCH_INDEXED_SEARCH_H

// Finds the first record with a text in a column through an index that starts with the column: the same record that
// reading one after another finds, in microseconds.

#include <cstdint>
#include <optional>
#include <vector>

#include "database/access/schema/table.h"
#include "database/values/text_matcher.h"

namespace veltrano::access {

struct SearchAnswer {
  std::optional<RowPointer> row;  ///< empty if no record has the text
  std::vector<std::uint8_t> key;  ///< the row's in the index that gives the order
};

/// The first record whose value in `column` has a text that matches. First is meant by `order`, an index of the table,
/// or by storage if that is null. Empty if only reading the records can tell: no index helps, it is damaged, or so many
/// records come into question that one of them is soon met.
std::optional<SearchAnswer> searchIndexes(const Table& table, const Index* order, const Column& column,
                                          const TextMatcher& matcher);

}  // namespace veltrano::access

#endif
