#ifndef VELTRANO_BASE_FILES_OUTPUT_H
#define VELTRANO_BASE_FILES_OUTPUT_H

#include <filesystem>
#include <optional>
#include <string_view>

#include "base/files/file.h"

namespace veltrano {

/// A file that is written from its start to its end, one system call for each write and nothing kept back:
/// what was written is in the file even if the process is killed. Movable; closes the file when it goes away.
class OutputFile {
 public:
  /// Opens `file` for writing and empties it, or makes it. Empty if that is impossible, also if another
  /// OutputFile has the file open; an existing file then keeps its content. Others may read the file meanwhile.
  static std::optional<OutputFile> create(const std::filesystem::path& file);

  /// Appends `text`. False if not all of it could be written (a full disk); the part before is in the file,
  /// and the next write goes on after it.
  bool write(std::string_view text);

 private:
  explicit OutputFile(File file);
  File file_;
};

}  // namespace veltrano

#endif
