#ifndef VELTRANO_BASE_OS_CLOCK_H
#define VELTRANO_BASE_OS_CLOCK_H

// The local time of day, read anew at each call, and short pauses.

namespace veltrano {

/// Local date and time; month 1 to 12, day 1 to 31, hour 0 to 23, millisecond 0 to 999.
struct LocalTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

LocalTime localTime();

/// Seconds since local midnight in steps of a hundredth, in single precision as the host runtime's timer has
/// them: what is derived from it is the same within a hundredth.
float secondsSinceMidnight();

/// The calling thread sleeps.
void pauseThread(int milliseconds);

}  // namespace veltrano

#endif
