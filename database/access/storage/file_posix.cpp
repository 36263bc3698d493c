#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "database/access/storage/file.h"

namespace veltrano::access {

namespace {

class PosixFile final : public RandomAccessFile {
 public:
  explicit PosixFile(int descriptor) : descriptor_(descriptor) {}
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
  bool sync() override { return ::fsync(descriptor_) == 0; }

 private:
  int descriptor_;
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
    auto opened = std::make_unique<PosixFile>(descriptor);
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

  // The other program keeps its lock file open. The system grants a write lease on a file that nobody else
  // has open; a lock file that gets one is left over. Where there are no leases (most network file systems,
  // files of another owner) nobody can tell, and the entry counts.
  bool lockFileInUse(const std::filesystem::path& lockFile) override {
    const int descriptor = ::open(lockFile.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) {
      return errno != ENOENT && errno != ENOTDIR;
    }
    struct stat status = {};
    const bool hasEntry = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
    // Whoever opens the file right now makes the system send a signal: one that is ignored unless the host
    // asks for it.
    const bool abandoned = hasEntry && ::fcntl(descriptor, F_SETSIG, SIGURG) == 0 &&
                           ::fcntl(descriptor, F_SETLEASE, F_WRLCK) == 0;
    if (abandoned) {
      ::fcntl(descriptor, F_SETLEASE, F_UNLCK);
    }
    ::close(descriptor);
    return hasEntry && !abandoned;
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
