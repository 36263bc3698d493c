#ifndef VELTRANO_DATABASE_ACCESS_AUTHORING_DEFINITION_BUILDER_H
#define VELTRANO_DATABASE_ACCESS_AUTHORING_DEFINITION_BUILDER_H

// Writes the definition of a new table: its pages, its maps and the roots of its indexes. Jet 4 only.

#include <optional>

#include "database/access/authoring/create_database.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

enum class TableKind : std::uint8_t { user = 'N', system = 'S' };

/// Where new maps go: rows of data pages that hold nothing else.
class MapAllocator {
 public:
  explicit MapAllocator(Pager& pager) : pager_(pager) {}
  /// An empty map. No value if the file is full.
  std::optional<RowPointer> allocate();

 private:
  Pager& pager_;
  PageNumber page_ = 0;
};

/// Fails if the table cannot be made as described.
Status checkNewTable(const NewTable& table);

/// Writes the definition to `page`, which is new; in a transaction. The table's sides of relations come after its
/// ordinary indexes; an index without a name is of relations alone.
bool writeDefinition(Pager& pager, PageNumber page, const NewTable& table, TableKind kind, MapAllocator& maps,
                     const std::vector<RelationSide>& relations = {});

}  // namespace veltrano::access

#endif
