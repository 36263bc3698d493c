#include "base/os/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <utility>

#include "base/os/raw_output.h"
#include "base/text/code_page.h"
#include "base/trace.h"

namespace veltrano {

namespace {

// Small enough to stay in the processor's cache while it is being looked at.
constexpr std::size_t pieceSize = std::size_t{256} * 1024;

void traceError(std::string_view member, const std::filesystem::path& file) {
  if (traceEnabled()) {
    traceSkipped(member, std::strerror(errno), file.native());
  }
}

class FileDescriptor {
 public:
  explicit FileDescriptor(int number = -1) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (number_ >= 0) {
      ::close(number_);
    }
  }

  explicit operator bool() const { return number_ >= 0; }
  [[nodiscard]] int get() const { return number_; }

 private:
  int number_;
};

FileDescriptor openFile(const std::filesystem::path& file, int flags, mode_t mode = 0) {
  return FileDescriptor(::open(file.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode));
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool writePieces(int descriptor, std::span<const std::string_view> pieces) {
  for (const std::string_view piece : pieces) {
    if (!writeAll(descriptor, piece)) {
      return false;
    }
  }
  return true;
}

// Follows links by hand, because the last one may point to a file that does not exist yet.
std::filesystem::path followLinks(std::filesystem::path file) {
  constexpr int mostLinks = 40;
  for (int i = 0; i < mostLinks; ++i) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(file, error);
    if (error) {
      break;
    }
    file = file.parent_path() / target;
  }
  return file;
}

std::filesystem::path temporaryBeside(const std::filesystem::path& file) {
  static std::atomic<unsigned> serial = 0;
  return file.parent_path() /
         (".veltrano-" + std::to_string(::getpid()) + "-" + std::to_string(++serial) + ".tmp");
}

bool writeTemporary(const std::filesystem::path& temporary, const struct stat* old,
                    std::span<const std::string_view> pieces, Durability durability) {
  const FileDescriptor file = openFile(temporary, O_WRONLY | O_CREAT | O_EXCL, 0666);
  if (!file) {
    return false;
  }
  if (old != nullptr) {
    // The owner can be kept by the superuser only; elsewhere the new file is simply the writer's.
    if (::fchown(file.get(), old->st_uid, old->st_gid) != 0) {
      errno = 0;
    }
    ::fchmod(file.get(), old->st_mode & 07777);
  }
  return writePieces(file.get(), pieces) && (durability == Durability::process || ::fsync(file.get()) == 0);
}

void syncFolder(const std::filesystem::path& file) {
  const auto folder = file.parent_path();
  const FileDescriptor descriptor = openFile(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
  if (descriptor) {
    ::fsync(descriptor.get());
  }
}

std::int64_t nanoseconds(const timespec& time) {
  return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

class PosixOutput final : public RawOutput {
 public:
  explicit PosixOutput(FileDescriptor file) : file_(std::move(file)) {}
  bool write(std::string_view bytes) override { return writeAll(file_.get(), bytes); }

 private:
  FileDescriptor file_;
};

FileIdentity identityOf(const struct stat& status) {
  return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
          nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

}  // namespace

std::optional<std::string> readWholeFile(const std::filesystem::path& file) {
  const FileDescriptor descriptor = openFile(file, O_RDONLY);
  struct stat status = {};
  if (!descriptor || ::fstat(descriptor.get(), &status) != 0) {
    traceError("readWholeFile", file);
    return std::nullopt;
  }
  if (S_ISDIR(status.st_mode)) {
    return std::nullopt;
  }
  std::string content;
  std::size_t length = 0;
  // One byte more than the file has: the read that finds the end then needs no larger buffer.
  content.resize(static_cast<std::size_t>(status.st_size) + 1);
  for (;;) {
    if (length == content.size()) {
      content.resize(content.size() * 2);
    }
    const ssize_t count = ::read(descriptor.get(), content.data() + length, content.size() - length);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      traceError("readWholeFile", file);
      return std::nullopt;
    }
    if (count == 0) {
      break;
    }
    length += static_cast<std::size_t>(count);
  }
  content.resize(length);
  return content;
}

std::optional<IdentifiedText> readIdentified(const std::filesystem::path& file, std::size_t limit) {
  // Opening must not wait for the other end of a pipe.
  const FileDescriptor descriptor = openFile(file, O_RDONLY | O_NONBLOCK);
  struct stat status = {};
  if (!descriptor || ::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    traceError("readIdentified", file);
    return std::nullopt;
  }
  IdentifiedText start{identityOf(status), {}};
  start.text.resize(std::min(limit, static_cast<std::size_t>(status.st_size)));
  std::size_t length = 0;
  while (length < start.text.size()) {
    const ssize_t count = ::read(descriptor.get(), start.text.data() + length, start.text.size() - length);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      traceError("readIdentified", file);
      return std::nullopt;
    }
    if (count == 0) {
      break;
    }
    length += static_cast<std::size_t>(count);
  }
  start.text.resize(length);
  return start;
}

bool readFileInPieces(const std::filesystem::path& file,
                      const std::function<bool(std::string_view piece)>& take) {
  const FileDescriptor descriptor = openFile(file, O_RDONLY);
  const auto buffer = std::make_unique_for_overwrite<char[]>(pieceSize);
  for (;;) {
    const ssize_t count = descriptor ? ::read(descriptor.get(), buffer.get(), pieceSize) : -1;
    if (count < 0 && descriptor && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      traceError("readFileInPieces", file);
      return false;
    }
    if (count == 0 || !take({buffer.get(), static_cast<std::size_t>(count)})) {
      return true;
    }
  }
}

bool replaceFile(const std::filesystem::path& file, std::span<const std::string_view> pieces,
                 Durability durability) {
  if (file.empty()) {
    return false;
  }
  const auto target = followLinks(file);
  struct stat old = {};
  const bool exists = ::stat(target.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) {
    const FileDescriptor device = openFile(target, O_WRONLY);
    return device && writePieces(device.get(), pieces);
  }
  // Renaming needs rights on the folder only; the file's own refusal must count too.
  if (exists && ::access(target.c_str(), W_OK) != 0) {
    traceError("replaceFile", target);
    return false;
  }
  const auto temporary = temporaryBeside(target);
  if (!writeTemporary(temporary, exists ? &old : nullptr, pieces, durability) ||
      ::rename(temporary.c_str(), target.c_str()) != 0) {
    traceError("replaceFile", target);
    ::unlink(temporary.c_str());
    return false;
  }
  if (durability == Durability::power) {
    syncFolder(target);
  }
  return true;
}

std::unique_ptr<RawOutput> RawOutput::create(const std::filesystem::path& file) {
  FileDescriptor opened = openFile(file, O_WRONLY | O_CREAT | O_APPEND, 0666);
  struct stat status = {};
  bool fresh = opened && ::fstat(opened.get(), &status) == 0;
  if (fresh && S_ISREG(status.st_mode)) {
    // Emptied only once it is known that nobody else is writing it.
    const bool taken = ::flock(opened.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    fresh = !taken && ::ftruncate(opened.get(), 0) == 0;
  }
  if (!fresh) {
    traceError("OutputFile", file);
    return nullptr;
  }
  return std::make_unique<PosixOutput>(std::move(opened));
}

std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file) {
  struct stat status = {};
  if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return identityOf(status);
}

std::int64_t fileClockNow() {
  timespec now = {};
  // Not the cheaper coarse clock: some systems stamp files by the fine one, and a file changed just before
  // would seem to be changed later.
  ::clock_gettime(CLOCK_REALTIME, &now);
  return nanoseconds(now);
}

// An embedded zero would silently cut the name on its way to the system and so name another file.
std::filesystem::path pathFromUtf8(std::string_view name) {
  return name.find('\0') == std::string_view::npos ? std::filesystem::path(name) : std::filesystem::path();
}

std::filesystem::path pathFromUtf16(std::u16string_view name) {
  return pathFromUtf8(utf16ToUtf8(name));
}

std::string pathToAnsi(const std::filesystem::path& path) {
  return utf8ToAnsi(path.native());
}

}  // namespace veltrano
