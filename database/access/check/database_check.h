#ifndef VELTRANO_DATABASE_ACCESS_CHECK_DATABASE_CHECK_H
#define VELTRANO_DATABASE_ACCESS_CHECK_DATABASE_CHECK_H

// Tells whether a database file is sound: for tests, and for whoever doubts a file.

#include <string>

#include "database/access/storage/pager.h"

namespace veltrano::access {

enum class CheckCounters : std::uint8_t {
  no,   ///< other programs let the figures in table definitions drift
  yes,  ///< row counts and autonumbers must agree with the rows
};

/// Walks all tables with their rows, long values, maps and indexes. Answers "" for a sound file, otherwise
/// what is wrong with it first. The rules, as the code cites them:
///  C1  Every page has one owner, and no page in use is free by the global map.
///  C2  Data pages have their table as owner, slots in order, and the free bytes they state.
///  C3  Every row can be read, with its long values; a pointer leads to one hidden row, and each hidden row
///  is led to
///      once.
///  C4  Pages with room belong to the table.
///  C5  Every index has one entry for each row that belongs in it, with the row's key (and is a sound tree).
///  C6  Each piece of a long value belongs to one row.
///  C7  The definition's number of rows is right, its last autonumber not below any row's.
std::string checkDatabase(Pager& pager, CheckCounters counters);

}  // namespace veltrano::access

#endif
