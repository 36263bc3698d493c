#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <string>

#include "base/os/interruption.h"

namespace veltrano {

namespace {

std::atomic<bool> noted = false;
std::wstring unfinishedFile;

// In a thread of its own.
BOOL WINAPI note(DWORD event) {
  if (noted.exchange(true)) {
    DeleteFileW(unfinishedFile.c_str());
    return FALSE;
  }
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
    // The console closes or the session ends: the system ends the process when this returns.
    constexpr DWORD longEnough = 10000;
    Sleep(longEnough);
  }
  return TRUE;
}

}  // namespace

void noteInterruptions(const std::filesystem::path& unfinished) {
  SetConsoleCtrlHandler(note, FALSE);
  unfinishedFile = unfinished.native();
  SetConsoleCtrlHandler(note, TRUE);
}

bool interrupted() {
  return noted;
}

void endInterrupted() {
  std::_Exit(130);
}

}  // namespace veltrano
