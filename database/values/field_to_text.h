#ifndef VELTRANO_DATABASE_VALUES_FIELD_TO_TEXT_H
#define VELTRANO_DATABASE_VALUES_FIELD_TO_TEXT_H

// How field values become text. Both engines use these, so a host reads the same texts whichever engine it
// gets, in every locale:
//
//   whole numbers   -12                        booleans   True, False
//   single, double  0.1, 1E-05 (7, 15 digits)  dates      2026-11-21 14:05:00, 2026-11-21 at midnight,
//   currency        12.5                                  14:05:00 on the day that counts as 0 (1899-12-30)
//   decimals        12.5                       GUIDs      {00112233-4455-6677-8899-AABBCCDDEEFF}
//   binary          one character a byte, in the ANSI code page
//
// Each function replaces `text`, whose storage is reused.

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "veltrano/value.h"

namespace veltrano {

using Guid = std::array<std::uint8_t, 16>;  ///< in display order

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

}  // namespace veltrano

#endif
