#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "database/access/storage/file.h"

namespace veltrano::access {

namespace {

class PosixFile final : public RandomAccessFile {
 public:
  /// `newName`: the file may just have been made; empty if it was there.
  PosixFile(int descriptor, std::filesystem::path newName)
      : descriptor_(descriptor), newName_(std::move(newName)) {}
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;
  ~PosixFile() override { ::close(descriptor_); }

  std::optional<std::size_t> readAt(std::uint64_t offset, MutableBytes target) override {
    std::size_t done = 0;
    while (done < target.size()) {
      const ssize_t got =
          ::pread(descriptor_, target.data() + done, target.size() - done, static_cast<off_t>(offset + done));
      if (got < 0 && errno == EINTR) {
        continue;
      }
      if (got < 0) {
        return std::nullopt;
      }
      if (got == 0) {
        break;
      }
      done += static_cast<std::size_t>(got);
    }
    return done;
  }

  bool writeAt(std::uint64_t offset, Bytes bytes) override {
    while (!bytes.empty()) {
      const ssize_t put = ::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
      if (put < 0 && errno == EINTR) {
        continue;
      }
      if (put <= 0) {
        return false;
      }
      bytes = bytes.subspan(static_cast<std::size_t>(put));
      offset += static_cast<std::uint64_t>(put);
    }
    return true;
  }

  std::optional<std::uint64_t> size() override {
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0) {
      return std::nullopt;
    }
    return static_cast<std::uint64_t>(status.st_size);
  }

  bool resize(std::uint64_t size) override { return ::ftruncate(descriptor_, static_cast<off_t>(size)) == 0; }
  bool sync() override { return ::fsync(descriptor_) == 0 && syncName(); }

 private:
  // The name of a new file is in its folder. Some file systems cannot sync folders, and need not.
  bool syncName() {
    if (newName_.empty()) {
      return true;
    }
    const std::filesystem::path folder = std::exchange(newName_, {}).parent_path();
    const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool synced = descriptor < 0 || ::fsync(descriptor) == 0 || errno == EINVAL;
    if (descriptor >= 0) {
      ::close(descriptor);
    }
    return synced;
  }

  int descriptor_;
  std::filesystem::path newName_;  // until it has been synced
};

OpenFailure failureOf(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return OpenFailure::missing;
    case EWOULDBLOCK:
      return OpenFailure::inUse;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
      return OpenFailure::notWritable;
    default:
      return OpenFailure::other;
  }
}

class PosixFiles final : public FileSystem {
 public:
  std::unique_ptr<RandomAccessFile> open(const std::filesystem::path& file, OpenMode mode,
                                         OpenFailure& failure) override {
    const int flags = mode == OpenMode::read ? O_RDONLY : O_RDWR | (mode == OpenMode::create ? O_CREAT : 0);
    // Without waiting, lest a pipe by that name hangs the host.
    const int descriptor = ::open(file.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (descriptor < 0) {
      failure = failureOf(errno);
      return nullptr;
    }
    auto opened =
        std::make_unique<PosixFile>(descriptor, mode == OpenMode::create ? file : std::filesystem::path());
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
      failure = OpenFailure::other;
      return nullptr;
    }
    // The lock belongs to this opening of the file, so it also keeps two users within one process apart.
    if (::flock(descriptor, (mode == OpenMode::read ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0) {
      failure = failureOf(errno);
      return nullptr;
    }
    return opened;
  }

  bool remove(const std::filesystem::path& file) override { return ::unlink(file.c_str()) == 0; }

  // Whether an entry is left over cannot be told: the locks of the program's machine do not reach every
  // network file system.
  bool lockFileInUse(const std::filesystem::path& lockFile) override {
    struct stat status = {};
    return ::stat(lockFile.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
  }
};

}  // namespace

FileSystem& systemFiles() {
  static PosixFiles files;
  return files;
}

std::optional<FileNumber> fileNumber(const std::filesystem::path& file) {
  struct stat status = {};
  if (::stat(file.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return FileNumber{static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

}  // namespace veltrano::access
