#ifndef VELTRANO_TEXT_H
#define VELTRANO_TEXT_H

// The ANSI code page: which one it is, and UTF-8 text into and out of it.
//
// VeltranoPDF, VeltranoKML and the other classes whose files hold one byte a character take ANSI text. On
// Windows its code page is the system's own; elsewhere it is Windows-1252 until setCodePage chooses another.

#include <string>
#include <string_view>

#include "veltrano/export.h"

namespace veltrano {

/// Never fails: characters that the code page lacks become what the system puts in their place, '?' as a rule.
/// Malformed UTF-8 counts as U+FFFD, once for each maximal broken part.
VELTRANO_API std::string utf8ToAnsi(std::string_view text);

/// Never fails: bytes that stand for no character become U+FFFD or a control character.
VELTRANO_API std::string ansiToUtf8(std::string_view text);

/// The name of the code page in use: "windows-1252".
VELTRANO_API std::string codePage();

/// Chooses the code page of the process by a name that files use for encodings: "windows-1250", "ISO-8859-15",
/// "KOI8-R", "Shift_JIS". Case does not matter. False if the system does not know the name or ASCII text is not
/// itself in that encoding (UTF-16), and always on Windows, where the system's setting holds. Not to be called
/// while another thread uses the library.
VELTRANO_API bool setCodePage(std::string_view encoding);

}  // namespace veltrano

#endif
