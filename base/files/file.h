#ifndef VELTRANO_BASE_FILES_FILE_H
#define VELTRANO_BASE_FILES_FILE_H

// Open files and the few other things that the library asks of a file system. All reading and writing of files
// in the library comes through here, so a test can watch it or let it fail (calls.h).

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/os/owned.h"
#include "base/status.h"

namespace veltrano {

/// What a file is opened for. Unless it says otherwise, others may read and write the file meanwhile.
enum class Opening {
  read,             ///< an existing file
  write,            ///< an existing file or device
  change,           ///< an existing file, to read and write
  createNew,        ///< fails if there is a file of that name
  createPrivate,    ///< like createNew, for nobody but its owner until it takes other rights
  append,           ///< an existing file or a new one; every write goes to its end; no second writer
  appendShared,     ///< like append, for lines that several programs write: each write stands whole; no pipes
  lockedRead,       ///< an existing file; others may read only. Devices and pipes are refused
  lockedChange,     ///< an existing file, to read and write; others may not open it so. Devices are refused
  lockedChangeNew,  ///< like lockedChange; made if it is missing
};

/// The system's descriptor or handle of an open file.
void closeFileHandle(std::intptr_t file);
using FileHandle = Owned<std::intptr_t, closeFileHandle, -1>;

/// An open file; closes when it goes away, which gives back its lock. Movable.
class File {
 public:
  static Result<File> open(const std::filesystem::path& file, Opening opening);

  /// Fills `target` from where the last read ended. How many bytes there were: fewer only at the file's end.
  Result<std::size_t> read(std::span<char> target);
  /// Writes all of `bytes` where the last write ended.
  Status write(std::string_view bytes);
  /// The same at a place; files on a disk only.
  Result<std::size_t> readAt(std::uint64_t offset, std::span<char> target);
  Status writeAt(std::uint64_t offset, std::string_view bytes);

  /// As it was given to `open`.
  [[nodiscard]] const std::filesystem::path& name() const { return name_; }
  Result<std::uint64_t> size();
  /// Cuts the file, or extends it by zeros.
  Status resize(std::uint64_t size);
  /// Waits until everything written is on the disk.
  Status sync();
  /// Gives the file the owner and the permissions of `model`, as far as the user may, or what the system has in
  /// their place (access list, attributes, time of creation).
  /// False if that would give the file to somebody else: the user may not keep its owner or group.
  bool takeRightsOf(const std::filesystem::path& model);
  /// False for devices, pipes and folders.
  bool onDisk();

 private:
  File(FileHandle handle, std::filesystem::path name);
  // Without an offset: where the last one ended.
  Result<std::size_t> readAll(std::optional<std::uint64_t> offset, std::span<char> target);
  Status writeAll(std::optional<std::uint64_t> offset, std::string_view bytes);
  // One call of the system, which may move fewer bytes; 0 at the end.
  Result<std::size_t> readSome(std::optional<std::uint64_t> offset, std::span<char> target);
  Result<std::size_t> writeSome(std::optional<std::uint64_t> offset, std::string_view bytes);

  FileHandle handle_;
  std::filesystem::path name_;
};

enum class FileKind { missing, regular, folder, device };
FileKind kindOf(const std::filesystem::path& file);

/// What the name finally leads to through links, which need not exist; the name itself if it is not a link.
std::filesystem::path linkTarget(const std::filesystem::path& file);

/// False if the file itself forbids writing, whatever its folder allows.
bool mayWrite(const std::filesystem::path& file);

/// Gives `file` the name `target` in one step, instead of a file that may have it; both in one folder. A
/// durable renaming is on the disk when this returns.
Status renameOver(const std::filesystem::path& file, const std::filesystem::path& target, bool durable);

/// Waits until the name of a new file is on the disk. No-op where the system has no such step; a folder that
/// cannot be synced is no failure.
Status syncName(const std::filesystem::path& file);

Status removeFile(const std::filesystem::path& file);

/// The names of the regular files in a folder, in no order. (The standard library's own iterator ends the process when
/// memory is short.)
Result<std::vector<std::filesystem::path>> namesOfFiles(const std::filesystem::path& folder);

/// True if another program or object has the file open, as far as the system can tell: also if it cannot.
bool isHeldOpen(const std::filesystem::path& file);

/// Nobody can guess it. Fails if the system has none to give.
Result<std::uint64_t> randomNumber();

}  // namespace veltrano

#endif
