#ifndef VELTRANO_DATABASE_VALUES_NUMBER_FROM_TEXT_H
#define VELTRANO_DATABASE_VALUES_NUMBER_FROM_TEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

/// A number written with other marks in the library's own form: "1.234,5" with "," and "." is "1234.5". Empty
/// if the result is not a number. `thousands` may be empty; its places are not checked.
std::optional<std::string> ownFormOfNumber(std::string_view text, std::string_view decimalPoint,
                                           std::string_view thousands);

}  // namespace veltrano

#endif
