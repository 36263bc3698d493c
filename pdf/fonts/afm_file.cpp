#include "pdf/fonts/afm_file.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/byte_lanes.h"
#include "base/numbers/numbers.h"

namespace veltrano {

namespace {

constexpr std::string_view startMark = "StartCharMetrics";
constexpr std::string_view endMark = "EndCharMetrics";
/// Ends the code of a glyph without one; nothing behind it can be measured.
constexpr std::string_view unencodedMark = "-1 ;";

/// First unencoded mark at or after `from`. This runs over all of the metrics, and reading a changed file
/// again must cost little: its two outer characters, compared many at once, rule out nearly every place.
std::size_t findUnencoded(std::string_view text, std::size_t from) {
  constexpr std::size_t block = 4 * ByteLanes::count;
  constexpr std::size_t last = unencodedMark.size() - 1;
  while (from + block + last <= text.size()) {
    ByteLanes candidates;
    for (std::size_t i = from; i < from + block; i += ByteLanes::count) {
      const char* const at = text.data() + i;
      candidates |= (ByteLanes(at) == unencodedMark.front()) & (ByteLanes(at + last) == unencodedMark.back());
    }
    if (candidates.any()) {
      const std::size_t found = text.substr(0, from + block + last).find(unencodedMark, from);
      if (found != std::string_view::npos) {
        return found;
      }
    }
    from += block;
  }
  return text.find(unencodedMark, from);
}

/// The words of one field of a line; a field ends at ";".
class FieldReader {
 public:
  FieldReader(const char* begin, const char* end) : at_(begin), end_(end) {}

  /// Second word of the field as a number, nothing when it has none; the field is left behind.
  std::optional<double> secondWord() {
    skipBlanks();
    skipWord();
    skipBlanks();
    const char* const start = at_;
    std::int32_t whole = 0;
    // Nine digits always fit; longer numbers take the general way.
    while (at_ != end_ && *at_ >= '0' && *at_ <= '9' && at_ - start < 9) {
      whole = whole * 10 + (*at_++ - '0');
    }
    std::optional<double> number = whole;
    if (at_ == start || (at_ != end_ && *at_ != ' ' && *at_ != ';')) {
      skipWord();
      number = parseNumber({start, static_cast<std::size_t>(at_ - start)});
    }
    while (at_ != end_ && *at_ != ';') {
      ++at_;
    }
    if (at_ != end_) {
      ++at_;
    }
    return number;
  }

 private:
  void skipBlanks() {
    while (at_ != end_ && *at_ == ' ') {
      ++at_;
    }
  }
  void skipWord() {
    while (at_ != end_ && *at_ != ' ' && *at_ != ';') {
      ++at_;
    }
  }

  const char* at_;
  const char* end_;
};

/// Reads the lines of character metrics and knows the first and the last code.
class CharacterTable {
 public:
  explicit CharacterTable(std::array<std::int32_t, 256>& widths) : widths_(widths) {}

  void readLine(const char* begin, const char* end) {
    if (readUsualLine(begin, end)) {
      return;
    }
    FieldReader fields(begin, end);
    const auto codeNumber = fields.secondWord();
    const auto code = codeNumber ? roundToInt32(*codeNumber) : std::nullopt;
    if (!code) {
      return;
    }
    takeCode(*code);
    const auto width = fields.secondWord();
    if (*code >= 1 && *code <= 255 && width && std::abs(*width) < std::numeric_limits<std::int32_t>::max()) {
      widths_[static_cast<std::size_t>(*code)] = static_cast<std::int32_t>(*width);
    }
  }

  /// `stopped`: the end of the metrics was met. Otherwise the last code stays 0, and so does every width.
  void finish(bool stopped) {
    const std::int32_t last = stopped ? previous_ : 0;
    for (std::int32_t code = 0; code <= 255; ++code) {
      if (code == 0 || code < first_ || code > last) {
        widths_[static_cast<std::size_t>(code)] = 0;
      }
    }
  }

 private:
  /// "C 32 ; WX 278 ; ...": nearly every line of every file. False, and nothing done, for any other form.
  bool readUsualLine(const char* begin, const char* end) {
    constexpr std::string_view beforeCode = "C ";
    constexpr std::string_view beforeWidth = " ; WX ";
    const char* at = begin + beforeCode.size();
    std::int32_t code = 0;
    std::int32_t width = 0;
    // Nothing is read beyond the end: the shortest such line is longer than what is looked at in one go.
    if (end - begin < 24 || std::memcmp(begin, beforeCode.data(), beforeCode.size()) != 0 ||
        !readDigits(at, code) || std::memcmp(at, beforeWidth.data(), beforeWidth.size()) != 0) {
      return false;
    }
    at += beforeWidth.size();
    if (!readDigits(at, width) || at[0] != ' ' || at[1] != ';' || code > 255) {
      return false;
    }
    takeCode(code);
    if (code > 0) {
      widths_[static_cast<std::size_t>(code)] = width;
    }
    return true;
  }

  /// One to four digits; false when there is none or more.
  static bool readDigits(const char*& at, std::int32_t& number) {
    const char* const start = at;
    while (*at >= '0' && *at <= '9' && at - start < 5) {
      number = number * 10 + (*at++ - '0');
    }
    return at - start >= 1 && at - start <= 4;
  }

  void takeCode(std::int32_t code) {
    if (!anyCode_) {
      anyCode_ = true;
      first_ = code;
    }
    previous_ = code;
  }

