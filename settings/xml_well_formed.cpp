#include "settings/xml_well_formed.h"

#include <algorithm>
#include <vector>

#include "settings/xml_characters.h"
#include "settings/xml_references.h"

namespace veltrano {

namespace {

bool hasOnlyReferences(std::string_view text) {
  const char* const end = text.data() + text.size();
  return haveOnlyReferences(text.data(), end, end);
}

bool isPlain(std::string_view text, XmlPlainTextScan scan) {
  // Beside the root the parser would take a reference to a blank for that blank.
  const std::size_t begin = text.find_first_not_of(xmlBlanks);
  const std::size_t end = text.find_last_not_of(xmlBlanks);
  return begin != std::string_view::npos && text[begin] == '<' && text[end] == '>' &&
         scan(text.data(), text.data() + text.size());
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

bool isAcceptableXml(std::string_view text, XmlPlainTextScan scan) {
  return isPlain(text, scan) || Scanner(text).run();
}

}  // namespace veltrano
