#include "database/access/rules/pattern.h"

#include <algorithm>

#include "base/text/lower_case.h"

namespace veltrano::access {

namespace {

std::vector<std::uint8_t> keyOf(char16_t c, TextOrder order) {
  const std::uint8_t bytes[] = {static_cast<std::uint8_t>(c), static_cast<std::uint8_t>(c >> 8)};
  std::vector<std::uint8_t> key;
  appendTextKey(key, bytes, order, true);
  return key;
}

bool isDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

}  // namespace

std::optional<LikePattern> LikePattern::parse(std::u16string_view pattern, TextOrder order) {
  using Kind = Element::Kind;
  LikePattern made;
  made.order_ = order;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    switch (pattern[i]) {
      case u'*':
        made.elements_.push_back({Kind::any});
        break;
      case u'?':
        made.elements_.push_back({Kind::one});
        break;
      case u'#':
        made.elements_.push_back({Kind::digit});
        break;
      case u'[': {
        const std::size_t end = pattern.find(u']', i + 1);
        auto set = end == pattern.npos ? std::nullopt : parseSet(pattern.substr(i + 1, end - i - 1), order);
        if (!set) {
          return std::nullopt;
        }
        // Empty brackets stand for nothing.
        if (end != i + 1) {
          made.elements_.push_back(*std::move(set));
        }
        i = end;
        break;
      }
      default:
        made.elements_.push_back({Kind::character, lowerCase(pattern[i])});
    }
  }
  return made;
}

std::optional<LikePattern::Element> LikePattern::parseSet(std::u16string_view body, TextOrder order) {
  Element set{Element::Kind::set};
  // Alone, an exclamation mark is a character like others.
  if (body.size() > 1 && body.front() == u'!') {
    set.excluded = true;
    body.remove_prefix(1);
  }
  for (std::size_t i = 0; i < body.size(); ++i) {
    const bool range = i + 2 < body.size() && body[i + 1] == u'-';
    const char16_t last = range ? body[i + 2] : body[i];
    if (range && keyOf(last, order) < keyOf(body[i], order)) {
      return std::nullopt;
    }
    set.ranges.emplace_back(body[i], last);
    i += range ? 2 : 0;
  }
  return set;
}

bool LikePattern::matches(const Element& element, char16_t c) const {
  const auto holds = [&](const std::pair<char16_t, char16_t>& range) {
    if (range.first == range.second) {
      return lowerCase(range.first) == lowerCase(c);
    }
    const auto key = keyOf(c, order_);
    return key >= keyOf(range.first, order_) && key <= keyOf(range.second, order_);
  };
  switch (element.kind) {
    case Element::Kind::character:
      return lowerCase(c) == element.character;
    case Element::Kind::one:
      return true;
    case Element::Kind::digit:
      return isDigit(c);
    case Element::Kind::set:
      return std::any_of(element.ranges.begin(), element.ranges.end(), holds) != element.excluded;
    case Element::Kind::any:
      break;
  }
  return false;
}

// A mismatch after a star gives that star one more character; stars before it need not be tried again.
bool LikePattern::matches(std::u16string_view text) const {
  std::size_t at = 0;
  std::size_t element = 0;
  std::size_t star = elements_.size();
  std::size_t starAt = 0;
  while (at < text.size() || element < elements_.size()) {
    if (element < elements_.size() && elements_[element].kind == Element::Kind::any) {
      star = element++;
      starAt = at;
    } else if (element < elements_.size() && at < text.size() && matches(elements_[element], text[at])) {
      ++element;
      ++at;
    } else if (star < elements_.size() && starAt < text.size()) {
      element = star + 1;
      at = ++starAt;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace veltrano::access
