#ifndef VELTRANO_BASE_FILES_NEW_FILE_H
#define VELTRANO_BASE_FILES_NEW_FILE_H

#include <filesystem>
#include <optional>
#include <string_view>

#include "base/files/file.h"

namespace veltrano {

/// A file that is written piece by piece and gets its name when it is complete. Until then it has another name in the
/// same folder; it is deleted if it goes away before. What can be put together in memory is better written by
/// replaceFile.
class NewFile {
 public:
  /// Fails if there is something else than a file of that name, or none can be made in the folder.
  static Result<NewFile> create(const std::filesystem::path& name);
  NewFile(NewFile&& other) noexcept = default;
  NewFile& operator=(NewFile&&) = delete;
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  /// Where another writer may write the file instead of `write`.
  [[nodiscard]] const std::filesystem::path& unfinished() const { return unfinished_; }
  Status write(std::string_view bytes);
  /// Puts the file in the place of one that may have the name, whose owner and permissions it takes.
  Status complete();

 private:
  NewFile(std::filesystem::path target, std::filesystem::path unfinished);
  std::filesystem::path target_;
  std::filesystem::path unfinished_;  ///< empty when it is complete
  std::optional<File> file_;          ///< from the first write on
};

}  // namespace veltrano

#endif
