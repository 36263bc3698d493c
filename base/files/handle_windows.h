#ifndef VELTRANO_BASE_FILES_HANDLE_WINDOWS_H
#define VELTRANO_BASE_FILES_HANDLE_WINDOWS_H

// How files are opened. For the *_windows.cpp files only.

#include <windows.h>

#include <filesystem>

#include "base/files/file.h"

namespace veltrano {

inline HANDLE handleOf(const FileHandle& file) {
  return reinterpret_cast<HANDLE>(file.get());
}

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Holds none if the file cannot be opened; GetLastError says why.
inline FileHandle openHandle(const std::filesystem::path& file, DWORD access, DWORD share, DWORD disposition,
                             DWORD flags = FILE_ATTRIBUTE_NORMAL) {
  return FileHandle(reinterpret_cast<std::intptr_t>(
      CreateFileW(file.c_str(), access, share, nullptr, disposition, flags, nullptr)));
}

}  // namespace veltrano

#endif
