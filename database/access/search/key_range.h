#ifndef VELTRANO_DATABASE_ACCESS_SEARCH_KEY_RANGE_H
#define VELTRANO_DATABASE_ACCESS_SEARCH_KEY_RANGE_H

// Which keys of an index the records of a search can have. Records are compared by the text of their values; an index
// orders the values. Values with equal texts need not have equal keys, nor the other way round, so the ranges hold
// all records that the search means, and others.

#include <cstdint>
#include <optional>
#include <vector>

#include "database/access/index/key.h"
#include "database/access/schema/table_definition.h"
#include "database/access/storage/format.h"
#include "database/values/text_matcher.h"

namespace veltrano::access {

/// Keys from one start to another, both included.
struct KeyRange {
  std::vector<std::uint8_t> first;
  std::vector<std::uint8_t> last;
};

/// The ranges that hold every value of `column` whose text matches; they do not overlap. `maker` is that of an index of
/// which the column is the first. Empty if no such ranges are known: only reading the records finds them then.
std::vector<KeyRange> keysOfText(Version version, const Column& column, const IndexKeyMaker& maker,
                                 const TextMatcher& matcher);

}  // namespace veltrano::access

#endif
