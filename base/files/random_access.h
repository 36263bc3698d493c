#ifndef VELTRANO_BASE_FILES_RANDOM_ACCESS_H
#define VELTRANO_BASE_FILES_RANDOM_ACCESS_H

// Files that are read and written at positions, with the locks that keep two users from each other. Tests put
// another implementation in the system's place, one that fails or dies when they want it.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>

#include "base/status.h"

namespace veltrano {

enum class OpenMode {
  read,    ///< an existing file, next to other readers; refused while somebody has it open to write
  write,   ///< an existing file, for this user alone
  create,  ///< like write; made if it is missing
};

/// A step that fails is told to the trace at once, with the system's reason. For the database there is but one thing
/// to do then, whatever the reason: to take back what was begun. So the steps only answer whether they succeeded.
class RandomAccessFile {
 public:
  RandomAccessFile() = default;
  RandomAccessFile(const RandomAccessFile&) = delete;
  RandomAccessFile& operator=(const RandomAccessFile&) = delete;
  /// Closes, which gives back the lock.
  virtual ~RandomAccessFile() = default;

  /// Reads up to `target.size()` bytes. How many there were: fewer only at the file's end. Empty on an error.
  virtual std::optional<std::size_t> readAt(std::uint64_t offset, std::span<std::uint8_t> target) = 0;
  /// False if not all of it was written; a part may be.
  virtual bool writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) = 0;
  virtual std::optional<std::uint64_t> size() = 0;
  virtual bool resize(std::uint64_t size) = 0;
  /// Waits until everything written is on the disk.
  virtual bool sync() = 0;
};

class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  /// Folders and devices are refused. Failure::inUse if the lock is taken, Failure::notAllowed if the user may
  /// not open it like that.
  virtual Result<std::unique_ptr<RandomAccessFile>> open(const std::filesystem::path& file,
                                                         OpenMode mode) = 0;
  virtual bool remove(const std::filesystem::path& file) = 0;
  /// True if the lock file of another program (one entry of 64 bytes for each user) exists and is not known to
  /// be left over.
  virtual bool lockFileInUse(const std::filesystem::path& lockFile) = 0;
};

FileSystem& systemFiles();

}  // namespace veltrano

#endif
