#include "database/values/field_to_text.h"

#include <charconv>
#include <chrono>

#include "base/numbers/numbers.h"
#include "base/numbers/scaled_numbers.h"
#include "base/text/code_page.h"
#include "database/values/dates.h"

namespace veltrano {

namespace {

void appendTwoDigits(std::string& text, unsigned value) {
  text.push_back(static_cast<char>('0' + value / 10 % 10));
  text.push_back(static_cast<char>('0' + value % 10));
}

void appendTime(std::string& text, std::int32_t seconds) {
  const auto time = static_cast<unsigned>(seconds);
  appendTwoDigits(text, time / 3600);
  text.push_back(':');
  appendTwoDigits(text, time / 60 % 60);
  text.push_back(':');
  appendTwoDigits(text, time % 60);
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
  if (moment->day == 0) {
    appendTime(text, moment->second);
    return true;
  }
  const std::chrono::year_month_day date(dateOrigin + std::chrono::days(moment->day));
  const auto year = static_cast<unsigned>(static_cast<int>(date.year()));
  appendTwoDigits(text, year / 100);
  appendTwoDigits(text, year % 100);
  text.push_back('-');
  appendTwoDigits(text, static_cast<unsigned>(date.month()));
  text.push_back('-');
  appendTwoDigits(text, static_cast<unsigned>(date.day()));
  if (moment->second != 0) {
    text.push_back(' ');
    appendTime(text, moment->second);
  }
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
