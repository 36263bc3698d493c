#include "database/access/pages/column.h"

namespace veltrano::access {

std::uint16_t sizeOfType(ColumnType type) {
  switch (type) {
    case ColumnType::byte:
      return 1;
    case ColumnType::integer:
      return 2;
    case ColumnType::longInteger:
    case ColumnType::single:
    case ColumnType::complex:
      return 4;
    case ColumnType::currency:
    case ColumnType::real:
    case ColumnType::dateTime:
    case ColumnType::bigInteger:
      return 8;
    case ColumnType::guid:
      return 16;
    case ColumnType::numeric:
      return 17;
    case ColumnType::extendedDate:
      return 42;
    default:
      return 0;
  }
}

}  // namespace veltrano::access
