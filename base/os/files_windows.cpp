#include "base/os/files.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "base/os/raw_output.h"
#include "base/text/code_page.h"
#include "base/trace.h"

namespace veltrano {

namespace {

constexpr DWORD largestTransfer = 1U << 24;
// Small enough to stay in the processor's cache while it is being looked at.
constexpr DWORD pieceSize = 256U * 1024;

void traceError(std::string_view member, const std::filesystem::path& file) {
  if (traceEnabled()) {
    traceSkipped(member, "system error " + std::to_string(GetLastError()), pathToAnsi(file));
  }
}

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  FileHandle(FileHandle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle() {
    if (handle_ != INVALID_HANDLE_VALUE) {
      // What failed before the close is what its caller will ask about.
      const DWORD error = GetLastError();
      CloseHandle(handle_);
      SetLastError(error);
    }
  }

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

FileHandle openFile(const std::filesystem::path& file, DWORD access, DWORD share, DWORD disposition,
                    DWORD flags = FILE_ATTRIBUTE_NORMAL) {
  return FileHandle(CreateFileW(file.c_str(), access, share, nullptr, disposition, flags, nullptr));
}

bool writeAll(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), largestTransfer));
    DWORD written = 0;
    if (WriteFile(file, bytes.data(), count, &written, nullptr) == 0 || written == 0) {
      return false;
    }
    bytes.remove_prefix(written);
  }
  return true;
}

bool writePieces(HANDLE file, std::span<const std::string_view> pieces) {
  return std::all_of(pieces.begin(), pieces.end(),
                     [file](std::string_view piece) { return writeAll(file, piece); });
}

// What a link finally names; the name itself for anything else.
std::filesystem::path followLinks(const std::filesystem::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return file;
  }
  constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const FileHandle handle = openFile(file, 0, shareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  std::wstring name(32768, L'\0');
  const DWORD length =
      handle ? GetFinalPathNameByHandleW(handle.get(), name.data(), static_cast<DWORD>(name.size()), 0) : 0;
  if (length == 0 || length >= name.size()) {
    return file;
  }
  name.resize(length);
  return name;
}

// "NUL", "CON", a pipe: opens, but is no file on a disk.
bool isDevice(const std::filesystem::path& file) {
  const FileHandle handle =
      openFile(file, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING);
  return handle && GetFileType(handle.get()) != FILE_TYPE_DISK;
}

std::filesystem::path temporaryBeside(const std::filesystem::path& file) {
  static std::atomic<unsigned> serial = 0;
  return file.parent_path() /
         (L"veltrano-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++serial) + L".tmp");
}

bool writeTemporary(const std::filesystem::path& temporary, std::span<const std::string_view> pieces,
                    Durability durability) {
  const FileHandle file = openFile(temporary, GENERIC_WRITE, 0, CREATE_NEW);
  return file && writePieces(file.get(), pieces) &&
         (durability == Durability::process || FlushFileBuffers(file.get()) != 0);
}

// ReplaceFile keeps the old file's rights and attributes; where the file system cannot do that, a plain move
// serves.
bool putInPlace(const std::filesystem::path& temporary, const std::filesystem::path& target, bool exists,
                Durability durability) {
  if (exists && ReplaceFileW(target.c_str(), temporary.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                             nullptr, nullptr) != 0) {
    return true;
  }
  const DWORD through = durability == Durability::power ? MOVEFILE_WRITE_THROUGH : 0;
  return MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | through) != 0;
}

std::int64_t nanoseconds(const FILETIME& time) {
  return static_cast<std::int64_t>((static_cast<std::uint64_t>(time.dwHighDateTime) << 32) |
                                   time.dwLowDateTime) *
         100;
}

class WindowsOutput final : public RawOutput {
 public:
  explicit WindowsOutput(FileHandle file) : file_(std::move(file)) {}
  bool write(std::string_view bytes) override { return writeAll(file_.get(), bytes); }

 private:
  FileHandle file_;
};