  std::array<std::int32_t, 256>& widths_;
  bool anyCode_ = false;
  std::int32_t first_ = 0;
  std::int32_t previous_ = 0;
};

/// Position of the next line feed, the text's length when there is none. Lines of metrics are short, so that
/// the call of a searching function would take longer than the search.
std::size_t lineEnd(std::string_view text, std::size_t position) {
  for (; position + ByteLanes::count <= text.size(); position += ByteLanes::count) {
    const ByteLanes feeds = ByteLanes(text.data() + position) == '\n';
    if (feeds.any()) {
      return position + feeds.firstHit();
    }
  }
  while (position < text.size() && text[position] != '\n') {
    ++position;
  }
  return position;
}

std::size_t lineStart(std::string_view text, std::size_t position) {
  const auto newline = position == 0 ? std::string_view::npos : text.rfind('\n', position - 1);
  return newline == std::string_view::npos ? 0 : newline + 1;
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

/// The first line end tells: files that mix them are read as if the lone CR were part of the line.
bool hasLoneReturns(std::string_view text) {
  const std::size_t first = text.find('\r');
  return first != std::string_view::npos && first + 1 < text.size() && text[first + 1] != '\n';
}

/// Walks over the lines up to the one that ends the metrics. `next*` are the positions of the marks at or
/// after the current line, looked up again only when they have been passed.
class AfmParser {
 public:
  AfmParser(std::string_view text, FontMetrics& metrics) : text_(text), table_(metrics.widths) {}

  /// False when the text ended first.
  bool run() {
    std::size_t position = 0;
    bool started = false;
    while (position < text_.size()) {
      if (startLine(position) == position) {
        // The line is dropped and the next one taken in its place, whatever it is.
        started = true;
        position = std::min(lineEnd(text_, position) + 1, text_.size());
        if (position == text_.size()) {
          break;
        }
      }
      const std::size_t stop = stopLine(position);
      if (stop == position) {
        table_.finish(true);
        return true;
      }
      if (!started) {
        position = std::min(startLine(position), stop);
        continue;
      }
      // At least this line, then up to the next mark.
      const std::size_t limit = std::min({stop, startLine(position + 1), text_.size()});
      do {
        position = readLine(position);
      } while (position < limit);
    }
    table_.finish(false);
    return false;
  }

 private:
  std::size_t readLine(std::size_t position) {
    const std::size_t end = lineEnd(text_, position);
    const bool hasReturn = end > position && text_[end - 1] == '\r';
    table_.readLine(text_.data() + position, text_.data() + end - (hasReturn ? 1 : 0));
    return end + 1;
  }

  /// Start of the first line at or after `position` that has the start mark; the text's length when there is
  /// none.
  std::size_t startLine(std::size_t position) {
    if (!nextStart_ || *nextStart_ < position) {
      nextStart_ = text_.find(startMark, position);
    }
    return *nextStart_ == std::string_view::npos ? text_.size() : lineStart(text_, *nextStart_);
  }

  std::size_t stopLine(std::size_t position) {
    if (!nextEnd_ || *nextEnd_ < position) {
      nextEnd_ = text_.find(endMark, position);
    }
    if (!nextUnencoded_ || *nextUnencoded_ < position) {
      nextUnencoded_ = findUnencoded(text_, position);
    }
    const std::size_t mark = std::min(*nextEnd_, *nextUnencoded_);
    return mark == std::string_view::npos ? text_.size() : lineStart(text_, mark);
  }

  std::string_view text_;
  CharacterTable table_;
  std::optional<std::size_t> nextStart_;
  std::optional<std::size_t> nextEnd_;
  std::optional<std::size_t> nextUnencoded_;
};

}  // namespace

std::optional<double> FontMetrics::headerNumber(std::string_view key) const {
  for (std::size_t at = header.find(key); at != std::string::npos; at = header.find(key, at + 1)) {
    const bool atLineStart = at == 0 || header[at - 1] == '\n';
    const std::size_t value = at + key.size();
    if (atLineStart && value < header.size() && header[value] == ' ') {
      const std::size_t end = header.find_first_of("\r\n", value);
      return parseNumber(std::string_view(header).substr(value, end - value));
    }
  }
  return std::nullopt;
}

std::int32_t FontMetrics::sum(std::string_view text) const {
  // The widths of real fonts never leave 32 bits in a text of a few thousand characters: no check is needed
  // there.
  constexpr std::size_t shortText = 2000;
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
  std::int64_t total = 0;
  if (text.size() <= shortText) {
    std::int64_t other = 0;
    std::int64_t magnitude = 0;
    for (const char c : text) {
      const std::int32_t width = widths[static_cast<unsigned char>(c)];
      other += width;
      magnitude |= width < 0 ? ~std::int64_t{width} : width;
    }
    if (magnitude < most / static_cast<std::int64_t>(shortText)) {
      return static_cast<std::int32_t>(other);
    }
  }
  for (const char c : text) {
    const std::int64_t next = total + widths[static_cast<unsigned char>(c)];
    if (next >= least && next <= most) {
      total = next;
    }
  }
  return static_cast<std::int32_t>(total);
}

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
  std::optional<FontMetrics> metrics(std::in_place);
  if (!AfmParser(text, *metrics).run() && !wholeFile) {
    return std::nullopt;
  }
  metrics->header = text.substr(0, std::min(text.find(startMark), text.size()));
  return metrics;
}

}  // namespace veltrano
