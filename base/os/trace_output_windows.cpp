#include <windows.h>

#include <algorithm>

#include "base/files/paths.h"
#include "base/os/owned.h"
#include "base/os/trace_output.h"

namespace veltrano {

namespace {

using Mutex = Owned<HANDLE, [](HANDLE mutex) { CloseHandle(mutex); }>;

/// Calls `read` with a larger and larger buffer until it fits; `read` answers the number of characters that
/// there are, without the final zero.
template <typename Read>
std::wstring readWhole(Read read) {
  std::wstring text(MAX_PATH, L'\0');
  for (;;) {
    const std::size_t length = read(text.data(), text.size());
    if (length < text.size()) {
      text.resize(length);
      return text;
    }
    text.resize(length + 1);
  }
}

std::wstring fromEnvironment() {
  return readWhole([](wchar_t* buffer, std::size_t size) {
    return GetEnvironmentVariableW(L"VELTRANO_TRACE", buffer, static_cast<DWORD>(size));
  });
}

std::wstring fromRegistry() {
  return readWhole([](wchar_t* buffer, std::size_t size) -> std::size_t {
    const std::size_t room = size * sizeof(wchar_t);
    auto bytes = static_cast<DWORD>(room);
    const LSTATUS result = RegGetValueW(HKEY_CURRENT_USER, L"Software\\VeltranoFrameWork", L"Trace",
                                        RRF_RT_REG_SZ, nullptr, buffer, &bytes);
    if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) {
      return 0;
    }
    const std::size_t length = bytes / sizeof(wchar_t) - 1;
    return result == ERROR_SUCCESS ? length : std::max(length, size);
  });
}

}  // namespace

std::filesystem::path traceSetting() {
  const std::wstring setting = fromEnvironment();
  return setting.empty() ? fromRegistry() : setting;
}

void writeDebugOutput(const std::string& line) {
  OutputDebugStringW(pathFromUtf8(line).c_str());
}

ProcessAndThread processAndThread() {
  return {GetCurrentProcessId(), GetCurrentThreadId()};
}

// A writer of another user, whose mutex cannot be opened, or one that does not come to its end is not waited for.
void writeInTurn(const std::function<void()>& write) {
  const Mutex mutex(CreateMutexW(nullptr, FALSE, L"Global\\VeltranoFrameWorkTrace"));
  constexpr DWORD mostMilliseconds = 1000;
  const DWORD result = mutex ? WaitForSingleObject(mutex.get(), mostMilliseconds) : WAIT_FAILED;
  write();
  if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) {
    ReleaseMutex(mutex.get());
  }
}

const char* const systemLineEnd = "\r\n";

}  // namespace veltrano
