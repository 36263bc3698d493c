#include <windows.h>

#include <ntsecapi.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "base/files/calls.h"
#include "base/files/file.h"
#include "base/files/handle_windows.h"

namespace veltrano {

namespace {

Failure kindOfError(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
      return Failure::missing;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return Failure::exists;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_UNABLE_TO_REMOVE_REPLACED:
    case ERROR_USER_MAPPED_FILE:
      return Failure::inUse;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return Failure::notAllowed;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return Failure::full;
    default:
      return Failure::other;
  }
}

// In the system's own words they would be in the user's language.
std::string reasonOf(Failure failure) {
  switch (failure) {
    case Failure::missing:
      return "no such file or folder";
    case Failure::exists:
      return "the file exists";
    case Failure::inUse:
      return "another program has the file open";
    case Failure::notAllowed:
      return "access denied";
    case Failure::full:
      return "the disk is full";
    default:
      return "failed";
  }
}

Status failureOf(DWORD error) {
  const Failure failure = kindOfError(error);
  return {failure, reasonOf(failure) + ", system error " + std::to_string(error)};
}

Status answerOf(BOOL result) {
  return result != 0 ? Status() : failureOf(GetLastError());
}

/// The security descriptor with the access list only; empty where the file system has none.
std::vector<std::byte> accessListOf(const std::filesystem::path& file) {
  DWORD size = 0;
  GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> list(size);
  if (GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, list.data(), size, &size) == 0) {
    list.clear();
  }
  return list;
}

struct HowToOpen {
  DWORD access;
  DWORD share;
  DWORD disposition;
  DWORD flags;
};

// Who may open the file meanwhile is said here; a lock of its own is not needed.
HowToOpen howTo(Opening opening) {
  constexpr DWORD change = GENERIC_READ | GENERIC_WRITE;
  switch (opening) {
    case Opening::read:
      return {GENERIC_READ, shareAll, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN};
    case Opening::write:
      return {GENERIC_WRITE, shareAll, OPEN_EXISTING, 0};
    case Opening::change:
      return {change, shareAll, OPEN_EXISTING, 0};
    case Opening::createNew:
      return {GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL};
    case Opening::createPrivate:
      return {GENERIC_WRITE | WRITE_DAC, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL};
    case Opening::append:
      return {GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL};
    case Opening::appendShared:
      // Without the right to write elsewhere, the system itself finds the end at each write.
      return {FILE_APPEND_DATA | SYNCHRONIZE, shareAll, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL};
    case Opening::lockedRead:
      return {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS};
    case Opening::lockedChange:
      return {change, FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS};
    case Opening::lockedChangeNew:
      return {change, FILE_SHARE_READ, OPEN_ALWAYS, FILE_FLAG_RANDOM_ACCESS};
  }
  return {};
}

bool mustBeOnDisk(Opening opening) {
  return opening == Opening::lockedRead || opening == Opening::lockedChange ||
         opening == Opening::lockedChangeNew;
}

OVERLAPPED placeAt(std::optional<std::uint64_t> offset) {
  OVERLAPPED place = {};
  place.Offset = static_cast<DWORD>(offset.value_or(0));
  place.OffsetHigh = static_cast<DWORD>(offset.value_or(0) >> 32);
  return place;
}

DWORD transferSize(std::size_t size) {
  constexpr std::size_t largest = 1U << 24;
  return static_cast<DWORD>(std::min(size, largest));
}

/// What ReadFile and WriteFile mean by their answer.
Result<std::size_t> transferred(BOOL result, DWORD count) {
  const DWORD error = result != 0 ? ERROR_SUCCESS : GetLastError();
  if (error == ERROR_HANDLE_EOF || error == ERROR_BROKEN_PIPE) {
    return std::size_t{0};
  }
  return error == ERROR_SUCCESS ? Result<std::size_t>(count) : failureOf(error);
}

}  // namespace

void closeFileHandle(std::intptr_t file) {
  CloseHandle(reinterpret_cast<HANDLE>(file));
}

Result<File> File::open(const std::filesystem::path& file, Opening opening) {
  const HowToOpen how = howTo(opening);
  if (Status watched =
          beforeFileCall(how.disposition == CREATE_NEW ? FileCall::create : FileCall::open, file);
      !watched) {
    return watched;
  }
  FileHandle handle = openHandle(file, how.access, how.share, how.disposition, how.flags);
  if (!handle) {
    return failureOf(GetLastError());
  }
  if (mustBeOnDisk(opening) && GetFileType(handleOf(handle)) != FILE_TYPE_DISK) {
    return Status(Failure::other, "not a file on a disk");
  }
  return File(std::move(handle), file);
}

Result<std::size_t> File::readSome(std::optional<std::uint64_t> offset, std::span<char> target) {
  OVERLAPPED place = placeAt(offset);
  DWORD count = 0;
  const BOOL result = ReadFile(handleOf(handle_), target.data(), transferSize(target.size()), &count,
                               offset ? &place : nullptr);
  return transferred(result, count);
}

Result<std::size_t> File::writeSome(std::optional<std::uint64_t> offset, std::string_view bytes) {
  OVERLAPPED place = placeAt(offset);
  DWORD count = 0;
  const BOOL result = WriteFile(handleOf(handle_), bytes.data(), transferSize(bytes.size()), &count,
                                offset ? &place : nullptr);
  return transferred(result, count);
}

