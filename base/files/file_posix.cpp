#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "base/files/calls.h"
#include "base/files/file.h"
#include "base/os/owned.h"

namespace veltrano {

namespace {

using Descriptor = Owned<int, [](int number) { ::close(number); }, -1>;

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
  return {kind(), std::strerror(error)};
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

bool isRegular(int descriptor) {
  struct stat status = {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
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

/// Repeats `call`, which moves up to as many bytes as it is told and answers how many, until all are moved or
/// it answers 0.
template <typename Call>
Result<std::size_t> moveAll(std::size_t size, Call call) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = call(done, size - done);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      return failureOf(errno);
    }
    if (count == 0) {
      break;
    }
    done += static_cast<std::size_t>(count);
  }
  return done;
}

Status writtenAll(const Result<std::size_t>& count, std::size_t size) {
  if (!count) {
    return count.status();
  }
  return *count == size ? Status() : Status(Failure::other, "the system takes no more");
}

}  // namespace

struct File::State {
  Descriptor descriptor;
  std::filesystem::path name;

  [[nodiscard]] int number() const { return descriptor.get(); }
};

File::File(std::unique_ptr<State> state) : state_(std::move(state)) {}
File::File(File&&) noexcept = default;
File& File::operator=(File&&) noexcept = default;
File::~File() = default;

Result<File> File::open(const std::filesystem::path& file, Opening opening) {
  const HowToOpen how = howTo(opening);
  if (Status watched = beforeFileCall((how.flags & O_EXCL) != 0 ? FileCall::create : FileCall::open, file);
      !watched) {
    return watched;
  }
  Descriptor descriptor(::open(file.c_str(), how.flags | O_CLOEXEC | O_NOCTTY, how.mode));
  if (!descriptor) {
    return failureOf(errno);
  }
  if (Status locked = lock(descriptor.get(), opening, how.lock); !locked) {
    return locked;
  }
  if ((how.flags & O_NONBLOCK) != 0 && !isRegular(descriptor.get())) {
    if (opening == Opening::read) {
      // The other end of a pipe may be about to come.
      constexpr int milliseconds = 1000;
      pollfd readable = {descriptor.get(), POLLIN, 0};
      ::poll(&readable, 1, milliseconds);
    }
    ::fcntl(descriptor.get(), F_SETFL, how.flags & O_APPEND);
  }
  return File(std::make_unique<State>(State{std::move(descriptor), file}));
}

Result<std::size_t> File::read(std::span<char> target) {
  if (Status watched = beforeFileCall(FileCall::read, state_->name); !watched) {
    return watched;
  }
  return moveAll(target.size(), [&](std::size_t done, std::size_t size) {
    return ::read(state_->number(), target.data() + done, size);
  });
}

Status File::write(std::string_view bytes) {
  if (Status watched = beforeFileCall(FileCall::write, state_->name); !watched) {
    return watched;
  }
  return writtenAll(moveAll(bytes.size(),
                            [&](std::size_t done, std::size_t size) {
                              return ::write(state_->number(), bytes.data() + done, size);
                            }),
                    bytes.size());
}

Result<std::size_t> File::readAt(std::uint64_t offset, std::span<char> target) {
  if (Status watched = beforeFileCall(FileCall::read, state_->name); !watched) {
    return watched;
  }
  return moveAll(target.size(), [&](std::size_t done, std::size_t size) {
    return ::pread(state_->number(), target.data() + done, size, static_cast<off_t>(offset + done));
  });
}

Status File::writeAt(std::uint64_t offset, std::string_view bytes) {
  if (Status watched = beforeFileCall(FileCall::write, state_->name); !watched) {
    return watched;
  }
  return writtenAll(moveAll(bytes.size(),
                            [&](std::size_t done, std::size_t size) {
                              return ::pwrite(state_->number(), bytes.data() + done, size,
                                              static_cast<off_t>(offset + done));
                            }),
                    bytes.size());
}

Result<std::uint64_t> File::size() {
  struct stat status = {};
  if (::fstat(state_->number(), &status) != 0) {
    return failureOf(errno);
  }
  return static_cast<std::uint64_t>(status.st_size);
}

Status File::resize(std::uint64_t size) {
  Status watched = beforeFileCall(FileCall::resize, state_->name);
  return watched ? answerOf(::ftruncate(state_->number(), static_cast<off_t>(size))) : watched;
}

Status File::sync() {
  Status watched = beforeFileCall(FileCall::sync, state_->name);
  return watched ? answerOf(::fsync(state_->number())) : watched;
}

bool File::takeRightsOf(const std::filesystem::path& model) {
  struct stat wanted = {};
  struct stat own = {};
  if (::stat(model.c_str(), &wanted) != 0 || ::fstat(state_->number(), &own) != 0) {
    return false;
  }
  // Only the superuser may give a file to another user. The rights of a group are not for another one.
  const bool sameOwner = own.st_uid == wanted.st_uid && own.st_gid == wanted.st_gid;
  return (sameOwner || ::fchown(state_->number(), wanted.st_uid, wanted.st_gid) == 0) &&
         ::fchmod(state_->number(), wanted.st_mode & 07777) == 0;
}

bool File::onDisk() {
  return isRegular(state_->number());
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
  const Descriptor descriptor(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor) {
    return {};
  }
  Status status = beforeFileCall(FileCall::syncFolder, file);
  // Some file systems cannot sync folders, and need not.
  return !status || ::fsync(descriptor.get()) == 0 || errno == EINVAL ? std::move(status) : failureOf(errno);
}

Status removeFile(const std::filesystem::path& file) {
  Status watched = beforeFileCall(FileCall::remove, file);
  return watched ? answerOf(::unlink(file.c_str())) : watched;
}

bool isHeldOpen(const std::filesystem::path& file) {
  const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (!descriptor) {
    return failureOf(errno).failure() != Failure::missing;
  }
  if (!isRegular(descriptor.get())) {
    return false;
  }
#ifdef F_SETLEASE
  // The system grants the lease only if nobody else has the file open. Should somebody open it right now, the
  // system would tell by a signal: by one that is ignored unless a program asks for it.
  if (::fcntl(descriptor.get(), F_SETSIG, SIGURG) == 0 &&
      ::fcntl(descriptor.get(), F_SETLEASE, F_WRLCK) == 0) {
    ::fcntl(descriptor.get(), F_SETLEASE, F_UNLCK);
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
