#ifndef VELTRANO_DATABASE_FIELD_CONVERSION_H
#define VELTRANO_DATABASE_FIELD_CONVERSION_H

// How field values become text and how assigned values become what a field holds, as automation variants
// convert. Both engines use these, so a host reads the same texts whichever engine it gets, in every locale:
//
//   whole numbers   -12                        booleans   True, False
//   single, double  0.1, 1E-05 (7, 15 digits)  dates      2026-11-21 14:05:00, 2026-11-21 at midnight,
//   currency        12.5                                  14:05:00 on the day that counts as 0 (1899-12-30)
//   decimals        12.5                       GUIDs      {00112233-4455-6677-8899-AABBCCDDEEFF}
//   binary          one character a byte, in the ANSI code page
//
// Towards the field: texts are read in these forms first, so that what was read back means the same when it is
// written again; a text in none of them is converted as the system does in the user's locale (user_locale.h). Numbers
// round half to even into whole numbers; true is -1 as a number (255 as an unsigned byte). A decimal keeps all its
// digits; a single-precision value with a fraction is the number that its 7 digits show, not the nearest double. A
// value that does not convert or is out of range gives an empty result. Nulls are not handled here; an empty value
// counts as 0 or as an empty text.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/value.h"

namespace veltrano {

using Guid = std::array<std::uint8_t, 16>;  ///< in display order

// To text. Each replaces `text`, whose storage is reused.
void integerToText(std::int64_t value, std::string& text);
void singleToText(float value, std::string& text);
void doubleToText(double value, std::string& text);
void currencyToText(Currency value, std::string& text);
void decimalToText(const Decimal& value, std::string& text);
void booleanToText(bool value, std::string& text);
/// A date outside the years 100 to 9999 gives false and an empty text.
bool dateToText(Date value, std::string& text);
void guidToText(const Guid& value, std::string& text);
void binaryToText(std::span<const std::uint8_t> bytes, std::string& text);

// From assigned values.
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
/// A text counts as one byte a character in the ANSI code page; one that has other characters gives nothing.
std::optional<Value::Bytes> toBinary(const Value& value);
std::optional<std::string> toFieldText(const Value& value);

/// The number of UTF-16 units of a UTF-8 text: what the size of a text field counts.
std::size_t utf16Length(std::string_view utf8);

}  // namespace veltrano

#endif
