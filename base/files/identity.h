#ifndef VELTRANO_BASE_FILES_IDENTITY_H
#define VELTRANO_BASE_FILES_IDENTITY_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace veltrano {

/// What distinguishes one state of a file from another. Two states are equal here although the content differs
/// only if it was changed twice within one step of the file system's clock. Times are in nanoseconds of it.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t file = 0;
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  std::int64_t changed = 0;  ///< of the metadata; equals `modified` where the system has none
  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// Empty if there is no such regular file.
std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file);

/// The start of a file, and its identity from before the reading.
struct IdentifiedText {
  FileIdentity identity;
  std::string text;
};
/// The first `limit` bytes of the file, or all of a shorter one. Empty if there is no such regular file
/// or it is unreadable. Others may read the file meanwhile.
std::optional<IdentifiedText> readIdentified(const std::filesystem::path& file, std::size_t limit);

/// What tells a file from every other one that exists at the same time, whatever names lead to it.
struct FileNumber {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  friend bool operator==(const FileNumber&, const FileNumber&) = default;
};

/// Empty if there is no such file. Others may have it open meanwhile.
std::optional<FileNumber> fileNumber(const std::filesystem::path& file);

}  // namespace veltrano

#endif
