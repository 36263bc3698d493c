#include "database/access/collation/collation.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>

#include "base/text/lower_case.h"
#include "database/access/collation/collation_table.h"

// A key in the orders General and General Legacy:
//
//   inline codes of all characters
//   01  extra codes (accents), one for each character: 02 for a character without an accent, except at the end
//   01 01  (if there are kana or unprintable characters)
//       the kana's bit pairs, three to a byte, and FF 02 80 FF 80     (if there are kana)
//       FF  (if there are both)   01  unprintable characters, each as place, 06 and code
//   00
//
// For example (General Legacy): "a" 4A 01 00; "é" 51 01 0E 00; "a-b" 4A 4C 01 01 01 01 80 0B 06 82 00.

namespace veltrano::access {

namespace {

constexpr std::size_t longestText = 255;
constexpr std::uint16_t generalLanguage = 1033;

using Key = std::vector<std::uint8_t>;

/// What one character adds.
struct Weight {
  CharacterClass characterClass = CharacterClass::ignored;
  bool small = false;
  std::uint8_t inlineLength = 0;
  std::uint8_t extraLength = 0;
  std::uint8_t inlineCode[8] = {};
  std::uint8_t extra[3] = {};
};

/// Moves a code on by some places.
std::uint32_t advanced(std::uint32_t code, std::uint32_t places) {
  if (places == 0) {
    return code;
  }
  const std::uint32_t low = (code & 0xFF) - 2 + places;
  return (code & ~0xFFU) + ((low / 254) << 8) + low % 254 + 2;
}

/// The weight of a surrogate, which follows from its number.
Weight surrogateWeight(char16_t c) {
  std::uint32_t code = 0;
  if (c < 0xDC00) {
    code = c - 10238U;
  } else {
    const unsigned offset = c - 0xDC00U;
    code = c - (offset < 8     ? 9992U
                : offset < 262 ? 9990U
                : offset < 516 ? 9988U
                : offset < 770 ? 9986U
                               : 9984U);
  }
  Weight weight;
  weight.characterClass = CharacterClass::accented;
  weight.inlineLength = 2;
  weight.inlineCode[0] = static_cast<std::uint8_t>(code >> 8);
  weight.inlineCode[1] = static_cast<std::uint8_t>(code);
  weight.extraLength = 1;
  weight.extra[0] = 0x3F;
  return weight;
}

Weight tableWeight(const CollationTable& table, char16_t c) {
  const std::uint64_t after = (std::uint64_t{c} + 1) << 48;
  const auto next =
      c == 0xFFFF ? table.runs.end() : std::lower_bound(table.runs.begin(), table.runs.end(), after);
  const std::uint64_t run = *(next - 1);
  const auto place = static_cast<std::uint32_t>(c - (run >> 48));
  const auto value = static_cast<std::uint32_t>(run);
  std::size_t kindNumber = run >> 32 & 0xFFFF;
  std::uint32_t growth = 0;
  switch (table.kinds[kindNumber].advance) {
    case Advance::each:
      growth = place;
      break;
    case Advance::never:
      break;
    case Advance::second:
      growth = place / 2;
      kindNumber += place % 2;
      break;
    case Advance::fourth:
      growth = place / 4;
      kindNumber += place % 4;
      break;
  }
  const CollationKind& kind = table.kinds[kindNumber];
  Weight weight;
  weight.characterClass = kind.characterClass;
  weight.small = kind.small;
  weight.inlineLength = kind.inlineLength;
  weight.extraLength = kind.extraLength;
  std::copy(std::begin(kind.extra), std::end(kind.extra), weight.extra);
  if (kind.inlineLength > 4) {
    std::memcpy(weight.inlineCode, &table.longCodes[value], kind.inlineLength);
  } else {
    const std::uint32_t code = advanced(value, growth);
    for (unsigned i = 0; i < kind.inlineLength; ++i) {
      weight.inlineCode[i] = static_cast<std::uint8_t>(code >> (8 * (kind.inlineLength - 1U - i)));
    }
  }
  return weight;
}

/// The weights of an order; those of the characters that most texts consist of, unpacked.
class Weights {
 public:
  explicit Weights(const CollationTable& table) : table_(&table) {
    const std::size_t known = &table == &general97Table ? 0x100 : common_.size();
    for (std::size_t c = 0; c < known; ++c) {
      common_[c] = tableWeight(table, static_cast<char16_t>(c));
    }
  }

