#include "settings/ini_lines.h"

#include <bit>
#include <cstring>

#include "base/byte_lanes.h"
#include "base/code_page.h"

namespace veltrano {

namespace {

// So many line begins are ruled out at a time; a multiple of what the processor compares at once.
constexpr std::size_t blockSize = 128;

unsigned char indexOf(char c) {
  return static_cast<unsigned char>(c);
}

bool isLineBegin(std::string_view text, std::size_t at) {
  return at == 0 || (at >= 2 && text[at - 1] == '\n' && text[at - 2] == '\r');
}

std::size_t lineEnd(std::string_view text, std::size_t from) {
  const std::size_t end = text.find("\r\n", from);
  return end == std::string_view::npos ? text.size() : end;
}

/// The bit that all forms of a character may differ in; zero when it has one form only. Nothing when they
/// differ in more.
std::optional<char> caseBitOf(char lowered) {
  const auto& lower = ansiLowerTable();
  unsigned difference = 0;
  for (std::size_t c = 0; c < lower.size(); ++c) {
    if (lower[c] == lowered) {
      difference |= static_cast<unsigned>(c) ^ indexOf(lowered);
    }
  }
  return std::has_single_bit(difference) || difference == 0 ? std::optional(static_cast<char>(difference))
                                                            : std::nullopt;
}

}  // namespace

IniKey::IniKey(std::string_view key) : lowered_(ansiLower(key) + '=') {
  probes_.fill({key.size(), '=', '\0'});
  // The last characters tell keys apart best ("Server1", "Server2").
  std::size_t found = 0;
  for (std::size_t i = key.size(); i-- > 0 && found < probes_.size();) {
    if (const auto bit = caseBitOf(lowered_[i])) {
      probes_[found++] = {i, static_cast<char>(lowered_[i] | *bit), *bit};
    }
  }
}

bool IniKey::standsAt(std::string_view text, std::size_t begin) const {
  if (lowered_.size() > text.size() - begin) {
    return false;
  }
  const auto& lower = ansiLowerTable();
  for (std::size_t i = 0; i < lowered_.size(); ++i) {
    if (lower[indexOf(text[begin + i])] != lowered_[i]) {
      return false;
    }
  }
  return true;
}

/// False when no line of the key begins at block + 1 to block + blockSize. Three characters of a line are
/// enough to rule out nearly all others, and as many bytes as the processor can compare at once make the
/// search as fast as memory, however short the lines are.
bool IniKey::mayBeginIn(const char* block) const {
  const char* const sign = block + lowered_.size();
  const char* const first = block + 1 + probes_[0].offset;
  const char* const second = block + 1 + probes_[1].offset;
  ByteLanes candidates;
  for (std::size_t i = 0; i < blockSize; i += ByteLanes::count) {
    candidates |= (ByteLanes(sign + i) == '=') &
                  ((ByteLanes(first + i) | probes_[0].caseBit) == probes_[0].lower) &
                  ((ByteLanes(second + i) | probes_[1].caseBit) == probes_[1].lower);
  }
  return candidates.any();
}

std::optional<IniLine> IniKey::findLine(std::string_view text, std::size_t from) const {
  const auto lineAt = [&](std::size_t begin) {
    const std::size_t value = begin + lowered_.size();
    return IniLine{begin, value, lineEnd(text, value)};
  };
  // A key that holds a line end is on no line.
  if (lowered_.find("\r\n") != std::string::npos || text.empty()) {
    return std::nullopt;
  }
  if (isLineBegin(text, from) && standsAt(text, from)) {
    return lineAt(from);
  }
  for (std::size_t at = from; at < text.size();) {
    // `at` is where a line feed may stand; the line then begins behind it.
    const bool wholeBlock = text.size() - at > blockSize + lowered_.size();
    if (wholeBlock && !mayBeginIn(text.data() + at)) {
      at += blockSize;
      continue;
    }
    const std::size_t end = wholeBlock ? at + blockSize : text.size();
    while (at < end) {
      const void* const feed = std::memchr(text.data() + at, '\n', end - at);
      if (feed == nullptr) {
        break;
      }
      at = static_cast<std::size_t>(static_cast<const char*>(feed) - text.data()) + 1;
      if (isLineBegin(text, at) && standsAt(text, at)) {
        return lineAt(at);
      }
    }
    at = end;
  }
  return std::nullopt;
}

}  // namespace veltrano
