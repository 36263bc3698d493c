#ifndef VELTRANO_DATABASE_ACCESS_ROWS_ROW_HANDLE_H
#define VELTRANO_DATABASE_ACCESS_ROWS_ROW_HANDLE_H

// The record that a recordset stands on.
//
// A row's place is given to another row after it was deleted, so a place alone does not say which record is meant.
// Every handle of a file is told of deletions before a place can be taken again (OpenFile::rowDeleted): from then
// on it stands on no record, whatever lies at its place.

#include <cstdint>
#include <optional>

#include "database/access/schema/table.h"

namespace veltrano::access {

class RowHandle {
 public:
  /// `table` must outlive the handle.
  explicit RowHandle(const Table& table) : table_(&table) {}

  /// Stands on the record at `place`. False if there is none or it is damaged; the place is kept all the same, for
  /// a walk to go on from. `generation` is the file's (OpenFile::generation).
  bool moveTo(RowPointer place, std::uint64_t generation);
  /// Reads the record again if the file has changed since. False if the record is gone.
  bool refresh(std::uint64_t generation) {
    return generation_ == generation ? !deleted_ : readAgain(generation);
  }
  /// The record was deleted.
  void markDeleted();
  /// Stands on nothing.
  void release() { row_.reset(); }

  [[nodiscard]] RowPointer place() const { return place_; }
  [[nodiscard]] bool deleted() const { return deleted_; }
  /// The record's bytes, as of the last moveTo or refresh that succeeded.
  [[nodiscard]] const RowView& view() const { return view_; }

 private:
  bool readAgain(std::uint64_t generation);

  const Table* table_;
  RowPointer place_;
  bool deleted_ = false;
  std::optional<Row> row_;  // keeps the page in memory
  RowView view_;
  std::uint64_t generation_ = 0;
};

}  // namespace veltrano::access

#endif