  const Weight& of(char16_t c, Weight& scratch) const {
    if (c < common_.size()) {
      return common_[c];
    }
    scratch = c >= 0xD800 && c < 0xE000 ? surrogateWeight(c) : tableWeight(*table_, c);
    return scratch;
  }

 private:
  const CollationTable* table_;
  std::array<Weight, 0x250> common_{};
};

const Weights& weightsOf(TextOrder order) {
  switch (order) {
    case TextOrder::general97: {
      static const Weights weights(general97Table);
      return weights;
    }
    case TextOrder::generalLegacy: {
      static const Weights weights(generalLegacyTable);
      return weights;
    }
    case TextOrder::general:
      break;
  }
  static const Weights weights(generalTable);
  return weights;
}

/// Bytes gathered while a text is read. Texts are short, so they have a fixed place.
class Tail {
 public:
  void push(std::uint32_t byte) { bytes_[size_++] = static_cast<std::uint8_t>(byte); }
  void push(const std::uint8_t* bytes, std::size_t count) {
    std::memcpy(bytes_ + size_, bytes, count);
    size_ += count;
  }
  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] std::size_t size() const { return size_; }
  std::uint8_t& back() { return bytes_[size_ - 1]; }
  void dropWhileLast(std::uint8_t least, std::uint8_t most) {
    while (size_ > 0 && bytes_[size_ - 1] >= least && bytes_[size_ - 1] <= most) {
      --size_;
    }
  }
  void appendTo(Key& key) const { key.insert(key.end(), bytes_, bytes_ + size_); }
  std::uint8_t operator[](std::size_t i) const { return bytes_[i]; }

 private:
  std::size_t size_ = 0;
  // The most a character adds is an unprintable code: place (2), mark, code.
  std::uint8_t bytes_[4 * (longestText + 1)];
};

/// Gathers the parts of a key of the orders General and General Legacy.
class KeyWriter {
 public:
  explicit KeyWriter(Key& key) : key_(key) {}

  void add(const Weight& weight) {
    const std::size_t place = places_;
    switch (weight.characterClass) {
      case CharacterClass::ignored:
        return;
      case CharacterClass::unprintable:
        addUnprintable(weight, place);
        return;
      case CharacterClass::modifier:
        addModifier(weight);
        return;
      case CharacterClass::simple:
      case CharacterClass::significant:
      case CharacterClass::accented:
      case CharacterClass::extended:
        break;
    }
    key_.insert(key_.end(), weight.inlineCode, weight.inlineCode + weight.inlineLength);
    ++places_;
    if (weight.extraLength > 0) {
      countUpTo(place);
      extra_.push(weight.extra, weight.extraLength);
      ++counted_;
    }
    if (weight.characterClass == CharacterClass::extended) {
      kana_.push(weight.small ? 0x02 : 0x03);
    }
  }

  void finish() {
    key_.push_back(0x01);
    const bool hasKana = !kana_.empty();
    extra_.dropWhileLast(0x00, 0x02);
    extra_.appendTo(key_);
    if (hasKana || !unprintable_.empty()) {
      key_.insert(key_.end(), {0x01, 0x01});
    }
    if (hasKana) {
      writeKana();
    }
    if (!unprintable_.empty()) {
      if (hasKana) {
        key_.push_back(0xFF);
      }
      key_.push_back(0x01);
      unprintable_.appendTo(key_);
    }
    key_.push_back(0x00);
  }

