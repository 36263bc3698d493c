#include <sys/time.h>

#include <ctime>

#include "base/os/clock.h"

namespace veltrano {

LocalTime localTime() {
  timeval now = {};
  gettimeofday(&now, nullptr);
  std::tm local = {};
  if (localtime_r(&now.tv_sec, &local) == nullptr) {
    return {};
  }
  constexpr int microsecondsOfAMillisecond = 1'000;
  return {local.tm_year + 1900,
          local.tm_mon + 1,
          local.tm_mday,
          local.tm_hour,
          local.tm_min,
          local.tm_sec,
          static_cast<int>(now.tv_usec) / microsecondsOfAMillisecond};
}

float secondsSinceMidnight() {
  timeval now = {};
  gettimeofday(&now, nullptr);
  std::tm local = {};
  if (localtime_r(&now.tv_sec, &local) == nullptr) {
    return 0;
  }
  const int seconds = (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
  constexpr int microsecondsOfAHundredth = 10'000;
  const auto hundredths = static_cast<int>(now.tv_usec / microsecondsOfAHundredth);
  return static_cast<float>(seconds + hundredths / 100.0);
}

void pauseThread(int milliseconds) {
  constexpr long nanosecondsOfAMillisecond = 1'000'000;
  const timespec duration = {milliseconds / 1000, milliseconds % 1000 * nanosecondsOfAMillisecond};
  nanosleep(&duration, nullptr);
}

}  // namespace veltrano
