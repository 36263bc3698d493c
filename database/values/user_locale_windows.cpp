#include "database/values/user_locale_windows.h"

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include <array>
#include <charconv>
#include <cmath>

#include "base/text/code_page.h"
#include "database/values/user_locale.h"

namespace veltrano {

namespace {

/// A text as the conversion functions take it.
class Wide {
 public:
  explicit Wide(std::string_view utf8) : units_(utf8ToUtf16(utf8)) {}
  /// Empty texts and those with a zero inside are not a value of any kind.
  [[nodiscard]] bool convertible() const {
    return !units_.empty() && units_.find(u'\0') == std::u16string::npos;
  }
  LPOLESTR get() { return reinterpret_cast<LPOLESTR>(units_.data()); }

 private:
  std::u16string units_;
};

std::optional<std::string> textOf(DECIMAL& number) {
  BSTR wide = nullptr;
  if (FAILED(VarBstrFromDec(&number, LOCALE_INVARIANT, 0, &wide))) {
    return std::nullopt;
  }
  std::string text(wide, wide + SysStringLen(wide));  // digits, a point and a sign
  SysFreeString(wide);
  return text;
}

std::string textOf(double number) {
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

}  // namespace

std::optional<std::string> ownFormOfNumber(std::string_view text, unsigned long locale) {
  Wide wide(text);
  double real = 0;
  if (!wide.convertible() || FAILED(VarR8FromStr(wide.get(), locale, 0, &real)) || !std::isfinite(real)) {
    return std::nullopt;
  }
  // A decimal keeps all digits but covers a smaller range, beyond which its conversion is of no use.
  constexpr double rounding = 1e-12;
  DECIMAL exact{};
  double again = 0;
  const bool fits = SUCCEEDED(VarDecFromStr(wide.get(), locale, 0, &exact)) &&
                    SUCCEEDED(VarR8FromDec(&exact, &again)) &&
                    std::fabs(again - real) <= std::fabs(real) * rounding;
  std::optional<std::string> digits = fits ? textOf(exact) : std::nullopt;
  return digits ? digits : textOf(real);
}

std::optional<std::string> ownFormOfNumber(std::string_view text) {
  return ownFormOfNumber(text, LOCALE_USER_DEFAULT);
}

std::optional<Date> dateInUserLocale(std::string_view text) {
  Wide wide(text);
  Date date;
  if (!wide.convertible() || FAILED(VarDateFromStr(wide.get(), LOCALE_USER_DEFAULT, 0, &date.days))) {
    return std::nullopt;
  }
  return date;
}

std::optional<bool> flagInUserLocale(std::string_view text) {
  Wide wide(text);
  VARIANT_BOOL flag = VARIANT_FALSE;
  if (!wide.convertible() || FAILED(VarBoolFromStr(wide.get(), LOCALE_USER_DEFAULT, 0, &flag))) {
    return std::nullopt;
  }
  return flag != VARIANT_FALSE;
}

}  // namespace veltrano
