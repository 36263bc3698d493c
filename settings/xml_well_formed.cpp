#include "settings/xml_well_formed.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <vector>

#include "base/byte_lanes.h"
#include "settings/xml_characters.h"

namespace veltrano {

namespace {

constexpr std::size_t blockSize = 128;

/// True for a document of nothing but elements without attributes and ASCII text without references: what the
/// parser reads without leniency. Most settings files are that, and telling so is many times faster than
/// Scanner.
bool isPlain(std::string_view text) {
  std::size_t nesting = 0;
  // Also the byte behind a block is looked at.
  while (text.size() > blockSize) {
    ByteLanes special;
    ByteLanes tags;
    ByteLanes endTags;
    for (std::size_t i = 0; i < blockSize; i += ByteLanes::count) {
      const ByteLanes c(text.data() + i);
      const ByteLanes next(text.data() + i + 1);
      const ByteLanes tag = c == '<';
      const ByteLanes blank = (c == '\t') | (c == '\n') | (c == '\r');
      special |= ((c < ' ') & ~blank) | c.beyondAscii() | (c == '&') | (c == '"') | (c == '\'') | (c == ']') |
                 (tag & ((next == '!') | (next == '?')));
      tags.countHits(tag);
      endTags.countHits(tag & (next == '/'));
    }
    // No element in this block is nested deeper than if all its start tags came first. An end tag is a tag
    // too.
    const std::size_t ends = endTags.sum();
    const std::size_t deepest = nesting + tags.sum() - ends;
    if (special.any() || deepest > deepestNesting || deepest < ends) {
      return false;
    }
    nesting = deepest - ends;
    text.remove_prefix(blockSize);
  }
  // What is left is shorter than a block.
  const auto isPlainByte = [](char c) {
    constexpr std::string_view suspicious = "&\"'!?]";
    const bool printable = c >= ' ' && static_cast<unsigned char>(c) < 0x80;
    return printable ? suspicious.find(c) == std::string_view::npos : isXmlBlank(c);
  };
  const auto tags = static_cast<std::size_t>(std::count(text.begin(), text.end(), '<'));
  return std::all_of(text.begin(), text.end(), isPlainByte) && nesting + tags <= deepestNesting;
}

/// Reads a document from begin to end without recursion. Every step says whether to go on.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool run() {
    if (!isXmlText(rest_)) {
      return false;
    }
    while (!rest_.empty()) {
      if (!characterData() || (!rest_.empty() && !markup())) {
        return false;
      }
    }
    return open_.empty() && rootSeen_;
  }

 private:
  bool skip(std::string_view expected) {
    if (!rest_.starts_with(expected)) {
      return false;
    }
    rest_.remove_prefix(expected.size());
    return true;
  }

  bool skipBlanks() {
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), isXmlBlank);
    const auto count = static_cast<std::size_t>(end - rest_.begin());
    rest_.remove_prefix(count);
    return count != 0;
  }

  /// Skips to behind the next `end`.
  bool skipThrough(std::string_view end) {
    const std::size_t at = rest_.find(end);
    if (at == std::string_view::npos) {
      return false;
    }
    rest_.remove_prefix(at + end.size());
    return true;
  }

  std::string_view name() {
    const std::size_t length = nameLength(rest_);
    const std::string_view result = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return result;
  }

  bool characterData() {
    const std::string_view text = rest_.substr(0, rest_.find('<'));
    rest_.remove_prefix(text.size());
    if (open_.empty()) {
      return isBlank(text);
    }
    return text.find("]]>") == std::string_view::npos && references(text);
  }

  bool markup() {
    if (skip("</")) {
      return endTag();
    }
    if (skip("<!--")) {
      return skipThrough("--") && skip(">");
    }
    if (skip("<![CDATA[")) {
      return !open_.empty() && skipThrough("]]>");
    }
    if (skip("<?")) {
      return instruction();
    }
    // What else begins with "<!" declares a document type, which could name files to fetch and entities that
    // grow.
    return skip("<") && startTag();
  }

  bool instruction() {
    const std::string_view target = name();
    const bool reserved = target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' &&
                          (target[2] | 0x20) == 'l';
    return !target.empty() && !reserved && (rest_.starts_with("?>") || skipBlanks()) && skipThrough("?>");
  }

  bool startTag() {
    const std::string_view element = name();
    if (element.empty() || (open_.empty() && rootSeen_) || open_.size() == deepestNesting) {
      return false;
    }
    rootSeen_ = true;
    attributes_.clear();
    for (;;) {
      const bool blanks = skipBlanks();
      if (skip("/>")) {
        break;
      }
      if (skip(">")) {
        open_.push_back(element);
        break;
      }
      if (!blanks || !attribute()) {
        return false;
      }
    }
    if (attributes_.size() < 2) {
      return true;
    }
    std::sort(attributes_.begin(), attributes_.end());
    return std::adjacent_find(attributes_.begin(), attributes_.end()) == attributes_.end();
  }

  bool attribute() {
    attributes_.push_back(name());
    skipBlanks();
    if (attributes_.back().empty() || !skip("=")) {
      return false;
    }
    skipBlanks();
    const char quote = rest_.empty() ? '\0' : rest_.front();
    if (quote != '"' && quote != '\'') {
      return false;
    }
    rest_.remove_prefix(1);
    const std::string_view value = rest_.substr(0, rest_.find(quote));
    rest_.remove_prefix(value.size());
    return skip({&quote, 1}) && value.find('<') == std::string_view::npos && references(value);
  }

  bool endTag() {
    if (open_.empty() || name() != open_.back()) {
      return false;
    }
    open_.pop_back();
    skipBlanks();
    return skip(">");
  }

  /// The predefined entities and references to characters; there are no others without a document type.
  static bool references(std::string_view text) {
    for (std::size_t at = 0; (at = text.find('&', at)) != std::string_view::npos;) {
      const std::size_t end = text.find(';', at);
      if (end == std::string_view::npos || !reference(text.substr(at + 1, end - at - 1))) {
        return false;
      }
      at = end;
    }
    return true;
  }

  static bool reference(std::string_view name) {
    if (!name.starts_with('#')) {
      return name == "lt" || name == "gt" || name == "amp" || name == "quot" || name == "apos";
    }
    const int base = name.starts_with("#x") ? 16 : 10;
    name.remove_prefix(base == 16 ? 2 : 1);
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), code, base);
    return error == std::errc() && end == name.data() + name.size() && isXmlCharacter(code);
  }

  std::string_view rest_;
  std::vector<std::string_view> open_;
  std::vector<std::string_view> attributes_;
  bool rootSeen_ = false;
};

}  // namespace

bool isAcceptableXml(std::string_view text) {
  return isPlain(text) || Scanner(text).run();
}

}  // namespace veltrano