 private:
  void addUnprintable(const Weight& weight, std::size_t place) {
    const std::size_t offset = extra_.empty() ? place : extra_.size() + (place - counted_) - prefix_;
    const auto word = static_cast<std::uint32_t>(0x8000 | (7 + 4 * offset));
    unprintable_.push(word >> 8);
    unprintable_.push(word);
    unprintable_.push(0x06);
    unprintable_.push(weight.inlineCode, weight.inlineLength);
  }

  /// Gives the characters before `place` that have no extra code yet the neutral one.
  void countUpTo(std::size_t place) {
    for (; counted_ < place; ++counted_) {
      extra_.push(0x02);
    }
  }

  /// A combining mark adds to the code of the character before it, so that "a" and U+0301 give the key of
  /// U+00E1.
  void addModifier(const Weight& weight) {
    countUpTo(places_);
    if (extra_.empty()) {
      extra_.push(weight.inlineCode[0]);
      prefix_ = 1;
    } else {
      extra_.back() = static_cast<std::uint8_t>(extra_.back() + weight.inlineCode[0]);
    }
  }

  void writeKana() {
    kana_.dropWhileLast(0x03, 0x03);
    for (std::size_t i = 0; i < kana_.size(); i += 3) {
      unsigned packed = 0x80;
      for (std::size_t j = 0; j < 3 && i + j < kana_.size(); ++j) {
        packed |= static_cast<unsigned>(kana_[i + j]) << (4 - 2 * j);
      }
      key_.push_back(static_cast<std::uint8_t>(packed));
    }
    key_.insert(key_.end(), {0xFF, 0x02, 0x80, 0xFF, 0x80});
  }

  Key& key_;
  std::size_t places_ = 0;   ///< characters with inline codes so far
  std::size_t counted_ = 0;  ///< those that the extra codes account for
  std::size_t prefix_ = 0;   ///< 1 if the extra codes start with that of a mark without a letter
  Tail extra_;
  Tail kana_;
  Tail unprintable_;
};

/// General 97: inline codes, then the accents as half bytes.
void appendKey97(Key& key, Bytes text) {
  const Weights& weights = weightsOf(TextOrder::general97);
  Weight scratch;
  Tail halves;
  std::size_t significant = 0;
  for (const std::uint8_t c : text) {
    const Weight& weight = weights.of(c, scratch);
    key.insert(key.end(), weight.inlineCode, weight.inlineCode + weight.inlineLength);
    if (weight.characterClass == CharacterClass::significant) {
      ++significant;
    } else if (weight.characterClass == CharacterClass::accented) {
      if (halves.empty()) {
        halves.push(0);
      }
      for (; significant > 0; --significant) {
        halves.push(2);
      }
      halves.push(weight.extra[0] & 0x0F);
    }
  }
  halves.push(0);
  for (std::size_t i = 0; i < halves.size(); i += 2) {
    const unsigned low = i + 1 < halves.size() ? halves[i + 1] : 0U;
    key.push_back(static_cast<std::uint8_t>((unsigned{halves[i]} << 4) | low));
  }
}

/// The part of a key that comes from the characters themselves, without accents.
Bytes inlineCodeOf(const Weight& weight) {
  switch (weight.characterClass) {
    case CharacterClass::ignored:
    case CharacterClass::unprintable:
    case CharacterClass::modifier:
      return {};
    default:
      return Bytes(weight.inlineCode).first(weight.inlineLength);
  }
}

/// The characters with another inline code than their lower case has, by that.
using StrayCapitals = std::multimap<char16_t, char16_t>;

StrayCapitals findStrayCapitals(TextOrder order) {
  const Weights& weights = weightsOf(order);
  StrayCapitals strays;
  // Those of ASCII have the code of their lower case in every order.
  for (std::size_t i = 0; i < lowerCaseRunCount; ++i) {
    const LowerCaseRun& run = lowerCaseRuns[i];
    for (int c = run.first; c <= run.last; c += run.step) {
      Weight upper;
      Weight lower;
      const auto capital = static_cast<char16_t>(c);
      const auto letter = static_cast<char16_t>(c + run.shift);
      if (!std::ranges::equal(inlineCodeOf(weights.of(capital, upper)),
                              inlineCodeOf(weights.of(letter, lower)))) {
        strays.emplace(letter, capital);
      }
    }
  }
  return strays;
}

const StrayCapitals& strayCapitals(TextOrder order) {
  // Never destroyed: databases may be global objects of the host.
  static const auto& ofGeneral = *new StrayCapitals(findStrayCapitals(TextOrder::general));
  static const auto& ofGeneralLegacy = *new StrayCapitals(findStrayCapitals(TextOrder::generalLegacy));
  return order == TextOrder::general ? ofGeneral : ofGeneralLegacy;
}

void flip(Key& key, std::size_t from) {
  for (std::size_t i = from; i < key.size(); ++i) {
    key[i] = static_cast<std::uint8_t>(~key[i]);
  }
}

}  // namespace

