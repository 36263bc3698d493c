#ifndef VELTRANO_DATABASE_ACCESS_PAGES_LONG_VALUE_H
#define VELTRANO_DATABASE_ACCESS_PAGES_LONG_VALUE_H

// Memo and OLE values, which lie in pages of their own when they are too long for the row. long_value.cpp
// shows the bytes.

#include <vector>

#include "database/access/pages/column.h"
#include "database/access/pages/row.h"
#include "database/access/storage/pager.h"

namespace veltrano::access {

/// The bytes of the value that a row's cell stands for: a part of `cell`, or `buffer`. Empty if it is damaged.
std::optional<Bytes> readLongValue(Pager& pager, Bytes cell, std::vector<std::uint8_t>& buffer);

/// Bytes of a cell whose value lies elsewhere; a value in the row comes after as many.
inline constexpr std::size_t longValueHead = 12;
/// Values up to this length may lie in the row.
inline constexpr std::size_t mostInlineBytes = 64;

/// Of a cell: the value follows in the row instead of lying on other pages.
bool liesInRow(Bytes cell);
/// Makes the cell of a value that lies in the row.
void makeInlineCell(Bytes value, std::vector<std::uint8_t>& cell);
/// Stores a value in the column's pages and makes the cell that points to it. In a transaction; false: roll
/// it back.
bool storeLongValue(Pager& pager, const Column& column, Bytes value, std::vector<std::uint8_t>& cell);
/// Deletes a value, in a transaction. Stops where the value is damaged, without an error.
bool releaseLongValue(Pager& pager, const Column& column, Bytes cell);

}  // namespace veltrano::access

#endif
