#ifndef VELTRANO_DATABASE_VALUES_FIELD_CONVERSION_H
#define VELTRANO_DATABASE_VALUES_FIELD_CONVERSION_H

// How assigned values become what a field holds, as automation variants convert; both engines use these.
//
// Texts are read first in the forms in which values are read back (field_to_text.h), so that what was read
// means the same when it is written again; a text in none of them is converted as the system does in the
// user's locale (user_locale.h). Numbers round half to even into whole numbers; true is -1 as a number (255
// as an unsigned byte). A decimal keeps all its digits; a single-precision value with a fraction is the
// number that its 7 digits show, not the nearest double. A value that does not convert or is out of range
// gives an empty result. Nulls are not handled here; an empty value counts as 0 or as an empty text.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "database/values/field_to_text.h"
#include "veltrano/value.h"

namespace veltrano {

std::optional<bool> toBoolean(const Value& value);
std::optional<std::int64_t> toInteger(const Value& value, std::int64_t least, std::int64_t most);
std::optional<float> toSingle(const Value& value);
std::optional<double> toReal(const Value& value);
std::optional<Currency> toCurrency(const Value& value);
/// The number with all its digits; empty also if a decimal cannot hold them.
std::optional<Decimal> toDecimal(const Value& value);
/// A decimal of exactly `scale` decimal places (half to even) and at most `precision` (1 to 28) digits.
std::optional<Decimal> toDecimal(const Value& value, int precision, int scale);
std::optional<Date> toDate(const Value& value);
std::optional<Guid> toGuid(const Value& value);
/// A text counts as one byte a character in the ANSI code page; one that has other characters does not
/// convert.
std::optional<Value::Bytes> toBinary(const Value& value);
std::optional<std::string> toFieldText(const Value& value);

/// The number of UTF-16 units of a UTF-8 text: what the size of a text field counts.
std::size_t utf16Length(std::string_view utf8);

}  // namespace veltrano

#endif