std::optional<TextOrder> textOrder(Version version, std::uint16_t language, std::uint8_t orderVersion,
                                   std::uint32_t defaultOrder) {
  if (language == 0) {
    language = static_cast<std::uint16_t>(defaultOrder);
    orderVersion = static_cast<std::uint8_t>(defaultOrder >> 24);
  }
  if (language != generalLanguage || orderVersion > 1) {
    return std::nullopt;
  }
  if (isJet3(version)) {
    return TextOrder::general97;
  }
  return orderVersion == 0 ? TextOrder::generalLegacy : TextOrder::general;
}

void appendTextKey(Key& key, Bytes text, TextOrder order, bool ascending) {
  const std::size_t start = key.size();
  if (order == TextOrder::general97) {
    text = text.first(std::min(text.size(), longestText));
    while (!text.empty() && text.back() == ' ') {
      text = text.first(text.size() - 1);
    }
    appendKey97(key, text);
    if (!ascending) {
      flip(key, start);
    }
    return;
  }
  std::size_t count = std::min(text.size() / 2, longestText);
  while (count > 0 && load16(&text[2 * (count - 1)]) == u' ') {
    --count;
  }
  const Weights& weights = weightsOf(order);
  Weight scratch;
  KeyWriter writer(key);
  for (std::size_t i = 0; i < count; ++i) {
    writer.add(weights.of(static_cast<char16_t>(load16(&text[2 * i])), scratch));
  }
  writer.finish();
  if (!ascending) {
    flip(key, start);
    key.push_back(0x00);
  }
}

std::vector<Key> keyStartsInAnyCase(std::u16string_view lowered, TextOrder order, bool ascending) {
  constexpr std::size_t mostStarts = 16;
  lowered = lowered.substr(0, longestText);
  lowered = lowered.substr(0, lowered.find_last_not_of(u' ') + 1);
  const Weights& weights = weightsOf(order);
  const StrayCapitals& strays = strayCapitals(order);
  std::vector<Key> starts(1);
  const auto append = [&](Key& start, char16_t c) {
    Weight scratch;
    const Bytes code = inlineCodeOf(weights.of(c, scratch));
    start.insert(start.end(), code.begin(), code.end());
  };
  for (const char16_t c : lowered) {
    const std::size_t before = starts.size();
    const auto [first, last] = strays.equal_range(c);
    for (auto stray = first; stray != last; ++stray) {
      for (std::size_t i = 0; i < before; ++i) {
        starts.push_back(starts[i]);
        append(starts.back(), stray->second);
      }
    }
    if (starts.size() > mostStarts) {
      return {};
    }
    for (std::size_t i = 0; i < before; ++i) {
      append(starts[i], c);
    }
  }
  for (Key& start : starts) {
    start.push_back(0x01);
    if (!ascending) {
      flip(start, 0);
    }
  }
  return starts;
}

}  // namespace veltrano::access
