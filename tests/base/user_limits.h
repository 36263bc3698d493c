#ifndef VELTRANO_TESTS_BASE_USER_LIMITS_H
#define VELTRANO_TESTS_BASE_USER_LIMITS_H

// What a user may not do, while an object of these exists.

#include <filesystem>

#ifndef _WIN32
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#endif

namespace veltrano::tests {

/// A folder in which nobody may make a file; `files` is what may be done with those that are there. The
/// superuser, who may do anything, becomes somebody else meanwhile. Under Windows it does nothing.
class NoNewFilesIn {
 public:
  explicit NoNewFilesIn(const std::filesystem::path& folder,
                        [[maybe_unused]] std::filesystem::perms files = std::filesystem::perms(0666))
      : folder_(folder) {
#ifndef _WIN32
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      std::filesystem::permissions(entry.path(), files);
    std::filesystem::permissions(folder, std::filesystem::perms(0555));
    constexpr uid_t nobody = 65534;
    superuser_ = ::geteuid() == 0;
    enforced_ = !superuser_ || ::seteuid(nobody) == 0;
#endif
  }
  NoNewFilesIn(const NoNewFilesIn&) = delete;
  NoNewFilesIn& operator=(const NoNewFilesIn&) = delete;
  ~NoNewFilesIn() {
#ifndef _WIN32
    if (superuser_ && ::seteuid(0) != 0) std::abort();
    std::filesystem::permissions(folder_, std::filesystem::perms(0755));
#endif
  }

  [[nodiscard]] bool enforced() const {
    return enforced_;
  }

 private:
  std::filesystem::path folder_;
  bool superuser_ = false;
  bool enforced_ = false;
};

#ifndef _WIN32
/// A disk on which no file can grow beyond `size` bytes.
class DiskLimit {
 public:
  explicit DiskLimit(rlim_t size) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    previous_ = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {size, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  DiskLimit(const DiskLimit&) = delete;
  DiskLimit& operator=(const DiskLimit&) = delete;
  ~DiskLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, previous_);
  }

 private:
  rlimit before_{};
  void (*previous_)(int) = SIG_DFL;
};
#endif

}  // namespace veltrano::tests

#endif
