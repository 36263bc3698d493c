#ifndef VELTRANO_DATABASE_ACCESS_PAGES_ROW_H
#define VELTRANO_DATABASE_ACCESS_PAGES_ROW_H

// The bytes of one row: where each column's value lies in it, and how a row is made. row.cpp shows the bytes.
// A value here is its raw bytes as the row holds them ("cell"); field_codec.h knows what they mean.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "database/access/pages/column.h"
#include "database/access/storage/bytes.h"

namespace veltrano::access {

/// A row for reading; does not own the bytes. Damaged rows never make it read outside of them.
class RowView {
 public:
  RowView() = default;
  /// `variableColumns`: whether the table's definition has any.
  RowView(Bytes row, Version version, bool variableColumns);

  /// False if the bytes cannot be a row.
  [[nodiscard]] bool valid() const { return valid_; }
  /// The value's bytes; empty for a null. A boolean has one byte, 0 or 1, and is never null.
  [[nodiscard]] std::optional<Bytes> cell(const Column& column) const;

 private:
  [[nodiscard]] bool bit(std::uint16_t number) const;
  [[nodiscard]] std::size_t variableOffset(std::size_t index) const;

  Bytes row_;
  bool jet3_ = false;
  bool valid_ = false;
  std::uint16_t count_ = 0;     // columns
  std::uint16_t variable_ = 0;  // variable columns in this row
  std::size_t mask_ = 0;        // offset of the null mask
  std::size_t offsets_ = 0;     // offset of variable offset 0; the others lie before it
  std::size_t jumps_ = 0;       // Jet 3: entries of the jump table, which comes after the offsets
};

/// A value on its way into a row.
struct Cell {
  bool null = true;
  std::vector<std::uint8_t> bytes;  ///< a boolean: one byte

  [[nodiscard]] Bytes view() const { return bytes; }
};

/// What all rows of a table have in common.
struct RowLayout {
  std::span<const Column> columns;  ///< by number
  std::uint16_t maxColumns = 0;     ///< column numbers ever given
  std::uint16_t variableColumns = 0;
};

/// Builds the bytes of a row (Jet 4 and later). `cells` are in the order of the layout's columns. The result may be
/// longer than the format allows (maximumRowSize).
void buildRow(const RowLayout& table, const std::vector<Cell>& cells, std::vector<std::uint8_t>& row);

}  // namespace veltrano::access

#endif
