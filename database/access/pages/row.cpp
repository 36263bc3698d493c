#include "database/access/pages/row.h"

#include <algorithm>
#include <array>

namespace veltrano::access {

// In the order of the bytes:
//
//   Jet 4   Jet 3
//   u16     u8     column count
//                  fixed columns
//                  variable columns
//   u16     u8     end of the variable columns
//   u16*n   u8*n   their offsets, the last column's first
//           u8*m   jump table, backwards
//   u16     u8     n, the number of variable columns
//                  null mask
//
// Without variable columns in the table's definition the mask follows the fixed columns. In Jet 3
// an offset is its byte plus 256 times the number of jump entries that are <= its index.
//
// Offsets count from the row's start. The mask has bit c for column number c, 1 for "not null". So all is
// found from the row's end. A column whose number is not below the row's count was added later and is null.

namespace {

constexpr std::array<std::uint8_t, 2> booleans = {0, 1};

}  // namespace

RowView::RowView(Bytes row, Version version, bool variableColumns) : row_(row), jet3_(isJet3(version)) {
  const std::size_t word = jet3_ ? 1 : 2;
  if (row.size() < word) {
    return;
  }
  count_ = jet3_ ? row[0] : load16(row.data());
  const std::size_t maskSize = (std::size_t{count_} + 7) / 8;
  if (row.size() < word + maskSize) {
    return;
  }
  mask_ = row.size() - maskSize;
  valid_ = true;
  if (!variableColumns) {
    return;
  }
  if (mask_ < 2 * word) {
    valid_ = false;
    return;
  }
  const std::size_t countAt = mask_ - word;
  variable_ = jet3_ ? row[countAt] : load16(row.data() + countAt);
  if (jet3_) {
    jumps_ = (row.size() - 1) / 256;
  }
  // All offsets, and the end of the data, must lie inside the row.
  if (countAt < jumps_ + word * (std::size_t{variable_} + 1)) {
    valid_ = false;
    return;
  }
  offsets_ = countAt - jumps_ - word;
  // The jump table is sized by the row's length before it was made: its last entry can be unused.
  if (jet3_ && jumps_ > 0 && (offsets_ - variable_) / 256 < jumps_) {
    --jumps_;
  }
}

bool RowView::bit(std::uint16_t number) const {
  return (row_[mask_ + number / 8U] >> (number % 8U) & 1U) != 0;
}

std::size_t RowView::variableOffset(std::size_t index) const {
  if (!jet3_) {
    return load16(row_.data() + offsets_ - 2 * index);
  }
  std::size_t high = 0;
  const std::size_t tableEnd = mask_ - 2;  // jump entry 0
  while (high < jumps_ && row_[tableEnd - high] <= index) {
    ++high;
  }
  return row_[offsets_ - index] + 256 * high;
}

std::optional<Bytes> RowView::cell(const Column& column) const {
  if (column.type == ColumnType::boolean) {
    const bool value = column.number < count_ && bit(column.number);
    return Bytes(booleans).subspan(value ? 1 : 0, 1);
  }
  if (column.number >= count_ || !bit(column.number)) {
    return std::nullopt;
  }
  if (column.fixed) {
    const std::size_t from = (jet3_ ? 1U : 2U) + std::size_t{column.fixedOffset};
    return from + column.length <= mask_ ? std::optional(row_.subspan(from, column.length)) : std::nullopt;
  }
  if (column.variableIndex >= variable_) {
    return std::nullopt;
  }
  const std::size_t from = variableOffset(column.variableIndex);
  const std::size_t to = variableOffset(column.variableIndex + std::size_t{1});
  return from <= to && to <= mask_ ? std::optional(row_.subspan(from, to - from)) : std::nullopt;
}

void buildRow(const RowLayout& table, const std::vector<Cell>& cells, std::vector<std::uint8_t>& row) {
  row.assign(2, 0);
  store16(row.data(), table.maxColumns);
  // The fixed area reaches to the end of the last fixed column, nulls included.
  std::array<const Cell*, 256> variable = {};
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    if (column.type == ColumnType::boolean) {
      continue;
    }
    if (!column.fixed) {
      if (!cells[i].null && column.variableIndex < variable.size()) {
        variable[column.variableIndex] = &cells[i];
      }
      continue;
    }
    const std::size_t from = 2 + std::size_t{column.fixedOffset};
    row.resize(std::max(row.size(), from + column.length));
    if (!cells[i].null) {
      const std::size_t size = std::min<std::size_t>(cells[i].bytes.size(), column.length);
      std::copy_n(cells[i].bytes.begin(), size, row.begin() + static_cast<std::ptrdiff_t>(from));
    }
  }
  const auto append16 = [&row](std::size_t value) {
    row.push_back(static_cast<std::uint8_t>(value));
    row.push_back(static_cast<std::uint8_t>(value >> 8));
  };
  const std::size_t count = std::min<std::size_t>(table.variableColumns, variable.size());
  if (count > 0) {
    std::array<std::size_t, 257> offsets = {};
    for (std::size_t i = 0; i < count; ++i) {
      offsets[i] = row.size();
      if (variable[i] != nullptr) {
        row.insert(row.end(), variable[i]->bytes.begin(), variable[i]->bytes.end());
      }
    }
    append16(row.size());
    for (std::size_t i = count; i-- > 0;) {
      append16(offsets[i]);
    }
    append16(count);
  }
  const std::size_t mask = row.size();
  row.resize(mask + (std::size_t{table.maxColumns} + 7) / 8);
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    const bool set = column.type == ColumnType::boolean ? !cells[i].bytes.empty() && cells[i].bytes[0] != 0
                                                        : !cells[i].null;
    if (set && column.number < table.maxColumns) {
      row[mask + column.number / 8U] |= static_cast<std::uint8_t>(1U << (column.number % 8U));
    }
  }
}

}  // namespace veltrano::access
