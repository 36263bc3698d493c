#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_FILE_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_FILE_H

// The engine's files are those of the base; their bytes are the engine's.

#include "base/files/identity.h"
#include "base/files/random_access.h"
#include "database/access/storage/bytes.h"

namespace veltrano::access {

using veltrano::FileNumber;
using veltrano::fileNumber;
using veltrano::FileSystem;
using veltrano::OpenFailure;
using veltrano::OpenMode;
using veltrano::RandomAccessFile;
using veltrano::systemFiles;

}  // namespace veltrano::access

#endif
