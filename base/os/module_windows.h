#ifndef VELTRANO_BASE_OS_MODULE_WINDOWS_H
#define VELTRANO_BASE_OS_MODULE_WINDOWS_H

// The DLL or program that this code is in.

#include <windows.h>

#include <filesystem>

namespace veltrano {

/// `flags` (GET_MODULE_HANDLE_EX_FLAG_PIN or _UNCHANGED_REFCOUNT) say what becomes of its reference count.
HMODULE ownModule(DWORD flags);

/// Full path of a module, of any length; null is the program.
std::filesystem::path modulePath(HMODULE module);

}  // namespace veltrano

#endif
