#ifndef VELTRANO_BASE_TEXT_CODE_PAGE_H
#define VELTRANO_BASE_TEXT_CODE_PAGE_H

// What the library itself needs of the ANSI code page beside veltrano/text.h.
//
// Text has one of three forms inside the library:
//  - ANSI text, std::string: one byte a character in most code pages. What ends up in PDF and KML files.
//  - UTF-8 text, std::string: in settings/ (XML) and database/.
//  - UTF-16 text: INI texts, calls of Windows, the automation boundary, and where characters are compared.

#include <array>
#include <string>
#include <string_view>

#include "base/text/utf.h"
#include "veltrano/text.h"

namespace veltrano {

/// The Unicode characters of the codes 128 to 255 of a single-byte code page.
using CodePageTable = std::array<char16_t, 128>;

/// Windows-1252; the five codes that it leaves unassigned stand for the C1 controls, as Windows has it.
extern const CodePageTable windows1252;
/// Windows-1250, Central European.
extern const CodePageTable windows1250;
/// Windows-1251, Cyrillic.
extern const CodePageTable windows1251;

/// Conversions never fail: see veltrano/text.h. What had to be replaced is traced.
std::string utf16ToAnsi(std::u16string_view text);
/// The same without the trace, as the system does it.
std::string convertToAnsi(std::u16string_view text);
std::u16string ansiToUtf16(std::string_view text);

}  // namespace veltrano

#endif
