#include "database/values/number_from_text.h"

#include "base/numbers/numbers.h"

namespace veltrano {

std::optional<std::string> ownFormOfNumber(std::string_view text, std::string_view decimalPoint,
                                           std::string_view thousands) {
  std::string number;
  bool inFraction = false;
  while (!text.empty()) {
    if (!inFraction && !decimalPoint.empty() && text.starts_with(decimalPoint)) {
      inFraction = true;
      number.push_back('.');
      text.remove_prefix(decimalPoint.size());
    } else if (!inFraction && !thousands.empty() && text.starts_with(thousands)) {
      text.remove_prefix(thousands.size());
    } else if (text.front() == '.') {
      return std::nullopt;
    } else {
      number.push_back(text.front());
      text.remove_prefix(1);
    }
  }
  return parseNumber(number) ? std::optional(number) : std::nullopt;
}

}  // namespace veltrano
