#ifndef VELTRANO_DATABASE_ACCESS_AUTHORING_SCHEMA_TEXT_H
#define VELTRANO_DATABASE_ACCESS_AUTHORING_SCHEMA_TEXT_H

// Tables described in a text. Users read what it looks like in docs/veltrano-program.md and in schemaForm.

#include <string>
#include <string_view>
#include <vector>

#include "database/access/authoring/create_database.h"

namespace veltrano::access {

/// For users.
inline constexpr const char* schemaForm =
    R"(SCHEMA is a text in UTF-8 with a line for each table, column and index:
  # a comment
  table Orders
    ID         autonumber
    Customer   text(40)       required
    [Due date] datetime
    Amount     decimal(18,2)  default 0
    primary PrimaryKey (ID)
    index ByCustomer (Customer, [Due date] desc)
Types: boolean byte integer long currency single double datetime text(n) binary(n) memo ole guid
       decimal(p,s) autonumber autoguid
Names with blanks or marks, or the first word of an index, are in square brackets.
Columns: required, nonempty (no empty text), default EXPRESSION (last in its line)
Indexes: primary, unique or index; after the columns: required, ignorenulls)";

/// The tables of a schema text in UTF-8. Fails with "line 3: " and what is wrong there.
Result<std::vector<NewTable>> parseSchema(std::string_view text);

/// The schema text of a table, as far as it can say what the table is.
std::string describeTable(const TableDefinition& table, Version version);

}  // namespace veltrano::access

#endif
