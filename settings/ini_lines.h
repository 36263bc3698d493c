#ifndef VELTRANO_SETTINGS_INI_LINES_H
#define VELTRANO_SETTINGS_INI_LINES_H

// Finding and changing "key=value" lines, in Unicode text and in the bytes of ANSI files. Lines end at CR LF
// only.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace veltrano {

/// "\r\n" in either kind of text.
template <typename Character>
inline constexpr Character lineBreak[] = {'\r', '\n', '\0'};

/// A key, compared with the starts of lines character by character, without regard to case.
class IniKey {
 public:
  explicit IniKey(std::u16string_view key);

  /// Offset of the value if the line begins with the key and "=".
  [[nodiscard]] std::optional<std::size_t> valueIn(std::u16string_view line) const;
  /// The same for a line in the ANSI code page. A key that has characters which the code page lacks is on no
  /// line.
  [[nodiscard]] std::optional<std::size_t> valueIn(std::string_view line) const;

 private:
  std::u16string lowered_;  ///< the key in lower case and "="
};

/// Offsets into the searched text.
struct IniLine {
  std::size_t begin;
  std::size_t value;
  std::size_t end;  ///< of the line's CR LF, or of the text
};

/// The first line of the key at or after `from`, which is where a line begins or ends.
template <typename Character>
std::optional<IniLine> findLine(std::basic_string_view<Character> text, const IniKey& key,
                                std::size_t from = 0) {
  while (from < text.size()) {
    const std::size_t end = std::min(text.find(lineBreak<Character>, from), text.size());
    if (const auto value = key.valueIn(text.substr(from, end - from))) {
      return IniLine{from, from + *value, end};
    }
    from = end + 2;
  }
  return std::nullopt;
}

/// `text` with every line of the key replaced by `line`. Without one, CR LF and the line are added to its
/// end, also if the text ends with CR LF or is empty: an empty line then comes before the new one.
template <typename Character>
std::basic_string<Character> withLine(std::basic_string_view<Character> text, const IniKey& key,
                                      std::basic_string_view<Character> line) {
  std::basic_string<Character> result;
  result.reserve(text.size() + line.size() + 2);
  std::size_t copied = 0;
  bool found = false;
  while (const auto old = findLine(text, key, copied)) {
    result.append(text.substr(copied, old->begin - copied)).append(line);
    copied = old->end;
    found = true;
  }
  result.append(text.substr(std::min(copied, text.size())));
  return found ? result : result.append(lineBreak<Character>).append(line);
}

}  // namespace veltrano

#endif
