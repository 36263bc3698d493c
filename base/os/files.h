#ifndef VELTRANO_BASE_OS_FILES_H
#define VELTRANO_BASE_OS_FILES_H

// Whole-file reading, replacing and writing. Nothing here throws: a failure is a result, and the
// debug trace says why.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veltrano {

class RawOutput;

/// How much a replacement must survive.
enum class Durability {
  process,  ///< the process may be killed at any instant; the system's own buffers are trusted
  power,    ///< the power may fail: the new content is on the disk before the old one goes
};

/// The whole file as bytes. Nothing when it is missing, a folder or unreadable. Others may read the file
/// meanwhile.
std::optional<std::string> readWholeFile(const std::filesystem::path& file);

/// Hands the file's bytes to `take`, piece by piece, until it returns false; a piece is valid during the call
/// only. False when the file is missing, a folder or could not be read up to there. Others may use the file
/// meanwhile.
bool readFileInPieces(const std::filesystem::path& file,
                      const std::function<bool(std::string_view piece)>& take);

/// Puts the pieces, one after another, in place of `file`. Afterwards the file holds all of them or, when the
/// result is false, what it held before (nothing, if it did not exist): a new file is written beside it and
/// then renamed over it. A link keeps pointing to its target, whose permissions are kept; a read-only file is
/// refused. A name that stands for a device or pipe is written to directly.
bool replaceFile(const std::filesystem::path& file, std::span<const std::string_view> pieces,
                 Durability durability = Durability::process);
bool replaceFile(const std::filesystem::path& file, std::string_view content,
                 Durability durability = Durability::process);

/// A file that is written from its start to its end, one system call for each write and nothing kept back:
/// what was written is in the file even if the process is killed. Movable; closes the file when it goes away.
class OutputFile {
 public:
  /// Opens `file` for writing and empties it, or makes it. Empty if that is impossible, also if another
  /// OutputFile has the file open; an existing file then keeps its content.
  static std::optional<OutputFile> create(const std::filesystem::path& file);

  OutputFile(OutputFile&&) noexcept;
  OutputFile& operator=(OutputFile&&) noexcept;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  /// Appends `text`. False if not all of it could be written (a full disk); the part before is in the file, and
  /// the next write goes on after it.
  bool write(std::string_view text);

 private:
  explicit OutputFile(std::unique_ptr<RawOutput> file);
  std::unique_ptr<RawOutput> file_;
};

/// What tells one state of a file from another: if two of these are equal and the time stamp is not too
/// young, the content is the same. Times are in nanoseconds of the file system's clock.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t file = 0;
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  std::int64_t changed = 0;  ///< of the metadata; equals `modified` where the system has none
  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// Nothing when there is no such regular file.
std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file);

/// The start of a file, and its identity from before the reading.
struct IdentifiedText {
  FileIdentity identity;
  std::string text;
};
/// The first `limit` bytes of the file, or all of a shorter one. Nothing when there is no such regular file
/// or it is unreadable. Others may read the file meanwhile.
std::optional<IdentifiedText> readIdentified(const std::filesystem::path& file, std::size_t limit);

/// Now, on the clock of FileIdentity.
std::int64_t fileClockNow();

/// Names (not paths) of the regular files in `folder`, sorted by their bytes, so that the order is the same
/// on every system. Nothing when there is no such folder.
std::optional<std::vector<std::filesystem::path>> listFiles(const std::filesystem::path& folder);

/// A path from a name as hosts of the ANSI features write it. Never throws: a name with an embedded zero
/// character gives an empty path, which no file has.
std::filesystem::path pathFromAnsi(std::string_view name);
std::filesystem::path pathFromUtf8(std::string_view name);
std::filesystem::path pathFromUtf16(std::u16string_view name);
/// The name in the ANSI code page; characters outside it become what the system's default conversion makes of
/// them.
std::string pathToAnsi(const std::filesystem::path& path);

}  // namespace veltrano

#endif
