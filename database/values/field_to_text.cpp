#include "database/values/field_to_text.h"

#include <charconv>
#include <chrono>
#include <iterator>

#include "base/numbers/numbers.h"
#include "base/numbers/scaled_numbers.h"
#include "base/text/code_page.h"
#include "database/values/dates.h"

namespace veltrano {

namespace {

char* writeTwoDigits(char* to, unsigned value) {
  to[0] = static_cast<char>('0' + value / 10 % 10);
  to[1] = static_cast<char>('0' + value % 10);
  return to + 2;
}

char* writeTime(char* to, std::int32_t seconds) {
  const auto time = static_cast<unsigned>(seconds);
  to = writeTwoDigits(to, time / 3600);
  *to++ = ':';
  to = writeTwoDigits(to, time / 60 % 60);
  *to++ = ':';
  return writeTwoDigits(to, time % 60);
}

char* writeDay(char* to, std::int32_t days) {
  const std::chrono::year_month_day date(dateOrigin + std::chrono::days(days));
  const auto year = static_cast<unsigned>(static_cast<int>(date.year()));
  to = writeTwoDigits(to, year / 100);
  to = writeTwoDigits(to, year % 100);
  *to++ = '-';
  to = writeTwoDigits(to, static_cast<unsigned>(date.month()));
  *to++ = '-';
  return writeTwoDigits(to, static_cast<unsigned>(date.day()));
}

}  // namespace

void integerToText(std::int64_t value, std::string& text) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  text.assign(digits, end);
}

void singleToText(float value, std::string& text) {
  text.assign(singleNumberText(value).view());
}

void doubleToText(double value, std::string& text) {
  text.assign(generalNumberText(value).view());
}

void currencyToText(Currency value, std::string& text) {
  currencyToText(value.tenThousandths, text);
}

void decimalToText(const Decimal& value, std::string& text) {
  scaledToText(value.negative, value.magnitude, value.scale, text);
}

void booleanToText(bool value, std::string& text) {
  text.assign(value ? "True" : "False");
}

bool dateToText(Date value, std::string& text) {
  text.clear();
  const auto moment = splitDate(value);
  if (!moment) {
    return false;
  }
  char written[std::size("9999-12-31 23:59:59")];
  char* end = written;
  if (moment->day != 0) {
    end = writeDay(end, moment->day);
  }
  if (moment->day != 0 && moment->second != 0) {
    *end++ = ' ';
  }
  if (moment->day == 0 || moment->second != 0) {
    end = writeTime(end, moment->second);
  }
  text.assign(written, end);
  return true;
}

void guidToText(const Guid& value, std::string& text) {
  constexpr char digits[] = "0123456789ABCDEF";
  text.assign(1, '{');
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) {
      text.push_back('-');
    }
    text.push_back(digits[value[i] >> 4]);
    text.push_back(digits[value[i] & 15]);
  }
  text.push_back('}');
}

void binaryToText(std::span<const std::uint8_t> bytes, std::string& text) {
  text = ansiToUtf8(std::string(bytes.begin(), bytes.end()));
}

}  // namespace veltrano
