#ifndef VELTRANO_DATABASE_ACCESS_INDEX_ROW_VALUES_H
#define VELTRANO_DATABASE_ACCESS_INDEX_ROW_VALUES_H

// The values of a row's index columns, as keys are made of them.

#include <span>
#include <vector>

#include "database/access/schema/table.h"

namespace veltrano::access {

class RowValues {
 public:
  /// Takes the values of these columns of a row, in their order. They may refer to the row's bytes. False if one is
  /// damaged.
  bool read(const Table& table, const std::vector<IndexColumn>& columns, const RowView& row);
  [[nodiscard]] std::span<const StoredValue> values() const { return values_; }

 private:
  std::vector<StoredValue> values_;
  std::vector<std::vector<std::uint8_t>> buffers_;
};

}  // namespace veltrano::access

#endif
