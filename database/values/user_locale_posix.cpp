#include <langinfo.h>
#include <locale.h>  // newlocale is POSIX's, not C++'s

#include "database/values/date_from_text.h"
#include "database/values/number_from_text.h"
#include "database/values/user_locale.h"

namespace veltrano {

namespace {

struct UserFormats {
  std::string decimalPoint = ".";
  std::string thousands;
  DateOrder order = DateOrder::monthFirst;
};

const UserFormats& userFormats() {
  static const UserFormats& formats = *new UserFormats([] {  // outlives global objects of the host
    UserFormats read;
    if (const locale_t user = ::newlocale(LC_NUMERIC_MASK | LC_TIME_MASK, "", nullptr); user != nullptr) {
      read.decimalPoint = ::nl_langinfo_l(RADIXCHAR, user);
      read.thousands = ::nl_langinfo_l(THOUSEP, user);
      const std::string_view date = ::nl_langinfo_l(D_FMT, user);
      read.order = date.find_first_of("de") < date.find('m') ? DateOrder::dayFirst : DateOrder::monthFirst;
      ::freelocale(user);
    }
    return read;
  }());
  return formats;
}

}  // namespace

std::optional<std::string> ownFormOfNumber(std::string_view text) {
  return ownFormOfNumber(text, userFormats().decimalPoint, userFormats().thousands);
}

std::optional<Date> dateInUserLocale(std::string_view text) {
  return dateFromText(text, userFormats().order);
}

std::optional<bool> flagInUserLocale(std::string_view) {
  return std::nullopt;
}

}  // namespace veltrano
