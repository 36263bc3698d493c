#include "database/access/rows/row_handle.h"

namespace veltrano::access {

bool RowHandle::moveTo(RowPointer place, std::uint64_t generation) {
  place_ = place;
  deleted_ = false;
  generation_ = generation;
  row_ = table_->fetch(place);
  if (row_) {
    view_ = table_->view(*row_);
  }
  return row_ && view_.valid();
}

bool RowHandle::readAgain(std::uint64_t generation) {
  if (!deleted_ && !moveTo(place_, generation)) {
    markDeleted();
  }
  return !deleted_;
}

void RowHandle::markDeleted() {
  deleted_ = true;
  row_.reset();
}

}  // namespace veltrano::access
