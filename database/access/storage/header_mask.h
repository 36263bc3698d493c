#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_HEADER_MASK_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_HEADER_MASK_H

// The mask that lies over the header page of every file.

#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

/// Takes the fixed mask off the header page, or puts it on: the same operation. `header` is the whole page.
void maskHeader(MutableBytes header, Version version);

}  // namespace veltrano::access

#endif
