#ifndef VELTRANO_BASE_FILES_HANDLE_WINDOWS_H
#define VELTRANO_BASE_FILES_HANDLE_WINDOWS_H

// The owner of kernel handles, and how files are opened. For the *_windows.cpp files only.

#include <windows.h>

#include <filesystem>

#include "base/os/owned.h"

namespace veltrano {

inline void closeHandle(HANDLE handle) {
  CloseHandle(handle);
}

using Handle = Owned<HANDLE, closeHandle>;

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Holds none if the file cannot be opened; GetLastError says why.
inline Handle openHandle(const std::filesystem::path& file, DWORD access, DWORD share, DWORD disposition,
                         DWORD flags = FILE_ATTRIBUTE_NORMAL) {
  const HANDLE handle = CreateFileW(file.c_str(), access, share, nullptr, disposition, flags, nullptr);
  return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

}  // namespace veltrano

#endif
