#include "database/values/current_date.h"

#include "base/os/clock.h"
#include "database/values/dates.h"

namespace veltrano {

Date currentDate(CurrentDate part) {
  const LocalTime time = localTime();
  const std::chrono::sys_days date{std::chrono::year(time.year) / time.month / time.day};
  const auto day = static_cast<std::int32_t>((date - dateOrigin).count());
  const double second = time.hour * 3600.0 + time.minute * 60.0 + time.second;
  return joinDate(part == CurrentDate::timeOfDay ? 0 : day, part == CurrentDate::today ? 0 : second);
}

}  // namespace veltrano