std::optional<std::string> readStart(const std::filesystem::path& file, std::size_t limit) {
  const FileHandle handle =
      openFile(file, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
               FILE_FLAG_SEQUENTIAL_SCAN);
  LARGE_INTEGER size = {};
  if (!handle || GetFileSizeEx(handle.get(), &size) == 0 ||
      static_cast<std::uint64_t>(size.QuadPart) > static_cast<std::uint64_t>(PTRDIFF_MAX)) {
    traceError("readStart", file);
    return std::nullopt;
  }
  std::string content(std::min(limit, static_cast<std::size_t>(size.QuadPart)), '\0');
  std::size_t length = 0;
  while (length < content.size()) {
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(content.size() - length, largestTransfer));
    DWORD count = 0;
    if (ReadFile(handle.get(), content.data() + length, wanted, &count, nullptr) == 0) {
      traceError("readStart", file);
      return std::nullopt;
    }
    if (count == 0) {
      break;
    }
    length += count;
  }
  content.resize(length);
  return content;
}

}  // namespace

std::optional<std::string> readWholeFile(const std::filesystem::path& file) {
  return readStart(file, PTRDIFF_MAX);
}

std::optional<IdentifiedText> readIdentified(const std::filesystem::path& file, std::size_t limit) {
  const auto identity = fileIdentity(file);
  auto text = identity ? readStart(file, limit) : std::nullopt;
  return text ? std::optional(IdentifiedText{*identity, *std::move(text)}) : std::nullopt;
}

bool readFileInPieces(const std::filesystem::path& file,
                      const std::function<bool(std::string_view piece)>& take) {
  const FileHandle handle =
      openFile(file, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
               FILE_FLAG_SEQUENTIAL_SCAN);
  const auto buffer = std::make_unique_for_overwrite<char[]>(pieceSize);
  for (;;) {
    DWORD count = 0;
    if (!handle || ReadFile(handle.get(), buffer.get(), pieceSize, &count, nullptr) == 0) {
      traceError("readFileInPieces", file);
      return false;
    }
    if (count == 0 || !take({buffer.get(), count})) {
      return true;
    }
  }
}

bool replaceFile(const std::filesystem::path& file, std::span<const std::string_view> pieces,
                 Durability durability) {
  if (file.empty()) {
    return false;
  }
  if (isDevice(file)) {
    const FileHandle device =
        openFile(file, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
    return device && writePieces(device.get(), pieces);
  }
  const auto target = followLinks(file);
  const DWORD attributes = GetFileAttributesW(target.c_str());
  const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
  if (exists && (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) {
    traceSkipped("replaceFile", "read-only file or folder");
    return false;
  }
  const auto temporary = temporaryBeside(target);
  if (!writeTemporary(temporary, pieces, durability) || !putInPlace(temporary, target, exists, durability)) {
    traceError("replaceFile", target);
    DeleteFileW(temporary.c_str());
    return false;
  }
  return true;
}

std::unique_ptr<RawOutput> RawOutput::create(const std::filesystem::path& file) {
  // Readers may watch the file grow; a second writer is refused. Emptying is a step of its own because creation
  // would refuse hidden files.
  FileHandle opened = openFile(file, GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS);
  if (!opened || (GetFileType(opened.get()) == FILE_TYPE_DISK && SetEndOfFile(opened.get()) == 0)) {
    traceError("OutputFile", file);
    return nullptr;
  }
  return std::make_unique<WindowsOutput>(std::move(opened));
}

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

std::int64_t fileClockNow() {
  FILETIME now = {};
  GetSystemTimeAsFileTime(&now);
  return nanoseconds(now);
}

// An embedded zero would silently cut the name on its way to the system and so name another file.
std::filesystem::path pathFromUtf16(std::u16string_view name) {
  if (name.find(u'\0') != std::u16string_view::npos) {
    return {};
  }
  return std::wstring(name.begin(), name.end());
}

std::filesystem::path pathFromUtf8(std::string_view name) {
  return pathFromUtf16(utf8ToUtf16(name));
}

std::string pathToAnsi(const std::filesystem::path& path) {
  const std::wstring& name = path.native();
  return utf16ToAnsi({reinterpret_cast<const char16_t*>(name.data()), name.size()});
}

}  // namespace veltrano
