#ifndef VELTRANO_DATABASE_VALUES_USER_LOCALE_H
#define VELTRANO_DATABASE_VALUES_USER_LOCALE_H

// Texts that are not in the library's own form of a value mean what they mean to the user: "12,75" and
// "3/4/2026".
//
// On Windows the system's automation conversions read them, with the settings that the user has made.
// Elsewhere there is no such conversion. There the decimal separator, the thousands separator and the order
// of day and month come from the locale that the environment names (LC_ALL, LC_NUMERIC, LC_TIME, LANG) when
// one is asked for first, whatever setlocale has been called with; dateFromText says which dates are read.

#include <optional>
#include <string>
#include <string_view>

#include "veltrano/value.h"

namespace veltrano {

/// The number that `text` stands for, in the library's own form ("12.75") with all its digits. Empty if it is
/// not one.
std::optional<std::string> ownFormOfNumber(std::string_view text);

std::optional<Date> dateInUserLocale(std::string_view text);

/// Reads the user's words for true and false.
std::optional<bool> flagInUserLocale(std::string_view text);

}  // namespace veltrano

#endif
