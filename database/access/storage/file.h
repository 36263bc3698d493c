#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_FILE_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_FILE_H

// The engine's door to the operating system: files read and written at positions, with the locks that keep
// two users from each other. Tests put another implementation in its place that fails or dies when they want
// it.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "database/access/storage/bytes.h"

namespace veltrano::access {

enum class OpenMode {
  read,    ///< an existing file, next to other readers; refused while somebody writes
  write,   ///< an existing file, for this user alone
  create,  ///< like write; made if it is missing
};

class RandomAccessFile {
 public:
  RandomAccessFile() = default;
  RandomAccessFile(const RandomAccessFile&) = delete;
  RandomAccessFile& operator=(const RandomAccessFile&) = delete;
  /// Closes, which gives back the lock.
  virtual ~RandomAccessFile() = default;

  /// Reads up to `target.size()` bytes; how many there were, less only at the file's end. Nothing on an
  /// error.
  virtual std::optional<std::size_t> readAt(std::uint64_t offset, MutableBytes target) = 0;
  /// All or false; part of it may be written then.
  virtual bool writeAt(std::uint64_t offset, Bytes bytes) = 0;
  virtual std::optional<std::uint64_t> size() = 0;
  virtual bool resize(std::uint64_t size) = 0;
  /// Waits until everything written is on the disk.
  virtual bool sync() = 0;
};

/// Why a file did not open.
enum class OpenFailure { missing, inUse, notWritable, other };

class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  /// Null when that fails; `failure` then says why. Folders and devices are refused.
  virtual std::unique_ptr<RandomAccessFile> open(const std::filesystem::path& file, OpenMode mode,
                                                 OpenFailure& failure) = 0;
  virtual bool remove(const std::filesystem::path& file) = 0;
  /// True when the lock file of another program (one entry of 64 bytes for each user) exists and is not known
  /// to be left over.
  virtual bool lockFileInUse(const std::filesystem::path& lockFile) = 0;
};

FileSystem& systemFiles();

/// What tells a file from every other one that exists at the same time, whatever names lead to it.
struct FileNumber {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  friend bool operator==(const FileNumber&, const FileNumber&) = default;
};

/// Nothing when there is no such file. Others may have it open meanwhile.
std::optional<FileNumber> fileNumber(const std::filesystem::path& file);

}  // namespace veltrano::access

#endif
