#ifndef VELTRANO_DATABASE_ACCESS_TRANSFER_TABLE_RECORDS_H
#define VELTRANO_DATABASE_ACCESS_TRANSFER_TABLE_RECORDS_H

// Whole tables out of a file and into one, for tools: nulls are distinguished from empty texts, and every
// value is exchanged as text that brings the same value back.
//
// The text is what VeltranoMDB reads (database/values/field_to_text.h), but for two types:
//   single, double   as many digits as tell the number from its neighbours, not 7 or 15
//   binary, OLE      two hexadecimal digits a byte, without loss in any code page
// Dates are exact to the second.

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/access/index/cursor.h"
#include "database/access/schema/table.h"
#include "database/access/table_writer.h"

namespace veltrano::access {

enum class Walk {
  keyOrder,      ///< in the order of the primary key, if there is one
  storageOrder,  ///< needs no index: what is left of a damaged file
};

class TableReader {
 public:
  enum class Field { null, value, damaged };

  /// The pager must outlive the reader.
  static Result<std::unique_ptr<TableReader>> open(Pager& pager, std::string_view table, Walk walk);
  TableReader(const TableReader&) = delete;
  TableReader& operator=(const TableReader&) = delete;
  ~TableReader() = default;

  [[nodiscard]] const std::vector<Column>& columns() const { return table_.definition().columns; }
  /// As the table's definition has it, which other programs let drift.
  [[nodiscard]] std::uint32_t expectedRecords() const;

  /// To the first record, then to each next one; false after the last.
  bool next();
  /// Replaces `text` by the value of the current record in column `index`; empty unless that is Field::value.
  Field read(std::size_t index, std::string& text);

  /// Records that could not be read and were left out so far.
  [[nodiscard]] std::uint64_t damagedRecords() const { return damaged_; }
  /// True if the walk ended early because the primary key's index is damaged.
  [[nodiscard]] bool indexDamaged() const { return cursor_ && cursor_->damaged(); }

 private:
  explicit TableReader(Table table) : table_(std::move(table)) {}
  std::optional<RowPointer> following();

  Table table_;
  std::optional<IndexTree> order_;  ///< of the primary key
  std::optional<IndexCursor> cursor_;
  std::optional<RowPointer> place_;
  bool begun_ = false;
  std::uint64_t damaged_ = 0;
  std::optional<Row> row_;
  RowView view_;
};

/// Adds records to one table in one transaction. Without commit none of them is added.
class TableFiller {
 public:
  /// `fields`: the columns (named in any case) that each record gives values for; the others take their
  /// defaults. Fails if there is no such table or column, a column is named twice, or the table may only be
  /// read or is the system's own. The pager must outlive the filler.
  static Result<std::unique_ptr<TableFiller>> begin(Pager& pager, std::string_view table,
                                                    const std::vector<std::string>& fields);
  TableFiller(const TableFiller&) = delete;
  TableFiller& operator=(const TableFiller&) = delete;
  ~TableFiller() = default;

  [[nodiscard]] const Column& column(std::size_t field) const {
    return table_.definition().columns[fields_[field]];
  }
  /// One value for each of the fields, in their order; null if empty. Numbers given for an autonumber column
  /// are kept. After a failure, whose reason names the field at fault, the transaction must not be committed.
  Status add(std::span<const std::optional<std::string_view>> values);
  Status commit();

 private:
  TableFiller(Table table, Pager& pager) : table_(std::move(table)), transaction_(pager) {}
  Status choose(const std::vector<std::string>& fields);
  Status assign(std::size_t index, const std::optional<std::string_view>& text);

  Table table_;
  std::optional<TableWriter> writer_;
  Transaction transaction_;
  std::vector<std::size_t> fields_;    ///< indexes of columns
  std::vector<std::size_t> defaults_;  ///< of the other columns
  std::vector<Draft> drafts_;
};

}  // namespace veltrano::access

#endif
