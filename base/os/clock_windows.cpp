#include <windows.h>

#include "base/os/clock.h"

namespace veltrano {

LocalTime localTime() {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

float secondsSinceMidnight() {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  const int seconds = (now.wHour * 60 + now.wMinute) * 60 + now.wSecond;
  constexpr int millisecondsOfAHundredth = 10;
  const int hundredths = now.wMilliseconds / millisecondsOfAHundredth;
  return static_cast<float>(seconds + hundredths / 100.0);
}

void pauseThread(int milliseconds) {
  Sleep(static_cast<DWORD>(milliseconds));
}

}  // namespace veltrano
