#ifndef VELTRANO_DATABASE_ACCESS_SCHEMA_DEFAULT_VALUE_H
#define VELTRANO_DATABASE_ACCESS_SCHEMA_DEFAULT_VALUE_H

// What a field of a new record holds before anything is assigned.

#include <cstdint>
#include <optional>
#include <vector>

#include "database/access/schema/table_definition.h"

namespace veltrano::access {

/// True for an autonumber column that counts, false for one whose numbers are random.
bool countsUp(const Column& column);

/// The cell of an autonumber (`next` is the table's next one if it counts), of a random GUID, or of the column's
/// default: a quoted text, a number, True, False, Yes, No, Null, Now(), Date() or Time(), with or without "=" before
/// it. Other expressions count as no default. Empty for a null.
std::optional<std::vector<std::uint8_t>> initialCell(const Column& column, std::optional<std::int32_t> next);

}  // namespace veltrano::access

#endif
