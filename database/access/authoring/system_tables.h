#ifndef VELTRANO_DATABASE_ACCESS_AUTHORING_SYSTEM_TABLES_H
#define VELTRANO_DATABASE_ACCESS_AUTHORING_SYSTEM_TABLES_H

// The tables that every database has, as a new file gets them, and what they say of a new table.

#include "database/access/authoring/create_database.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// Makes MSysObjects, MSysACEs, MSysQueries and MSysRelationships, at pages 2 to 5 of a file of two pages,
/// with the rows of an empty database. `created` is an automation date.
Status makeSystemTables(Pager& pager, double created);

/// Enters a table, whose definition is at `page`, in the catalog and in the access rights. In a transaction.
Status enterTable(Pager& pager, PageNumber page, const NewTable& table, double created);

/// Enters a relation of tables that are in the catalog.
Status enterRelation(Pager& pager, const NewRelation& relation, double created);

}  // namespace veltrano::access

#endif
