#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <utility>

#include "base/files/calls.h"
#include "base/files/file.h"
#include "base/os/interruption.h"

namespace veltrano {

namespace {

int number(const FileHandle& descriptor) {
  return static_cast<int>(descriptor.get());
}

Status failureOf(int error) {
  const auto kind = [error] {
    switch (error) {
      case ENOENT:
      case ENOTDIR:
        return Failure::missing;
      case EEXIST:
        return Failure::exists;
      case EWOULDBLOCK:
        return Failure::inUse;
      case EACCES:
      case EPERM:
      case EROFS:
      case ETXTBSY:
        return Failure::notAllowed;
      case ENOSPC:
      case EDQUOT:
      case EFBIG:
        return Failure::full;
      default:
        return Failure::other;
    }
  };
  return {kind(), kind() == Failure::inUse ? "another program has the file open" : std::strerror(error)};
}

Status answerOf(int result) {
  return result == 0 ? Status() : failureOf(errno);
}

constexpr int unlocked = 0;

struct HowToOpen {
  int flags;
  int lock;
  mode_t mode;
};

HowToOpen howTo(Opening opening) {
  constexpr mode_t everybody = 0666;
  constexpr mode_t owner = 0600;
  // Without waiting, lest a pipe without another end hang the host.
  switch (opening) {
    case Opening::read:
      return {O_RDONLY | O_NONBLOCK, unlocked, 0};
    case Opening::write:
      return {O_WRONLY | O_NONBLOCK, unlocked, 0};
    case Opening::change:
      return {O_RDWR | O_NONBLOCK, LOCK_EX, 0};
    case Opening::createNew:
      return {O_WRONLY | O_CREAT | O_EXCL, unlocked, everybody};
    case Opening::createPrivate:
      return {O_WRONLY | O_CREAT | O_EXCL, unlocked, owner};
    case Opening::append:
      return {O_WRONLY | O_NONBLOCK | O_CREAT | O_APPEND, LOCK_EX, everybody};
    case Opening::appendShared:
      return {O_WRONLY | O_NONBLOCK | O_CREAT | O_APPEND, unlocked, everybody};
    case Opening::lockedRead:
      return {O_RDONLY | O_NONBLOCK, LOCK_SH, 0};
    case Opening::lockedChange:
      return {O_RDWR | O_NONBLOCK, LOCK_EX, 0};
    case Opening::lockedChangeNew:
      return {O_RDWR | O_NONBLOCK | O_CREAT, LOCK_EX, everybody};
  }
  return {};
}

mode_t typeOf(int descriptor) {
  struct stat status = {};
  return ::fstat(descriptor, &status) == 0 ? status.st_mode & S_IFMT : 0;
}

bool isRegular(int descriptor) {
  return typeOf(descriptor) == S_IFREG;
}

Status lock(int descriptor, Opening opening, int operation) {
  if (operation == unlocked) {
    return {};
  }
  const bool isText = opening == Opening::append || opening == Opening::change;
  if (!isRegular(descriptor)) {
    return isText ? Status() : Status(Failure::other, "not a regular file");
  }
  // The lock belongs to this opening of the file, so it also keeps two users within one process apart.
  if (::flock(descriptor, operation | LOCK_NB) == 0) {
    return {};
  }
  // Some network file systems have no locks; their text files can be written all the same.
  return isText && errno != EWOULDBLOCK ? Status() : failureOf(errno);
}

/// Bytes moved by `call`, which is repeated after signals, unless they are to end the program.
template <typename Call>
Result<std::size_t> uninterrupted(Call call) {
  for (;;) {
    if (const ssize_t count = call(); count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (errno != EINTR || interrupted()) {
      return failureOf(errno);
    }
  }
}

}  // namespace

void closeFileHandle(std::intptr_t file) {
  ::close(static_cast<int>(file));
}

Result<File> File::open(const std::filesystem::path& file, Opening opening) {
  const HowToOpen how = howTo(opening);
  if (Status watched = beforeFileCall((how.flags & O_EXCL) != 0 ? FileCall::create : FileCall::open, file);
      !watched) {
    return watched;
  }
  FileHandle descriptor(::open(file.c_str(), how.flags | O_CLOEXEC | O_NOCTTY, how.mode));
  if (!descriptor) {
    return failureOf(errno);
  }
  if (number(descriptor) <= STDERR_FILENO) {
    // A host may have closed its standard streams: whatever is printed there must not go into this file.
    FileHandle above(::fcntl(number(descriptor), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!above) {
      return failureOf(errno);
    }
    descriptor = std::move(above);
  }
  if (Status locked = lock(number(descriptor), opening, how.lock); !locked) {
    return locked;
  }
  if (opening == Opening::appendShared) {
    // A pipe would stop the host when nobody reads it, or end it when its reader has gone.
    const mode_t type = typeOf(number(descriptor));
    if (type != S_IFREG && type != S_IFCHR) {
      return Status(Failure::other, "neither a file nor a terminal");
    }
  } else if ((how.flags & O_NONBLOCK) != 0 && !isRegular(number(descriptor))) {
    if (opening == Opening::read) {
      // The other end of a pipe may be about to come.
      constexpr int milliseconds = 1000;
      pollfd readable = {number(descriptor), POLLIN, 0};
      ::poll(&readable, 1, milliseconds);
    }
    ::fcntl(number(descriptor), F_SETFL, how.flags & O_APPEND);
  }
  return File(std::move(descriptor), file);
}

Result<std::size_t> File::readSome(std::optional<std::uint64_t> offset, std::span<char> target) {
  return uninterrupted([&] {
    return offset ? ::pread(number(handle_), target.data(), target.size(), static_cast<off_t>(*offset))
                  : ::read(number(handle_), target.data(), target.size());
  });
}

Result<std::size_t> File::writeSome(std::optional<std::uint64_t> offset, std::string_view bytes) {
  // A long write makes the system look for long runs of memory, which can take it twice the time.
  bytes = bytes.substr(0, std::size_t{1} << 20);
  return uninterrupted([&] {
    return offset ? ::pwrite(number(handle_), bytes.data(), bytes.size(), static_cast<off_t>(*offset))
                  : ::write(number(handle_), bytes.data(), bytes.size());
  });
}

Result<std::uint64_t> File::size() {
  struct stat status = {};
  if (::fstat(number(handle_), &status) != 0) {
    return failureOf(errno);
  }
  return static_cast<std::uint64_t>(status.st_size);
}

Status File::resize(std::uint64_t size) {
  Status watched = beforeFileCall(FileCall::resize, name_);
  return watched ? answerOf(::ftruncate(number(handle_), static_cast<off_t>(size))) : watched;
}

Status File::sync() {
  Status watched = beforeFileCall(FileCall::sync, name_);
  return watched ? answerOf(::fsync(number(handle_))) : watched;
}

bool File::takeRightsOf(const std::filesystem::path& model) {
  struct stat wanted = {};
  struct stat own = {};
  if (::stat(model.c_str(), &wanted) != 0 || ::fstat(number(handle_), &own) != 0) {
    return false;
  }
  // Only the superuser may give a file to another user. The rights of a group are not for another one.
  const bool sameOwner = own.st_uid == wanted.st_uid && own.st_gid == wanted.st_gid;
  return (sameOwner || ::fchown(number(handle_), wanted.st_uid, wanted.st_gid) == 0) &&
         ::fchmod(number(handle_), wanted.st_mode & 07777) == 0;
}

bool File::onDisk() {
  return isRegular(number(handle_));
}

FileKind kindOf(const std::filesystem::path& file) {
  struct stat status = {};
  if (::stat(file.c_str(), &status) != 0) {
    return FileKind::missing;
  }
  if (S_ISREG(status.st_mode)) {
    return FileKind::regular;
  }
  return S_ISDIR(status.st_mode) ? FileKind::folder : FileKind::device;
}

// By hand, because the last link may point to a file that does not exist yet.
std::filesystem::path linkTarget(const std::filesystem::path& file) {
  constexpr int mostLinks = 40;
  std::filesystem::path target = file;
  for (int i = 0; i < mostLinks; ++i) {
    std::error_code error;
    const auto next = std::filesystem::read_symlink(target, error);
    if (error) {
      break;
    }
    target = target.parent_path() / next;
  }
  return target;
}

bool mayWrite(const std::filesystem::path& file) {
  return ::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0;
}

Status renameOver(const std::filesystem::path& file, const std::filesystem::path& target, bool durable) {
  Status status = beforeFileCall(FileCall::rename, target);
  if (status) {
    status = answerOf(::rename(file.c_str(), target.c_str()));
  }
  // A name that cannot be synced makes the renaming less durable, but it has happened.
  if (status && durable) {
    static_cast<void>(syncName(target));
  }
  return status;
}

Status syncName(const std::filesystem::path& file) {
  const auto folder = file.parent_path();
  const FileHandle descriptor(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor) {
    return {};
  }
  Status status = beforeFileCall(FileCall::syncFolder, file);
  // Some file systems cannot sync folders, and need not.
  return !status || ::fsync(number(descriptor)) == 0 || errno == EINVAL ? std::move(status)
                                                                        : failureOf(errno);
}

Status removeFile(const std::filesystem::path& file) {
  Status watched = beforeFileCall(FileCall::remove, file);
  return watched ? answerOf(::unlink(file.c_str())) : watched;
}

Result<std::vector<std::filesystem::path>> namesOfFiles(const std::filesystem::path& folder) {
  const std::unique_ptr<DIR, decltype([](DIR* open) { ::closedir(open); })> entries(
      ::opendir(folder.c_str()));
  if (!entries) {
    return failureOf(errno);
  }
  std::vector<std::filesystem::path> names;
  while (const dirent* entry = ::readdir(entries.get())) {
    if (std::filesystem::path name = entry->d_name; kindOf(folder / name) == FileKind::regular) {
      names.push_back(std::move(name));
    }
  }
  return names;
}

bool isHeldOpen(const std::filesystem::path& file) {
  const FileHandle descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (!descriptor) {
    return failureOf(errno).failure() != Failure::missing;
  }
  if (!isRegular(number(descriptor))) {
    return false;
  }
#ifdef F_SETLEASE
  // The system grants the lease only if nobody else has the file open. Should somebody open it right now, the
  // system would tell by a signal: by one that is ignored unless a program asks for it.
  if (::fcntl(number(descriptor), F_SETSIG, SIGURG) == 0 &&
      ::fcntl(number(descriptor), F_SETLEASE, F_WRLCK) == 0) {
    ::fcntl(number(descriptor), F_SETLEASE, F_UNLCK);
    return false;
  }
#endif
  // Most network file systems have no leases, and nobody gets one on the file of another user.
  return true;
}

Result<std::uint64_t> randomNumber() {
  std::uint64_t number = 0;
  if (::getentropy(&number, sizeof number) != 0) {
    return failureOf(errno);
  }
  return number;
}

}  // namespace veltrano
