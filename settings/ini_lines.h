#ifndef VELTRANO_SETTINGS_INI_LINES_H
#define VELTRANO_SETTINGS_INI_LINES_H

// Finding "key=value" lines in ANSI text whose lines end at CR LF.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

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
  explicit IniKey(std::string_view key);

  /// The first line of the key at or after `from`, which must be the begin or end of a line of `text`.
  [[nodiscard]] std::optional<IniLine> findLine(std::string_view text, std::size_t from = 0) const;

 private:
  [[nodiscard]] bool standsAt(std::string_view text, std::size_t begin) const;
  [[nodiscard]] bool mayBeginIn(const char* block) const;

  /// What a byte in a line of the key must be once the bit that tells its cases apart is set.
  struct Probe {
    std::size_t offset;
    char lower;
    char caseBit;
  };

  /// The key in lower case and "=".
  std::string lowered_;
  std::array<Probe, 2> probes_;
};

}  // namespace veltrano

#endif
