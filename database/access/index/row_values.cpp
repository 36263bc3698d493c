#include "database/access/index/row_values.h"

#include <algorithm>

#include "database/access/schema/field_codec.h"

namespace veltrano::access {

bool RowValues::read(const Table& table, const std::vector<IndexColumn>& columns, const RowView& row) {
  values_.resize(columns.size());
  buffers_.resize(std::max(buffers_.size(), columns.size()));
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Column* column = table.definition().byNumber(columns[i].column);
    const auto value = column != nullptr
                           ? cellToStored(table.pager(), *column, row.cell(*column), buffers_[i])
                           : std::nullopt;
    if (!value) {
      return false;
    }
    values_[i] = *value;
  }
  return true;
}

}  // namespace veltrano::access
