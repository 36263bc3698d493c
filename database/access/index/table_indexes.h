#ifndef VELTRANO_DATABASE_ACCESS_INDEX_TABLE_INDEXES_H
#define VELTRANO_DATABASE_ACCESS_INDEX_TABLE_INDEXES_H

// All indexes of one table, and how they follow changes of its rows.

#include <optional>
#include <vector>

#include "database/access/index/key.h"
#include "database/access/index/row_values.h"
#include "database/access/schema/table.h"

namespace veltrano::access {

class TableIndexes {
 public:
  /// The entries of one row, one for each index.
  struct RowKeys {
    struct Entry {
      KeyOutcome outcome = KeyOutcome::leftOut;
      bool allNull = false;
      std::vector<std::uint8_t> key;
      [[nodiscard]] bool present() const { return outcome == KeyOutcome::entry; }
    };
    std::vector<Entry> entries;
  };

  /// Fails if this engine cannot keep one of the indexes right.
  static Result<TableIndexes> create(const Table& table);

  /// Makes the entries of a row. False if the row is damaged. A null that an index forbids shows in the entry's
  /// outcome, and makes `change` refuse the row.
  bool makeKeys(const Table& table, const RowView& row, RowKeys& keys);
  /// Changes the indexes from the entries `before` of a row to `after`, in a transaction; a null pointer stands for no
  /// row. Fails if a unique index has the key already, or an index forbids the row: the transaction must then be
  /// rolled back.
  Status change(const Table& table, const RowKeys* before, const RowKeys* after, RowPointer row) const;

 private:
  std::vector<IndexKeyMaker> makers_;  // in the order of the definition's indexes
  RowValues values_;                   // kept between calls for its storage
};

}  // namespace veltrano::access

#endif
