#ifndef VELTRANO_DATABASE_ACCESS_CHECK_DATABASE_CHECK_H
#define VELTRANO_DATABASE_ACCESS_CHECK_DATABASE_CHECK_H

// Checks whether a database file is sound.

#include <string>

#include "database/access/storage/pager.h"

namespace veltrano::access {

enum class CheckCounters : std::uint8_t {
  no,   ///< other programs let the figures in table definitions drift
  yes,  ///< row counts and autonumbers must agree with the rows
};

/// Walks all tables with their rows, long values, maps and indexes. Returns "" for a sound file, otherwise the first
/// fault. The invariants, as the code cites them:
///  C1  Every page has one owner, and the global map lists no page in use as free.
///  C2  Data pages have their table as owner, slots in order, and the free bytes they state.
///  C3  Every row and its long values can be read. A pointer leads to one hidden row, and to each hidden row leads one
///      pointer.
///  C4  Pages with room belong to the table.
///  C5  Every index is a sound tree and has one entry, with the right key, for each row that belongs in it.
///  C6  Each piece of a long value belongs to one row.
///  C7  The definition's number of rows is right, and its last autonumber is not below any row's.
///  C8  Every record that depends on another one by an enforced relation has it.
std::string checkDatabase(Pager& pager, CheckCounters counters);

}  // namespace veltrano::access

#endif
