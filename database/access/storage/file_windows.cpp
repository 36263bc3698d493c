#include <windows.h>

#include <algorithm>
#include <utility>

#include "database/access/storage/file.h"

namespace veltrano::access {

namespace {

class WindowsFile final : public RandomAccessFile {
 public:
  explicit WindowsFile(HANDLE handle) : handle_(handle) {}
  WindowsFile(const WindowsFile&) = delete;
  WindowsFile& operator=(const WindowsFile&) = delete;
  ~WindowsFile() override { ::CloseHandle(handle_); }

  std::optional<std::size_t> readAt(std::uint64_t offset, MutableBytes target) override {
    std::size_t done = 0;
    while (done < target.size()) {
      OVERLAPPED place = placeOf(offset + done);
      DWORD got = 0;
      if (::ReadFile(handle_, target.data() + done, piece(target.size() - done), &got, &place) == 0) {
        if (::GetLastError() == ERROR_HANDLE_EOF) {
          break;
        }
        return std::nullopt;
      }
      if (got == 0) {
        break;
      }
      done += got;
    }
    return done;
  }

  bool writeAt(std::uint64_t offset, Bytes bytes) override {
    while (!bytes.empty()) {
      OVERLAPPED place = placeOf(offset);
      DWORD put = 0;
      if (::WriteFile(handle_, bytes.data(), piece(bytes.size()), &put, &place) == 0 || put == 0) {
        return false;
      }
      bytes = bytes.subspan(put);
      offset += put;
    }
    return true;
  }

  std::optional<std::uint64_t> size() override {
    LARGE_INTEGER length = {};
    if (::GetFileSizeEx(handle_, &length) == 0) {
      return std::nullopt;
    }
    return static_cast<std::uint64_t>(length.QuadPart);
  }

  bool resize(std::uint64_t size) override {
    LARGE_INTEGER place = {};
    place.QuadPart = static_cast<LONGLONG>(size);
    return ::SetFilePointerEx(handle_, place, nullptr, FILE_BEGIN) != 0 && ::SetEndOfFile(handle_) != 0;
  }

  bool sync() override { return ::FlushFileBuffers(handle_) != 0; }

 private:
  static OVERLAPPED placeOf(std::uint64_t offset) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
  }
  static DWORD piece(std::size_t size) { return static_cast<DWORD>(std::min<std::size_t>(size, 1U << 30)); }

  HANDLE handle_;
};

OpenFailure failureOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
      return OpenFailure::missing;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return OpenFailure::inUse;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return OpenFailure::notWritable;
    default:
      return OpenFailure::other;
  }
}

class WindowsFiles final : public FileSystem {
 public:
  std::unique_ptr<RandomAccessFile> open(const std::filesystem::path& file, OpenMode mode,
                                         OpenFailure& failure) override {
    // Sharing reads only: a writer keeps everybody else from opening, except for those whose reading allows
    // writers.
    const DWORD access = mode == OpenMode::read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    const HANDLE handle = ::CreateFileW(file.c_str(), access, FILE_SHARE_READ, nullptr,
                                        mode == OpenMode::create ? OPEN_ALWAYS : OPEN_EXISTING,
                                        FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
      failure = failureOf(::GetLastError());
      return nullptr;
    }
    auto opened = std::make_unique<WindowsFile>(handle);
    if (::GetFileType(handle) != FILE_TYPE_DISK) {
      failure = OpenFailure::other;
      return nullptr;
    }
    return opened;
  }

  bool remove(const std::filesystem::path& file) override { return ::DeleteFileW(file.c_str()) != 0; }

  // The other program keeps its lock file open; one that opens for us alone is left over.
  bool lockFileInUse(const std::filesystem::path& lockFile) override {
    const HANDLE handle = ::CreateFileW(lockFile.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
      const DWORD error = ::GetLastError();
      return error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND;
    }
    ::CloseHandle(handle);
    return false;
  }
};

}  // namespace

FileSystem& systemFiles() {
  static WindowsFiles files;
  return files;
}

std::optional<FileNumber> fileNumber(const std::filesystem::path& file) {
  // Asking for no access at all is allowed whatever another user has reserved.
  const HANDLE handle = ::CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return std::nullopt;
  }
  BY_HANDLE_FILE_INFORMATION info = {};
  const bool known = ::GetFileInformationByHandle(handle, &info) != 0;
  ::CloseHandle(handle);
  if (!known) {
    return std::nullopt;
  }
  return FileNumber{info.dwVolumeSerialNumber,
                    (static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow};
}

}  // namespace veltrano::access
