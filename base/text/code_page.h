#ifndef VELTRANO_BASE_TEXT_CODE_PAGE_H
#define VELTRANO_BASE_TEXT_CODE_PAGE_H

// The ANSI code page and the Unicode forms of text.
//
// Inside the library text has one of two forms:
//  - "ANSI text": std::string, one byte a character, in the ANSI code page. It is what ends up in PDF and
//    KML files, so lengths and character codes need no second thought.
//  - "UTF-8 text": std::string, in settings/ (XML) and database/.
// INI texts are UTF-16, as hosts hand them over.
//
// On Windows the code page is the system's own. Elsewhere it is Windows-1252 unless setCodePage chose
// another. Conversions never fail: what has no counterpart becomes '?' (towards ANSI) or U+FFFD (towards
// Unicode).

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace veltrano {

/// The Unicode characters of the codes 128 to 255 of a single-byte code page.
using CodePageTable = std::array<char16_t, 128>;

/// Windows-1252; the five codes that it leaves unassigned stand for the C1 controls, as Windows has it.
extern const CodePageTable windows1252;
/// Windows-1250, Central European.
extern const CodePageTable windows1250;
/// Windows-1251, Cyrillic.
extern const CodePageTable windows1251;

/// Chooses the code page of the process where the system has none of its own. On Windows it does nothing:
/// there the system's setting holds. Not to be called while another thread converts text.
void setCodePage(const CodePageTable& table);
/// The same for any encoding that encodings.h knows by name, also one of several bytes a character ("CP932").
/// False if it is not known.
bool setCodePage(std::string_view encoding);

std::string utf16ToAnsi(std::u16string_view text);
std::u16string ansiToUtf16(std::string_view text);
std::string utf8ToAnsi(std::string_view text);
std::string ansiToUtf8(std::string_view text);

/// Unpaired surrogates become U+FFFD.
std::string utf16ToUtf8(std::u16string_view text);
/// Malformed sequences become U+FFFD, one for each maximal broken part.
std::u16string utf8ToUtf16(std::string_view text);

/// For each byte the lower-case form of that character in the ANSI code page ('É' to 'é' in Windows-1252),
/// itself when it has none. Under a multi-byte code page only the ASCII letters change.
const std::array<char, 256>& ansiLowerTable();

/// `text` in lower case, character by character.
std::string ansiLower(std::string_view text);

}  // namespace veltrano

#endif
