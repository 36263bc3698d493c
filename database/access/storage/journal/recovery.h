#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_RECOVERY_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_RECOVERY_H

// What an opener does with the journal of a process that did not close the database.

#include <cstdint>
#include <filesystem>

#include "base/files/random_access.h"

namespace veltrano::access {

/// Writes into `database` what the journal beside it holds, cuts or extends it to the length that goes with
/// that, makes it durable and removes the journal. A journal that is void or about another file is removed
/// only. False if the database must not be used: writing failed, or it is open for reading only (null) and
/// the journal holds something. `identity`: hash of the header page.
bool recoverDatabase(FileSystem& files, const std::filesystem::path& path, RandomAccessFile* database,
                     std::uint64_t identity, std::uint32_t pageSize);

}  // namespace veltrano::access

#endif
