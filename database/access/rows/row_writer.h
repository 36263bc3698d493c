#ifndef VELTRANO_DATABASE_ACCESS_ROWS_ROW_WRITER_H
#define VELTRANO_DATABASE_ACCESS_ROWS_ROW_WRITER_H

// Adds, changes and deletes rows of one table with everything that belongs to them: long values, indexes, maps and
// counters. It works within the transaction of its caller, who rolls it back if a step fails.

#include <optional>
#include <vector>

#include "database/access/index/table_indexes.h"
#include "database/access/pages/row_space.h"
#include "database/access/rules/validation.h"
#include "database/access/schema/table.h"

namespace veltrano::access {

/// A field of a record that is to be stored.
struct Draft {
  Cell cell;  ///< of a long value that was assigned: the value itself
  bool assigned = false;
};

class RowWriter {
 public:
  /// For a table that is known to be writable, with its indexes and rules. `table` must outlive the writer.
  RowWriter(const Table& table, TableIndexes indexes, Validation validation = Validation())
      : table_(&table), indexes_(std::move(indexes)), validation_(std::move(validation)) {}
  /// Fails if rows of the table cannot be written. `table` must outlive the writer.
  static Result<RowWriter> create(const Table& table);

  /// The last autonumber that the table's definition knows. Empty if it cannot be read.
  [[nodiscard]] std::optional<std::int32_t> lastAutoNumber() const;
  /// Makes `number` the last autonumber if it is greater.
  Status raiseAutoNumber(std::int32_t number);

  /// Returns where the row went. `drafts` are in the order of the definition's columns; an autonumber that is not
  /// assigned becomes the one after the last.
  Result<RowPointer> insert(std::vector<Draft>& drafts);
  /// Changes the assigned fields of a row, and leaves its others as they are now.
  Status update(RowPointer row, const std::vector<Draft>& drafts);
  Status remove(RowPointer row);

  /// The row of the last change that succeeded, as it was and as it is; empty if there was, or is, none.
  [[nodiscard]] RowView before() const { return viewOf(old_); }
  [[nodiscard]] RowView after() const { return viewOf(row_); }

 private:
  // The steps of a change answer false after they have set failure_.
  bool fail(Failure failure, const char* reason);
  bool failFromPager();
  bool changeIndexes(const TableIndexes::RowKeys* before, const TableIndexes::RowKeys* after, RowPointer row);
  bool makeInsertion(std::vector<Draft>& drafts, std::optional<RowPointer>& place);
  bool makeUpdate(RowPointer home, const std::vector<Draft>& drafts);
  bool makeRemoval(RowPointer home);

  [[nodiscard]] Pager& pager() const { return table_->pager(); }
  [[nodiscard]] const TableDefinition& definition() const { return table_->definition(); }

  bool checkRequired(const std::vector<Draft>& drafts, bool all);
  bool makeRow(const std::vector<Draft>& drafts);
  bool checkRules(const std::vector<Draft>& drafts, bool all);
  bool storeLongestInline();
  [[nodiscard]] RowView viewOf(Bytes row) const {
    return {row, pager().version(), definition().variableColumns != 0};
  }
  bool makeKeysOf(Bytes row, TableIndexes::RowKeys& keys);
  std::optional<RowPointer> placeNewRow(Bytes row, std::uint16_t flags);
  [[nodiscard]] RowSpace space() const;
  bool replaceRow(RowPointer home, RowPointer place, Bytes row);
  bool removeRow(RowPointer place);
  bool releaseLongValues(const RowView& row, const std::vector<Draft>* drafts);
  bool enterAutoNumber(std::vector<Draft>& drafts);
  bool keepAutoNumber(const std::vector<Draft>& drafts);
  bool raiseTo(std::int32_t number);
  bool countRows(int change);

  const Table* table_;
  TableIndexes indexes_;
  Validation validation_;
  Status failure_;
  // Kept between calls for their storage.
  std::vector<Cell> cells_;
  std::vector<std::uint8_t> old_;
  std::vector<std::uint8_t> row_;
  TableIndexes::RowKeys before_;
  TableIndexes::RowKeys after_;
};

}  // namespace veltrano::access

#endif
