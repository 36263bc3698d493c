#ifndef VELTRANO_DATABASE_VALUES_CURRENT_DATE_H
#define VELTRANO_DATABASE_VALUES_CURRENT_DATE_H

#include "veltrano/value.h"

namespace veltrano {

enum class CurrentDate {
  now,
  today,      ///< at midnight
  timeOfDay,  ///< on day 0
};

/// What Now(), Date() and Time() are in expressions of Access, in local time, to the second.
Date currentDate(CurrentDate part);

}  // namespace veltrano

#endif
