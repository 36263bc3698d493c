#ifndef VELTRANO_INI_H
#define VELTRANO_INI_H

// Reads and changes "key=value" lines, in files and in texts that hold a whole file. docs/settings.md
// describes them.
//
// Lines end at CR LF only: zero characters, lone CR or LF and byte-order marks are ordinary text. A line
// belongs to a key if it begins with the key, in any case, and "=" follows at once. There are no sections and
// no comments, and no blanks are trimmed.
//
// Texts are UTF-16; files are in the ANSI code page. Members never report a failure; only
// memory exhaustion leaves them as an exception (std::bad_alloc).

#include <filesystem>
#include <string>
#include <string_view>

#include "veltrano/export.h"

namespace veltrano {

class VELTRANO_API VeltranoINI {
 public:
  /// The value on the first line of the key; Default if no line has it or the file cannot be read. A key with
  /// characters that the code page lacks is on no line of a file.
  std::u16string GetIniValue(const std::filesystem::path& filename, std::u16string_view Key,
                             std::u16string_view Default);
  /// Puts the value on every line of the key, or on a new line at the end of the file, which is made if it
  /// does not exist. The bytes of other lines stay as they are, and so does a file that exists and cannot be
  /// read.
  void SetIniValue(const std::filesystem::path& filename, std::u16string_view Key, std::u16string_view Value);
  /// xFileBuffer with every line of the key replaced by "Key=Value", or with CR LF and that line added to its
  /// end.
  std::u16string ChangeValue(std::u16string_view xFileBuffer, std::u16string_view Key,
                             std::u16string_view Value);
  /// The value on the first line of the key in xFileBuffer, otherwise Default.
  std::u16string GetValue(std::u16string_view xFileBuffer, std::u16string_view Key,
                          std::u16string_view Default = {});
  /// The whole file; empty if it is missing or cannot be read.
  std::u16string OpenFile(const std::filesystem::path& xFilename);
  /// Replaces the content of the file by xText and CR LF. A CR LF at the end of xText is not doubled.
  /// Characters that the code page lacks become what the system's conversion makes of them, a question mark
  /// as a rule.
  void CloseFile(const std::filesystem::path& filename, std::u16string_view xText);
};

}  // namespace veltrano

#endif
