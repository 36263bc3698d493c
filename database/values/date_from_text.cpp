#include "database/values/date_from_text.h"

#include <algorithm>
#include <charconv>

#include "database/values/dates.h"

namespace veltrano {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Takes one to four digits from the front.
std::optional<int> takeNumber(std::string_view& text) {
  const std::size_t count =
      std::min(static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin()),
               std::size_t{5});
  if (count == 0 || count > 4) {
    return std::nullopt;
  }
  int number = 0;
  std::from_chars(text.data(), text.data() + count, number);
  text.remove_prefix(count);
  return number;
}

bool take(std::string_view& text, char wanted) {
  if (text.empty() || text.front() != wanted) {
    return false;
  }
  text.remove_prefix(1);
  return true;
}

/// The window of two-digit years that the host runtimes use.
int fullYear(int year, std::size_t digits) {
  if (digits > 2) {
    return year;
  }
  return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<std::int32_t> dayOf(int year, int month, int day) {
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok() || year < 100 || year > 9999) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>((std::chrono::sys_days(date) - dateOrigin).count());
}

/// Three numbers with the same separator. A first number of more than two digits is the year, and separated
/// by hyphens that is the own form, the only one that is read without an order. Otherwise the year is last.
std::optional<std::int32_t> readDate(std::string_view text, std::optional<DateOrder> order) {
  const std::string_view whole = text;
  const auto first = takeNumber(text);
  const std::size_t firstDigits = whole.size() - text.size();
  if (!first || text.empty() || std::string_view("-/.").find(text.front()) == std::string_view::npos ||
      (!order && (firstDigits < 3 || text.front() != '-'))) {
    return std::nullopt;
  }
  const char separator = text.front();
  take(text, separator);
  const auto second = takeNumber(text);
  if (!second || !take(text, separator)) {
    return std::nullopt;
  }
  const std::size_t thirdDigits = text.size();
  const auto third = takeNumber(text);
  if (!third || !text.empty()) {
    return std::nullopt;
  }
  if (firstDigits > 2) {
    return dayOf(*first, *second, *third);
  }
  const int year = fullYear(*third, thirdDigits);
  const auto monthFirst = dayOf(year, *first, *second);
  const auto dayFirst = dayOf(year, *second, *first);
  if (separator == '.' || order == DateOrder::dayFirst) {
    return dayFirst ? dayFirst : monthFirst;
  }
  return monthFirst ? monthFirst : dayFirst;
}

enum class Half { none, morning, afternoon };

/// Takes AM or PM, in any case, from the end.
Half takeHalf(std::string_view& text) {
  if (text.size() < 2 || (text.back() | 0x20) != 'm') {
    return Half::none;
  }
  const int letter = text[text.size() - 2] | 0x20;
  if (letter != 'a' && letter != 'p') {
    return Half::none;
  }
  text = trimmed(text.substr(0, text.size() - 2));
  return letter == 'a' ? Half::morning : Half::afternoon;
}

/// Seconds with an optional fraction.
std::optional<double> readSeconds(std::string_view& text) {
  const auto whole = takeNumber(text);
  if (!whole || *whole > 59) {
    return std::nullopt;
  }
  double seconds = *whole;
  if (take(text, '.')) {
    double place = 0.1;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1), place /= 10) {
      seconds += place * (text.front() - '0');
    }
  }
  return seconds;
}

std::optional<double> readTime(std::string_view text, bool mayHaveHalf) {
  const Half half = mayHaveHalf ? takeHalf(text) : Half::none;
  const auto hour = takeNumber(text);
  if (!hour || *hour > (half == Half::none ? 23 : 12) || (half != Half::none && *hour == 0)) {
    return std::nullopt;
  }
  std::optional<int> minute = 0;
  std::optional<double> second = 0.0;
  if (take(text, ':')) {
    minute = takeNumber(text);
    if (take(text, ':')) {
      second = readSeconds(text);
    }
  } else if (half == Half::none) {
    return std::nullopt;
  }
  if (!minute || *minute > 59 || !second || !text.empty()) {
    return std::nullopt;
  }
  const int hours = half == Half::none ? *hour : *hour % 12 + (half == Half::afternoon ? 12 : 0);
  return hours * 3600.0 + *minute * 60.0 + *second;
}

/// Without an order only the own form is read.
std::optional<Date> readMoment(std::string_view text, std::optional<DateOrder> order) {
  text = trimmed(text);
  if (const auto time = readTime(text, order.has_value())) {
    return joinDate(0, *time);
  }
  const std::size_t gap = text.find_first_of(" T\t");
  const auto day = readDate(text.substr(0, gap), order);
  if (!day) {
    return std::nullopt;
  }
  if (gap == std::string_view::npos) {
    return joinDate(*day, 0);
  }
  const auto time = readTime(trimmed(text.substr(gap + 1)), order.has_value());
  return time ? std::optional(joinDate(*day, *time)) : std::nullopt;
}

}  // namespace

std::optional<Date> dateFromText(std::string_view text) {
  return readMoment(text, std::nullopt);
}

std::optional<Date> dateFromText(std::string_view text, DateOrder order) {
  return readMoment(text, order);
}

}  // namespace veltrano
