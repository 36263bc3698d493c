#ifndef VELTRANO_DATABASE_ACCESS_SCHEMA_CATALOG_H
#define VELTRANO_DATABASE_ACCESS_SCHEMA_CATALOG_H

// The catalog: the table MSysObjects, which names everything in the file.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/access/schema/table_definition.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

enum class ObjectKind : std::int16_t {
  table = 1,
  database = 2,
  container = 3,
  linkedOdbc = 4,
  query = 5,
  linkedTable = 6,
  relation = 8,
};

struct CatalogEntry {
  std::string name;  ///< UTF-8
  ObjectKind kind{};
  std::uint32_t id = 0;     ///< a table's: the page of its definition
  std::uint32_t flags = 0;  ///< 0x80000000 and 2: a table of the system
  RowPointer row;           ///< in MSysObjects

  /// Of a table.
  [[nodiscard]] PageNumber definitionPage() const { return id & 0x00FFFFFF; }
  [[nodiscard]] bool isSystem() const { return (flags & 0x80000002) != 0; }
};

/// All objects, in the catalog's own order. Empty if the catalog is damaged.
std::optional<std::vector<CatalogEntry>> readCatalog(Pager& pager);

/// The definition of the table of that name (in any case), with the properties of its columns from the catalog. Fails
/// if there is no such table, or it is a query, lies in another file or cannot be read.
Result<TableDefinition> findTable(Pager& pager, std::string_view name);

/// The same of the table whose definition starts at that page.
Result<TableDefinition> findTable(Pager& pager, PageNumber page);

}  // namespace veltrano::access

#endif
