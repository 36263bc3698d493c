#include "pdf/fonts/afm_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "base/numbers/numbers.h"

namespace veltrano {

namespace {

constexpr std::string_view startMark = "StartCharMetrics";
constexpr std::string_view endMark = "EndCharMetrics";
/// The code of the first glyph without one, which ends the metrics.
constexpr std::string_view unencodedMark = "-1 ;";

/// The lines of a text, without their line ends.
class Lines {
 public:
  explicit Lines(std::string_view text) : rest_(text) {}

  /// False after the last line.
  bool next(std::string_view& line) {
    if (rest_.empty()) {
      return false;
    }
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    line = rest_.substr(0, end);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return true;
  }

 private:
  std::string_view rest_;
};

/// Second word of the first field of `line` as a number, empty if it has none. The field, which ends at ";",
/// is removed from the line.
std::optional<double> takeNumber(std::string_view& line) {
  const std::size_t end = std::min(line.find(';'), line.size());
  std::string_view field = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  const auto skip = [&field](std::size_t count) { field.remove_prefix(std::min(count, field.size())); };
  skip(field.find_first_not_of(' '));
  skip(field.find(' '));
  skip(field.find_first_not_of(' '));
  return parseNumber(field.substr(0, field.find(' ')));
}

/// The widths by character code, and the first and the last code that was read.
class CharacterTable {
 public:
  explicit CharacterTable(std::array<std::int32_t, 256>& widths) : widths_(widths) {}

  void readLine(std::string_view line) {
    const auto codeNumber = takeNumber(line);
    const auto code = codeNumber ? roundToInt32(*codeNumber) : std::nullopt;
    if (!code) {
      return;
    }
    if (!anyCode_) {
      anyCode_ = true;
      first_ = *code;
    }
    last_ = *code;
    const auto width = takeNumber(line);
    if (*code >= 1 && *code <= 255 && width && std::abs(*width) < std::numeric_limits<std::int32_t>::max()) {
      widths_[static_cast<std::size_t>(*code)] = static_cast<std::int32_t>(*width);
    }
  }

  /// Clears what lies outside the first and the last code. When the end of the metrics was not met, the last
  /// code is 0, and so is every width.
  void finish(bool endMet) {
    const std::int32_t last = endMet ? last_ : 0;
    for (std::int32_t code = 0; code <= 255; ++code) {
      if (code == 0 || code < first_ || code > last) {
        widths_[static_cast<std::size_t>(code)] = 0;
      }
    }
  }

 private:
  std::array<std::int32_t, 256>& widths_;
  bool anyCode_ = false;
  std::int32_t first_ = 0;
  std::int32_t last_ = 0;
};

bool has(std::string_view line, std::string_view mark) {
  return line.find(mark) != std::string_view::npos;
}

/// Reads the character metrics. False if the text ended before they did.
bool readCharacters(std::string_view text, std::array<std::int32_t, 256>& widths) {
  CharacterTable table(widths);
  Lines lines(text);
  bool started = false;
  bool endMet = false;
  for (std::string_view line; !endMet && lines.next(line);) {
    if (has(line, startMark)) {
      // The line is dropped and the next one taken in its place, whatever it is.
      started = true;
      if (!lines.next(line)) {
        break;
      }
    }
    endMet = has(line, endMark) || has(line, unencodedMark);
    if (started && !endMet) {
      table.readLine(line);
    }
  }
  table.finish(endMet);
  return endMet;
}

/// Numbers of the lines before the character metrics, where each key occurs once at the start of a line.
void readHeader(std::string_view text, FontMetrics& metrics) {
  const std::pair<std::string_view, double&> keys[] = {{"UnderlinePosition ", metrics.underlinePosition},
                                                       {"UnderlineThickness ", metrics.underlineThickness},
                                                       {"Descender ", metrics.descender}};
  Lines lines(text);
  for (std::string_view line; lines.next(line) && !has(line, startMark);) {
    for (const auto& [key, number] : keys) {
      if (line.starts_with(key)) {
        number = parseNumber(line.substr(key.size())).value_or(number);
      }
    }
  }
}

/// Old line ends, CR alone, become LF.
std::string withoutLoneReturns(std::string_view text) {
  std::string result(text);
  for (std::size_t i = 0; i < result.size(); ++i) {
    if (result[i] == '\r' && (i + 1 == result.size() || result[i + 1] != '\n')) {
      result[i] = '\n';
    }
  }
  return result;
}

/// The first line end decides: in a file that mixes them a lone CR is part of its line.
bool hasLoneReturns(std::string_view text) {
  const std::size_t first = text.find('\r');
  return first != std::string_view::npos && first + 1 < text.size() && text[first + 1] != '\n';
}

}  // namespace

std::optional<FontMetrics> parseAfm(std::string_view text, bool wholeFile) {
  if (hasLoneReturns(text)) {
    const std::string normal = withoutLoneReturns(text);
    return parseAfm(normal, wholeFile);
  }
  if (!wholeFile) {
    // The last line may be cut off anywhere, even within a mark.
    const auto lastLine = text.rfind('\n');
    text = text.substr(0, lastLine == std::string_view::npos ? 0 : lastLine + 1);
  }
  FontMetrics metrics;
  if (!readCharacters(text, metrics.widths) && !wholeFile) {
    return std::nullopt;
  }
  metrics.ordinary = std::all_of(metrics.widths.begin(), metrics.widths.end(), [](std::int32_t width) {
    return width >= 0 && width <= FontMetrics::widestOrdinary;
  });
  readHeader(text, metrics);
  return metrics;
}

}  // namespace veltrano
