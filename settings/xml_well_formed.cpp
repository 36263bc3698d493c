#include "settings/xml_well_formed.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <vector>

#include "base/byte_lanes.h"
#include "settings/xml_characters.h"

namespace veltrano {

namespace {

/// The predefined entities and references to characters; there are no others without a document type. `text`
/// begins behind the "&".
bool beginsWithReference(std::string_view text) {
  for (const std::string_view entity : {"amp;", "lt;", "gt;", "quot;", "apos;"}) {
    if (text.starts_with(entity)) {
      return true;
    }
  }
  if (!text.starts_with('#')) {
    return false;
  }
  const bool hexadecimal = text.starts_with("#x");
  text.remove_prefix(hexadecimal ? 2 : 1);
  std::uint32_t code = 0;
  const char* const textEnd = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), textEnd, code, hexadecimal ? 16 : 10);
  return error == std::errc() && end != textEnd && *end == ';' && isXmlCharacter(code);
}

bool hasOnlyReferences(std::string_view text) {
  for (std::size_t at = 0; (at = text.find('&', at)) != std::string_view::npos;) {
    ++at;
    if (!beginsWithReference(text.substr(at))) {
      return false;
    }
  }
  return true;
}

/// Looks for documents of nothing but text and elements that have no attributes and names in ASCII. The
/// parser reads their tags without leniency, so that only the text needs a look. Most settings files are like
/// that, and telling so is many times faster than Scanner.
class PlainText {
 public:
  /// False also when it cannot tell.
  static bool isPlain(std::string_view text) {
    // Beside the root the parser would take a reference to a blank for that blank.
    const std::size_t begin = text.find_first_not_of(xmlBlanks);
    const std::size_t end = text.find_last_not_of(xmlBlanks);
    return begin != std::string_view::npos && text[begin] == '<' && text[end] == '>' && PlainText(text).run();
  }

 private:
  static constexpr std::size_t blockSize = 128;

  explicit PlainText(std::string_view text) : text_(text) {}

  bool run() {
    // Also the byte behind a block is looked at.
    for (; text_.size() - at_ > blockSize; at_ += blockSize) {
      if (!takeBlock(text_.data() + at_)) {
        return false;
      }
    }
    std::array<char, blockSize + 1> last;
    last.fill(' ');
    std::copy(text_.begin() + static_cast<std::ptrdiff_t>(at_), text_.end(), last.begin());
    return takeBlock(last.data()) && (!beyondAscii_ || isXmlText(text_)) &&
           (!references_ || hasOnlyReferences(text_));
  }

  /// `block` is what stands at `at_`.
  bool takeBlock(const char* block) {
    ByteLanes special;
    ByteLanes unusual;
    ByteLanes beyondAscii;
    ByteLanes references;
    ByteLanes tags;
    ByteLanes endTags;
    for (std::size_t i = 0; i < blockSize; i += ByteLanes::count) {
      const ByteLanes c(block + i);
      const ByteLanes next(block + i + 1);
      const ByteLanes tag = c == '<';
      const ByteLanes blank = (c == '\t') | (c == '\n') | (c == '\r');
      special |=
          ((c < ' ') & ~blank) | ((c == ']') & (next == ']')) | (tag & ((next == '!') | (next == '?')));
      unusual |= (c == '"') | (c == '\'') | c.beyondAscii();
      beyondAscii |= c.beyondAscii();
      references |= c == '&';
      tags.countHits(tag);
      endTags.countHits(tag & (next == '/'));
    }
    beyondAscii_ |= beyondAscii.any();
    references_ |= references.any();
    return !special.any() && nest(tags.sum(), endTags.sum()) && (!unusual.any() || haveSimpleTags(block));
  }

  bool nest(std::size_t tags, std::size_t ends) {
    // No element in this block is nested deeper than if all its start tags came first. An end tag is a tag
    // too.
    const std::size_t deepest = nesting_ + tags - ends;
    nesting_ = deepest - ends;
    return deepest <= deepestNesting && deepest >= ends;
  }

  /// True when there are neither attributes nor characters beyond ASCII in the tags.
  bool haveSimpleTags(const char* block) {
    for (std::size_t i = at_; i-- > tagsKnown_;) {
      if (text_[i] == '<' || text_[i] == '>') {
        inTag_ = text_[i] == '<';
        break;
      }
    }
    tagsKnown_ = at_ + blockSize;
    constexpr std::size_t wordSize = 64;
    for (const char* const end = block + blockSize; block != end; block += wordSize) {
      std::uint64_t begins = inTag_ ? 1 : 0;
      std::uint64_t ends = 0;
      std::uint64_t unusual = 0;
      for (std::size_t i = 0; i < wordSize; i += ByteLanes::count) {
        const ByteLanes c(block + i);
        begins |= (c == '<').bits() << i;
        ends |= (c == '>').bits() << i;
        unusual |= ((c == '"') | (c == '\'') | c.beyondAscii()).bits() << i;
      }
      // The difference has all bits from a begin to before the next end.
      if (((ends - begins) & ~ends & unusual) != 0) {
        return false;
      }
      inTag_ = begins > ends;
    }
    return true;
  }

  const std::string_view text_;
  std::size_t at_ = 0;
  std::size_t nesting_ = 0;
  bool beyondAscii_ = false;
  bool references_ = false;
  /// Whether a tag goes on at `tagsKnown_`.
  bool inTag_ = false;
  std::size_t tagsKnown_ = 0;
};

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
    return text.find("]]>") == std::string_view::npos && hasOnlyReferences(text);
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
    return skip({&quote, 1}) && value.find('<') == std::string_view::npos && hasOnlyReferences(value);
  }

  bool endTag() {
    if (open_.empty() || name() != open_.back()) {
      return false;
    }
    open_.pop_back();
    skipBlanks();
    return skip(">");
  }

  std::string_view rest_;
  std::vector<std::string_view> open_;
  std::vector<std::string_view> attributes_;
  bool rootSeen_ = false;
};

}  // namespace

bool isAcceptableXml(std::string_view text) {
  return PlainText::isPlain(text) || Scanner(text).run();
}

}  // namespace veltrano
