#ifndef VELTRANO_DATABASE_VALUES_DATES_H
#define VELTRANO_DATABASE_VALUES_DATES_H

// Automation dates: days since 1899-12-30, years 100 to 9999. The fraction is the time of day and counts upwards
// before the origin, too: -1.25 is 6 o'clock on 1899-12-29.

#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>

#include "veltrano/value.h"

namespace veltrano {

inline constexpr std::chrono::sys_days dateOrigin{std::chrono::year(1899) / 12 / 30};
inline constexpr std::int32_t firstDay = -657434;  ///< 0100-01-01
inline constexpr std::int32_t lastDay = 2958465;   ///< 9999-12-31

struct Moment {
  std::int32_t day = 0;     ///< days since the origin
  std::int32_t second = 0;  ///< of the day, rounded
};

inline bool isDateInRange(double days) {
  return days > firstDay - 1 && days < lastDay + 1;
}

/// Empty if the date is out of range.
inline std::optional<Moment> splitDate(Date date) {
  if (!isDateInRange(date.days)) {
    return std::nullopt;
  }
  const double whole = std::trunc(date.days);
  Moment moment{static_cast<std::int32_t>(whole),
                static_cast<std::int32_t>(std::lround(std::fabs(date.days - whole) * 86400.0))};
  if (moment.second == 86400) {
    const bool last = moment.day == lastDay;
    moment = last ? Moment{lastDay, 86399} : Moment{moment.day + 1, 0};
  }
  return moment;
}

inline Date joinDate(std::int32_t day, double secondOfDay) {
  const double fraction = secondOfDay / 86400.0;
  return Date{day < 0 ? day - fraction : day + fraction};
}

}  // namespace veltrano

#endif
