#include "base/files/random_access.h"

#include <system_error>
#include <utility>

#include "base/files/file.h"
#include "base/trace.h"

namespace veltrano {

namespace {

std::span<char> asCharacters(std::span<std::uint8_t> bytes) {
  return {reinterpret_cast<char*>(bytes.data()), bytes.size()};
}

class SystemFile final : public RandomAccessFile {
 public:
  /// `newName`: the file may just have been made; empty if it was there.
  SystemFile(File file, std::filesystem::path newName)
      : file_(std::move(file)), newName_(std::move(newName)) {}

  std::optional<std::size_t> readAt(std::uint64_t offset, std::span<std::uint8_t> target) override {
    const auto count = file_.readAt(offset, asCharacters(target));
    return succeeded(count.status()) ? std::optional(*count) : std::nullopt;
  }
  bool writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
    return succeeded(file_.writeAt(offset, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
  }
  std::optional<std::uint64_t> size() override {
    const auto size = file_.size();
    return succeeded(size.status()) ? std::optional(*size) : std::nullopt;
  }
  bool resize(std::uint64_t size) override { return succeeded(file_.resize(size)); }
  bool sync() override {
    if (!succeeded(file_.sync())) {
      return false;
    }
    const std::filesystem::path name = std::exchange(newName_, {});
    return name.empty() || succeeded(syncName(name));
  }

 private:
  static bool succeeded(const Status& status) {
    if (!status) {
      trace("A step on the database or its journal failed: ", status, ".");
    }
    return static_cast<bool>(status);
  }

  File file_;
  std::filesystem::path newName_;  // until it has been synced
};

Opening openingOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::read:
      return Opening::lockedRead;
    case OpenMode::write:
      return Opening::lockedChange;
    case OpenMode::create:
      return Opening::lockedChangeNew;
  }
  return {};
}

class SystemFiles final : public FileSystem {
 public:
  Result<std::unique_ptr<RandomAccessFile>> open(const std::filesystem::path& file, OpenMode mode) override {
    auto opened = File::open(file, openingOf(mode));
    if (!opened) {
      return opened.status();
    }
    return std::make_unique<SystemFile>(*std::move(opened),
                                        mode == OpenMode::create ? file : std::filesystem::path());
  }

  bool remove(const std::filesystem::path& file) override { return static_cast<bool>(removeFile(file)); }

  // An entry that nobody has open is left over from a program that died.
  bool lockFileInUse(const std::filesystem::path& lockFile) override {
    std::error_code error;
    const auto size = std::filesystem::file_size(lockFile, error);
    return !error && size > 0 && isHeldOpen(lockFile);
  }
};

}  // namespace

FileSystem& systemFiles() {
  // Never destroyed: databases that are global objects of the host close after this library's own.
  static SystemFiles& files = *new SystemFiles;
  return files;
}

}  // namespace veltrano
