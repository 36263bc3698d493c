#ifndef VELTRANO_DATABASE_VALUES_DATE_FROM_TEXT_H
#define VELTRANO_DATABASE_VALUES_DATE_FROM_TEXT_H

#include <optional>
#include <string_view>

#include "veltrano/value.h"

namespace veltrano {

/// Reads the form in which dates are read back: "2026-11-21", "14:05:00" (on day 0), "2026-11-21 14:05:00", a
/// `T` in place of the blank, the time without seconds or with a fraction of one.
std::optional<Date> dateFromText(std::string_view text);

enum class DateOrder { monthFirst, dayFirst };

/// Reads what people write, too: "11/21/2026", "21.11.2026", "2:05:30 pm". With points the day comes first;
/// with slashes and hyphens `order` says what does, unless only the other order is a date. Years of two
/// digits are 1930 to 2029.
std::optional<Date> dateFromText(std::string_view text, DateOrder order);

}  // namespace veltrano

#endif
