#ifndef VELTRANO_DATABASE_ACCESS_INDEX_KEY_H
#define VELTRANO_DATABASE_ACCESS_INDEX_KEY_H

// The key of an index entry, made of the values of a row's index columns. Comparing keys byte by byte gives the order
// of the index.

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "database/access/collation/collation.h"
#include "database/access/schema/table_definition.h"

namespace veltrano::access {

/// What an index does with a row.
enum class KeyOutcome {
  entry,    ///< it has an entry with the key
  leftOut,  ///< all its index columns are null, and the index leaves out such rows
  refused,  ///< it has a null where the index demands values, and must not be written
  damaged,  ///< a stored value is shorter than its type
};

/// Makes the keys of one index.
class IndexKeyMaker {
 public:
  /// Fails if the index is on values whose order is not known (another language, a type without keys). Its table must
  /// not be written then, since the index could not be kept right.
  static Result<IndexKeyMaker> create(Version version, std::uint32_t defaultTextOrder,
                                      const TableDefinition& table, const Index& index);

  /// Puts the key of a row into `key`, whose storage is reused. `values` are those of the index columns, in the order
  /// of the index. `allNull` is true if all of them are null; such rows are not duplicates in a unique index.
  KeyOutcome make(std::span<const StoredValue> values, std::vector<std::uint8_t>& key, bool& allNull) const;
  /// Puts that part of a key into `key` that a value of the first column makes. False if the value is damaged.
  bool makeFirstPart(const StoredValue& value, std::vector<std::uint8_t>& key) const;
  /// The starts of the keys of texts in the first column whose lower case is `lowered`, as keyStartsInAnyCase has them.
  [[nodiscard]] std::vector<std::vector<std::uint8_t>> makeStartsInAnyCase(std::u16string_view lowered) const;

 private:
  struct Part {
    ColumnType type;
    bool ascending;
    TextOrder order;
  };
  IndexKeyMaker() = default;
  bool append(const Part& part, const StoredValue& value, std::vector<std::uint8_t>& key) const;
  bool appendValue(const Part& part, Bytes value, std::vector<std::uint8_t>& key) const;

  std::vector<Part> parts_;
  bool jetNumerics_ = true;
  bool ignoreNulls_ = false;
  bool required_ = false;
};

}  // namespace veltrano::access

#endif
