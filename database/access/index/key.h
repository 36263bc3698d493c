#ifndef VELTRANO_DATABASE_ACCESS_INDEX_KEY_H
#define VELTRANO_DATABASE_ACCESS_INDEX_KEY_H

// From the values of a row's index columns to the bytes of its index entry, whose byte-wise order is the
// index's.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "database/access/collation/collation.h"
#include "database/access/schema/table_definition.h"

namespace veltrano::access {

/// What an index does with a row.
enum class KeyOutcome {
  entry,    ///< it has an entry under the key
  leftOut,  ///< all its index columns are null and the index leaves such rows out
  refused,  ///< a null where the index demands values: the row must not be written
  damaged,  ///< a stored value is shorter than its type
};

/// Makes the keys of one index.
class IndexKeyMaker {
 public:
  /// Nothing when the index holds values whose order is not known (another language, a type that has no key):
  /// it cannot be kept right, so its table must not be written. `reason` then says which column.
  static std::optional<IndexKeyMaker> create(Version version, std::uint32_t defaultTextOrder,
                                             const TableDefinition& table, const Index& index,
                                             std::string& reason);

  /// Puts the key of a row into `key`, whose storage is reused. `values` are those of the index columns, in
  /// the index's order. `allNull` tells whether all of them are null: in a unique index such rows are no
  /// duplicates.
  KeyOutcome make(std::span<const StoredValue> values, std::vector<std::uint8_t>& key, bool& allNull) const;

 private:
  struct Part {
    ColumnType type;
    bool ascending;
    TextOrder order;
  };
  IndexKeyMaker() = default;
  bool append(const Part& part, Bytes value, std::vector<std::uint8_t>& key) const;

  std::vector<Part> parts_;
  bool jetNumerics_ = true;
  bool ignoreNulls_ = false;
  bool required_ = false;
};

}  // namespace veltrano::access

#endif