Result<std::uint64_t> File::size() {
  LARGE_INTEGER length = {};
  if (GetFileSizeEx(handleOf(handle_), &length) == 0) {
    return failureOf(GetLastError());
  }
  return static_cast<std::uint64_t>(length.QuadPart);
}

Status File::resize(std::uint64_t size) {
  if (Status watched = beforeFileCall(FileCall::resize, name_); !watched) {
    return watched;
  }
  LARGE_INTEGER place = {};
  place.QuadPart = static_cast<LONGLONG>(size);
  return answerOf(SetFilePointerEx(handleOf(handle_), place, nullptr, FILE_BEGIN) != 0 &&
                  SetEndOfFile(handleOf(handle_)) != 0);
}

Status File::sync() {
  Status watched = beforeFileCall(FileCall::sync, name_);
  return watched ? answerOf(FlushFileBuffers(handleOf(handle_))) : watched;
}

bool File::takeRightsOf(const std::filesystem::path& model) {
  const HANDLE handle = handleOf(handle_);
  WIN32_FILE_ATTRIBUTE_DATA old = {};
  if (GetFileAttributesExW(model.c_str(), GetFileExInfoStandard, &old) != 0) {
    FILE_BASIC_INFO info = {};
    info.CreationTime.LowPart = old.ftCreationTime.dwLowDateTime;
    info.CreationTime.HighPart = static_cast<LONG>(old.ftCreationTime.dwHighDateTime);
    info.FileAttributes = old.dwFileAttributes;
    SetFileInformationByHandle(handle, FileBasicInfo, &info, sizeof info);
  }
  // What the folder gives to its files is there already.
  auto rights = accessListOf(model);
  if (!rights.empty() && rights != accessListOf(name_)) {
    SetKernelObjectSecurity(handle, DACL_SECURITY_INFORMATION, rights.data());
  }
  return true;
}

bool File::onDisk() {
  return GetFileType(handleOf(handle_)) == FILE_TYPE_DISK;
}

FileKind kindOf(const std::filesystem::path& file) {
  // "NUL", "CON", a pipe: opens, but is not a file on a disk. Folders do not open this way.
  const FileHandle handle = openHandle(file, 0, shareAll, OPEN_EXISTING);
  if (handle && GetFileType(handleOf(handle)) != FILE_TYPE_DISK) {
    return FileKind::device;
  }
  const DWORD attributes = GetFileAttributesW(file.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    return FileKind::missing;
  }
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileKind::folder : FileKind::regular;
}

std::filesystem::path linkTarget(const std::filesystem::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return file;
  }
  const FileHandle handle = openHandle(file, 0, shareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  std::wstring name(32768, L'\0');
  const DWORD length =
      handle ? GetFinalPathNameByHandleW(handleOf(handle), name.data(), static_cast<DWORD>(name.size()), 0)
             : 0;
  if (length == 0 || length >= name.size()) {
    return file;
  }
  name.resize(length);
  return name;
}

bool mayWrite(const std::filesystem::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  return attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

Status renameOver(const std::filesystem::path& file, const std::filesystem::path& target, bool durable) {
  Status status = beforeFileCall(FileCall::rename, target);
  if (!status) {
    return status;
  }
  // Not ReplaceFile: it renames twice, and between the two a reader would find no file at all.
  const DWORD through = durable ? MOVEFILE_WRITE_THROUGH : 0;
  status = answerOf(MoveFileExW(file.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | through));
  // That is also the answer where another program has the target open. A user who may make a file beside it is
  // seldom refused for another reason.
  return status.failure() == Failure::notAllowed ? Status(Failure::inUse, status.reason()) : status;
}

// Names are kept by the file system's own journal.
Status syncName(const std::filesystem::path&) {
  return {};
}

Status removeFile(const std::filesystem::path& file) {
  Status watched = beforeFileCall(FileCall::remove, file);
  return watched ? answerOf(DeleteFileW(file.c_str())) : watched;
}

Result<std::vector<std::filesystem::path>> namesOfFiles(const std::filesystem::path& folder) {
  using Search = Owned<HANDLE, [](HANDLE search) { FindClose(search); }>;
  WIN32_FIND_DATAW entry = {};
  const HANDLE found = FindFirstFileW((folder / "*").c_str(), &entry);
  if (found == INVALID_HANDLE_VALUE) {
    return failureOf(GetLastError());
  }
  const Search search(found);
  std::vector<std::filesystem::path> names;
  do {
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      names.emplace_back(entry.cFileName);
    }
  } while (FindNextFileW(search.get(), &entry) != 0);
  return names;
}

bool isHeldOpen(const std::filesystem::path& file) {
  // A file that opens for us alone is open nowhere else.
  if (openHandle(file, GENERIC_READ, 0, OPEN_EXISTING)) {
    return false;
  }
  return kindOfError(GetLastError()) != Failure::missing;
}

Result<std::uint64_t> randomNumber() {
  std::uint64_t number = 0;
  if (RtlGenRandom(&number, sizeof number) == 0) {
    return Status(Failure::other, "the system gives no random numbers");
  }
  return number;
}

}  // namespace veltrano
