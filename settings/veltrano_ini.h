#ifndef VELTRANO_SETTINGS_VELTRANO_INI_H
#define VELTRANO_SETTINGS_VELTRANO_INI_H

// Reads and changes "key=value" lines, in files and in texts that hold a whole file. docs/settings.md
// describes them.
//
// Everything is ANSI text, byte for byte: lines end at CR LF only, and zero bytes, lone CR or LF and
// byte-order marks are ordinary text. A line belongs to a key if it begins with the key, in any case, and "="
// follows at once. There are no sections and no comments, and no blanks are trimmed.

#include <filesystem>
#include <string>
#include <string_view>

namespace veltrano {

class VeltranoINI {
 public:
  /// The value on the first line of the key, Default when no line has it or the file cannot be read. The file
  /// is read in pieces, up to that line.
  std::string GetIniValue(const std::filesystem::path& filename, std::string_view Key,
                          std::string_view Default);
  /// Puts the value on every line of the key, or on a new line at the end of the file, which is made if it
  /// does not exist. The file is replaced whole or not at all; one that exists and cannot be read stays as it
  /// is.
  void SetIniValue(const std::filesystem::path& filename, std::string_view Key, std::string_view Value);
  /// xFileBuffer with every line of the key replaced by "Key=Value", or with CR LF and that line added to its
  /// end.
  std::string ChangeValue(std::string_view xFileBuffer, std::string_view Key, std::string_view Value);
  /// The value on the first line of the key in xFileBuffer, otherwise Default.
  std::string GetValue(std::string_view xFileBuffer, std::string_view Key, std::string_view Default = {});
  /// The whole file; empty when it is missing or cannot be read.
  std::string OpenFile(const std::filesystem::path& xFilename);
  /// Replaces the file, whole or not at all, by xText and CR LF. A CR LF at the end of xText is not doubled.
  void CloseFile(const std::filesystem::path& filename, std::string_view xText);
};

}  // namespace veltrano

#endif
