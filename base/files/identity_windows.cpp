#include <windows.h>

#include "base/files/handle_windows.h"
#include "base/files/identity.h"

namespace veltrano {

namespace {

std::int64_t nanoseconds(const FILETIME& time) {
  return static_cast<std::int64_t>((static_cast<std::uint64_t>(time.dwHighDateTime) << 32) |
                                   time.dwLowDateTime) *
         100;
}

}  // namespace

std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file) {
  // One call without opening the file, since measured cells ask for this each time. The time of creation
  // stands for the file's number: a file that takes another's place was made later.
  WIN32_FILE_ATTRIBUTE_DATA info = {};
  if (GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &info) == 0 ||
      (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return std::nullopt;
  }
  const std::int64_t modified = nanoseconds(info.ftLastWriteTime);
  return FileIdentity{0, static_cast<std::uint64_t>(nanoseconds(info.ftCreationTime)),
                      (static_cast<std::uint64_t>(info.nFileSizeHigh) << 32) | info.nFileSizeLow, modified,
                      modified};
}

std::optional<FileNumber> fileNumber(const std::filesystem::path& file) {
  // Asking for no access at all is allowed whatever another user has reserved.
  const FileHandle handle = openHandle(file, 0, shareAll, OPEN_EXISTING);
  BY_HANDLE_FILE_INFORMATION info = {};
  if (!handle || GetFileInformationByHandle(handleOf(handle), &info) == 0) {
    return std::nullopt;
  }
  return FileNumber{info.dwVolumeSerialNumber,
                    (static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow};
}

}  // namespace veltrano
