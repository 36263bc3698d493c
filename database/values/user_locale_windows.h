#ifndef VELTRANO_DATABASE_VALUES_USER_LOCALE_WINDOWS_H
#define VELTRANO_DATABASE_VALUES_USER_LOCALE_WINDOWS_H

#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

/// ownFormOfNumber (user_locale.h) in the locale of that number (an LCID) in place of the user's.
std::optional<std::string> ownFormOfNumber(std::string_view text, unsigned long locale);

}  // namespace veltrano

#endif
