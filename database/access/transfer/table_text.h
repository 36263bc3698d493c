#ifndef VELTRANO_DATABASE_ACCESS_TRANSFER_TABLE_TEXT_H
#define VELTRANO_DATABASE_ACCESS_TRANSFER_TABLE_TEXT_H

// Tables as CSV or as JSON lines in UTF-8, and tables filled from CSV. What the values look like:
// table_records.h.
//
//               CSV                                    JSON
//   null        nothing                                null
//   empty text  ""                                     ""
//   numbers     as they are                            as they are; "nan" and "inf" in quotes
//   booleans    True, False                            true, false
//   others      quoted where that is needed            strings
//   lone surrogates  the three bytes of their number   \ud800
// Calculated columns are left out.

#include <functional>

#include "database/access/transfer/csv.h"
#include "database/access/transfer/table_records.h"

namespace veltrano::access {

enum class TextForm { csv, jsonLines };
enum class Damage {
  fails,    ///< the first damaged record or value ends the export
  skipped,  ///< damaged records are left out, damaged values are nulls
};

/// Appends the records, after a line with the names of the fields in CSV, to a text that `written` is called
/// with after each record, to take it away or leave it, and with the part that is done: 1 for the last time
/// only. It may throw. Returns the number of records and values that were damaged.
Result<std::uint64_t> exportRecords(TableReader& reader, TextForm form, Damage damage,
                                    const std::function<void(std::string& text, double done)>& written);

/// Adds the records of a CSV file, whose first line names the fields, in one transaction: all of them or
/// none. A field without text is a null, but for "" in columns of text and bytes. Blank lines are left out,
/// unless there is one field: it is null there. `added` is called after each record, and with 1 before all of
/// them become lasting; if it throws, none is added. The reason of a failure names the line.
Status importRecords(CsvReader& csv, Pager& pager, std::string_view table,
                     const std::function<void(double done)>& added);

}  // namespace veltrano::access

#endif
