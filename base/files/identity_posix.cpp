#include <sys/stat.h>

#include <ctime>

#include "base/files/identity.h"

namespace veltrano {

namespace {

std::int64_t nanoseconds(const timespec& time) {
  return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

}  // namespace

std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file) {
  struct stat status = {};
  if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return FileIdentity{status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
                      nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

std::optional<FileNumber> fileNumber(const std::filesystem::path& file) {
  struct stat status = {};
  if (::stat(file.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return FileNumber{status.st_dev, status.st_ino};
}

}  // namespace veltrano
