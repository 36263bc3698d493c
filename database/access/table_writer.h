#ifndef VELTRANO_DATABASE_ACCESS_TABLE_WRITER_H
#define VELTRANO_DATABASE_ACCESS_TABLE_WRITER_H

// Adds, changes and deletes rows, with everything that hangs on them: long values, indexes, maps and
// counters. Each call is one transaction: it happens wholly, or nothing changes and the reason says why.

#include <optional>
#include <string>
#include <vector>

#include "database/access/index/table_indexes.h"
#include "database/access/pages/row_space.h"
#include "database/access/table.h"

namespace veltrano::access {

/// A field of a record on its way into the table.
struct Draft {
  Cell cell;  ///< of a long value that was assigned: the value itself
  bool assigned = false;
};

class TableWriter {
 public:
  /// For a table that is known to be writable, with its indexes. `table` must outlive the writer.
  TableWriter(const Table& table, TableIndexes indexes) : table_(&table), indexes_(std::move(indexes)) {}
  /// Nothing when the table may only be read: `reason` then says why. `table` must outlive the writer.
  static std::optional<TableWriter> create(const Table& table, std::string& reason);

  /// The last autonumber that the table's definition knows. Empty if it cannot be read.
  [[nodiscard]] std::optional<std::int32_t> lastAutoNumber() const;
  /// Makes `number` the last autonumber, in a transaction of its own, if it is greater.
  bool raiseAutoNumber(std::int32_t number);

  /// Returns where the row went. `drafts` are in the order of the definition's columns; an autonumber that is not
  /// assigned becomes the one after the last.
  std::optional<RowPointer> insert(std::vector<Draft>& drafts);
  /// The same within a transaction of the caller, who rolls it back if this fails.
  std::optional<RowPointer> insertInTransaction(std::vector<Draft>& drafts);
  /// Changes the assigned fields of a row, and leaves its others as they are now.
  bool update(RowPointer row, const std::vector<Draft>& drafts);
  bool remove(RowPointer row);

  [[nodiscard]] const std::string& lastError() const { return reason_; }

 private:
  bool fail(const char* reason);
  bool failFromPager();

  [[nodiscard]] Pager& pager() const { return table_->pager(); }
  [[nodiscard]] const TableDefinition& definition() const { return table_->definition(); }

  bool checkRequired(const std::vector<Draft>& drafts, bool all);
  bool makeRow(const std::vector<Draft>& drafts);
  bool storeLongestInline();
  bool makeKeysOf(Bytes row, TableIndexes::RowKeys& keys);
  std::optional<RowPointer> placeNewRow(Bytes row, std::uint16_t flags);
  [[nodiscard]] RowSpace space() const;
  bool replaceRow(RowPointer home, RowPointer place, Bytes row);
  bool removeRow(RowPointer place);
  bool releaseLongValues(const RowView& row, const std::vector<Draft>* drafts);
  bool enterAutoNumber(std::vector<Draft>& drafts);
  bool countRows(int change);

  const Table* table_;
  TableIndexes indexes_;
  std::string reason_;
  // Kept between calls for their storage.
  std::vector<Cell> cells_;
  std::vector<std::uint8_t> row_;
  TableIndexes::RowKeys before_;
  TableIndexes::RowKeys after_;
};

}  // namespace veltrano::access

#endif
