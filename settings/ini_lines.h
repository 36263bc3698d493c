#ifndef VELTRANO_SETTINGS_INI_LINES_H
#define VELTRANO_SETTINGS_INI_LINES_H

// Finding "key=value" lines in ANSI text whose lines end at CR LF.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "settings/ini_key_scan.h"

namespace veltrano {

/// Offsets into the searched text.
struct IniLine {
  std::size_t begin = 0;
  std::size_t value = 0;
  std::size_t end = 0;  ///< where the line's CR LF or the end of the text is
};

/// Finds the lines of one key, without regard to the case of letters in the ANSI code page.
class IniKey {
 public:
  /// `scan` is one of usableIniKeyScans().
  explicit IniKey(std::string_view key, IniKeyScan scan = usableIniKeyScans().back());

  /// The first line of the key in `text` that begins at or after `from` and before `to`.
  [[nodiscard]] std::optional<IniLine> findLine(std::string_view text, std::size_t from = 0,
                                                std::size_t to = std::string_view::npos) const;

 private:
  [[nodiscard]] bool standsAt(std::string_view text, std::size_t begin) const;

  /// The key in lower case and "=".
  std::string lowered_;
  IniProbes probes_;
  IniKeyScan scan_;
};

}  // namespace veltrano

#endif
