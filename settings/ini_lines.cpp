#include "settings/ini_lines.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

#include "base/text/code_page.h"

namespace veltrano {

namespace {

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

IniKey::IniKey(std::string_view key, IniKeyScan scan)
    : lowered_(ansiLower(key) + '='),
      probes_{key.size(), {key.size(), '=', '\0'}, {key.size(), '=', '\0'}},
      scan_(scan) {
  // The last characters tell keys apart best ("Server1", "Server2").
  IniProbe* const probes[] = {&probes_.first, &probes_.second};
  std::size_t found = 0;
  for (std::size_t i = key.size(); i-- > 0 && found < std::size(probes);) {
    if (const auto bit = caseBitOf(lowered_[i])) {
      *probes[found++] = {i, static_cast<char>(lowered_[i] | *bit), *bit};
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

std::optional<IniLine> IniKey::findLine(std::string_view text, std::size_t from, std::size_t to) const {
  const auto lineAt = [&](std::size_t begin) {
    const std::size_t value = begin + lowered_.size();
    return IniLine{begin, value, lineEnd(text, value)};
  };
  // A key that holds a line end is on no line.
  if (lowered_.find("\r\n") != std::string::npos || text.size() < lowered_.size()) {
    return std::nullopt;
  }
  if (from < to && isLineBegin(text, from) && standsAt(text, from)) {
    return lineAt(from);
  }
  // No line begins where the key finds no room.
  const std::size_t end = std::min(to, text.size() - lowered_.size() + 1);
  const auto indexOfPlace = [&](const void* place) {
    return static_cast<std::size_t>(static_cast<const char*>(place) - text.data());
  };
  for (std::size_t begin = from + 1; begin < end;) {
    begin = indexOfPlace(scan_(text.data() + begin, text.data() + end, probes_));
    const std::size_t windowEnd = std::min(begin + iniWindow, end);
    while (begin < windowEnd) {
      const void* const feed = std::memchr(text.data() + begin - 1, '\n', windowEnd - begin);
      if (feed == nullptr) {
        break;
      }
      begin = indexOfPlace(feed) + 1;
      if (isLineBegin(text, begin) && standsAt(text, begin)) {
        return lineAt(begin);
      }
      ++begin;
    }
    begin = windowEnd;
  }
  return std::nullopt;
}

}  // namespace veltrano
