#ifndef VELTRANO_DATABASE_ACCESS_SCHEMA_TABLE_H
#define VELTRANO_DATABASE_ACCESS_SCHEMA_TABLE_H

// The rows of one table, walked in storage order and fetched by their place. A row's place is that of its first slot,
// even after it has moved to another page.

#include <optional>
#include <utility>

#include "database/access/pages/row.h"
#include "database/access/schema/table_definition.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// A row held in memory as long as this lives.
struct Row {
  PageView page;
  Bytes bytes;
  RowPointer place;  ///< where the bytes are; not the row's identity when it has moved
};

class Table {
 public:
  Table(Pager& pager, TableDefinition definition) : pager_(&pager), definition_(std::move(definition)) {}

  [[nodiscard]] Pager& pager() const { return *pager_; }
  [[nodiscard]] const TableDefinition& definition() const { return definition_; }

  /// The first row in storage order that is not before `place`. Damaged pages are skipped.
  [[nodiscard]] std::optional<RowPointer> from(RowPointer place) const {
    return firstFrom(place.page, place.row);
  }
  /// The row after `place`.
  [[nodiscard]] std::optional<RowPointer> next(RowPointer place) const {
    return firstFrom(place.page, place.row + 1U);
  }
  [[nodiscard]] std::optional<RowPointer> last() const;
  /// The row; empty if it is deleted or damaged.
  [[nodiscard]] std::optional<Row> fetch(RowPointer row) const;
  [[nodiscard]] RowView view(const Row& row) const {
    return {row.bytes, pager_->version(), definition_.variableColumns != 0};
  }

 private:
  [[nodiscard]] PageView readPage(PageNumber page) const;
  [[nodiscard]] std::optional<RowPointer> firstFrom(PageNumber page, std::uint32_t slot) const;

  Pager* pager_;
  TableDefinition definition_;
};

}  // namespace veltrano::access

#endif
