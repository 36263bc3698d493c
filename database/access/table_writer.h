#ifndef VELTRANO_DATABASE_ACCESS_TABLE_WRITER_H
#define VELTRANO_DATABASE_ACCESS_TABLE_WRITER_H

// Adds, changes and deletes records with everything that depends on them, in the table and through its relations. Each
// call is one transaction: if it fails, nothing has changed.

#include <optional>
#include <vector>

#include "database/access/relations/enforcement.h"
#include "database/access/rows/row_writer.h"
#include "database/access/schema/table.h"

namespace veltrano::access {

class TableWriter {
 public:
  /// Fails if the table may only be read. `table` must outlive the writer.
  static Result<TableWriter> create(const Table& table);

  /// The last autonumber that the table's definition knows. Empty if it cannot be read.
  [[nodiscard]] std::optional<std::int32_t> lastAutoNumber() const { return rows_.lastAutoNumber(); }
  /// Makes `number` the last autonumber if it is greater.
  Status raiseAutoNumber(std::int32_t number);

  /// Returns where the row went. `drafts` are in the order of the definition's columns; an autonumber that is not
  /// assigned becomes the one after the last.
  Result<RowPointer> insert(std::vector<Draft>& drafts);
  /// The same in a transaction that the caller has begun, and rolls back if this fails.
  Result<RowPointer> insertInTransaction(std::vector<Draft>& drafts);
  /// Changes the assigned fields of a row, and leaves its others as they are now.
  Status update(RowPointer row, const std::vector<Draft>& drafts);
  /// Returns the rows that are gone: this one, and those of all tables that were deleted with it.
  Result<std::vector<RowOfTable>> remove(RowPointer row);

 private:
  TableWriter(const Table& table, RowWriter rows) : table_(&table), rows_(std::move(rows)) {}
  template <typename Steps>
  Status inTransaction(Steps steps);
  Status followRelations();

  const Table* table_;
  RowWriter rows_;
  std::optional<Enforcement> enforcement_;  // if the table has relations
};

}  // namespace veltrano::access

#endif
