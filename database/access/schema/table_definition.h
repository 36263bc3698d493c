#ifndef VELTRANO_DATABASE_ACCESS_SCHEMA_TABLE_DEFINITION_H
#define VELTRANO_DATABASE_ACCESS_SCHEMA_TABLE_DEFINITION_H

// What a table's definition pages say: columns, indexes and the maps of its pages. table_definition.cpp shows
// the bytes.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/access/pages/column.h"
#include "database/access/pages/row.h"
#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// The stored value of one column of one row, as index keys are made of it. `data` is, by type:
///  - boolean: one byte, 0 or 1 (never null);
///  - text, memo: the text in UTF-16LE, not compressed (Jet 3: in the code page);
///  - all others: the bytes as they lie in the row, little-endian.
struct StoredValue {
  bool null = true;
  Bytes data;
};

struct IndexColumn {
  std::uint16_t column = 0;  ///< column number (Column::number)
  bool ascending = true;
};

/// One index tree; several logical indexes may share it.
struct Index {
  std::string name;  ///< of the first logical index on it
  std::vector<IndexColumn> columns;
  PageNumber root = 0;
  RowPointer ownedPages{};
  bool unique = false;       ///< primary keys included
  bool ignoreNulls = false;  ///< rows whose index columns are all null are left out
  bool required = false;     ///< no index column may be null; primary keys included
  bool primary = false;
  /// Offset of the count of distinct entries in the definition, usually on its first page.
  std::uint32_t uniqueCountOffset = 0;
};

/// What an enforced relation does with the records that depend on a deleted one.
enum class OnDelete : std::uint8_t { refuse = 0, cascade = 1, setNull = 2 };

/// A table's side of an enforced relation: one of its logical indexes.
struct RelationSide {
  enum class Role : std::uint8_t { parent = 1, child = 2 };
  std::string name;               ///< of the logical index; the child's is the relation's
  Role role{};                    ///< of this table
  std::uint32_t number = 0;       ///< of the logical index
  std::size_t index = 0;          ///< the real one, in TableDefinition::indexes
  PageNumber otherTable = 0;      ///< page of its definition
  std::uint32_t otherNumber = 0;  ///< the other table's logical index
  bool cascadesUpdates = false;   ///< the parent's record counts
  OnDelete onDelete{};            ///< the parent's record counts
  bool known = true;              ///< false if the record has values of unknown meaning
};

struct TableDefinition {
  PageNumber page = 0;
  std::string name;              ///< as the catalog has it
  std::vector<Column> columns;   ///< by number
  std::vector<Index> indexes;    ///< the real ones
  std::uint16_t maxColumns = 0;  ///< column numbers ever given
  std::uint16_t variableColumns = 0;
  RowPointer ownedPages{};
  RowPointer freePages{};               ///< page 0 for none
  std::vector<RelationSide> relations;  ///< those to be enforced
  std::string validationRule;           ///< a property of the table: an expression, UTF-8

  [[nodiscard]] RowLayout rowLayout() const { return {columns, maxColumns, variableColumns}; }
  /// By name, in any case; null if there is no such column.
  [[nodiscard]] const Column* find(std::string_view name) const;
  [[nodiscard]] const Column* byNumber(std::uint16_t number) const;
  [[nodiscard]] const Index* primaryKey() const;
};

/// Reads the definition that starts at `page`. Empty if it is damaged.
std::optional<TableDefinition> readTableDefinition(Pager& pager, PageNumber page);

}  // namespace veltrano::access

#endif
