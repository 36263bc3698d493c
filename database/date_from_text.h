#ifndef VELTRANO_DATABASE_DATE_FROM_TEXT_H
#define VELTRANO_DATABASE_DATE_FROM_TEXT_H

#include <optional>
#include <string_view>

#include "base/value.h"

namespace veltrano {

/// Reads a date, a time of day (on day 0) or a date and a time after a blank or `T`:
/// "2026-11-21", "11/21/2026", "21.11.2026", "14:05", "2:05:30 pm". Month first where a slash or hyphen
/// leaves the order open, day first with points; the other order if that alone is a date. Years of two digits
/// are 1930 to 2029.
std::optional<Date> dateFromText(std::string_view text);

}  // namespace veltrano

#endif
