#ifndef VELTRANO_DATABASE_ACCESS_SCHEMA_PROPERTIES_H
#define VELTRANO_DATABASE_ACCESS_SCHEMA_PROPERTIES_H

// The properties of a table and its columns that its definition does not have: whether a value is required, whether a
// text may be empty, the default, the validation rules. The catalog keeps them in one long value.

#include "database/access/schema/table_definition.h"
#include "database/access/storage/bytes.h"

namespace veltrano::access {

/// Enters what `properties` says into the table and its columns. Stops at what is damaged.
void applyProperties(Bytes properties, const Pager& pager, TableDefinition& table);

}  // namespace veltrano::access

#endif
