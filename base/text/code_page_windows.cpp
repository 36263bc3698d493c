#include <windows.h>

#include <charconv>
#include <limits>

#include "base/text/code_page.h"

namespace veltrano {

namespace {

// The conversion functions count in int; text of 2 GiB and more is beyond what a host can hold in one string
// anyway.
int length(std::size_t size) {
  constexpr auto largest = static_cast<std::size_t>(std::numeric_limits<int>::max());
  return static_cast<int>(size < largest ? size : largest);
}

struct NumberedName {
  std::string_view prefix;
  UINT first;
  UINT last;
  UINT offset;
};

/// The system numbers code pages. Names are theirs, or a prefix and a number.
constexpr NumberedName numberedNames[] = {{"iso-8859-", 1, 16, 28590},
                                          {"iso_8859-", 1, 16, 28590},
                                          {"windows-", 874, 1258, 0},
                                          {"cp", 437, 1258, 0},
                                          {"ibm", 437, 869, 0}};
constexpr struct {
  std::string_view name;
  UINT page;
} otherNames[] = {{"koi8-r", 20866}, {"koi8-u", 21866}, {"macintosh", 10000}};

/// Zero when the name stands for none.
UINT pageNumber(std::string_view name) {
  const std::string lowered = ansiLower(name);
  for (const auto& [other, page] : otherNames) {
    if (lowered == other) {
      return page;
    }
  }
  for (const auto& [prefix, first, last, offset] : numberedNames) {
    if (!lowered.starts_with(prefix)) {
      continue;
    }
    UINT number = 0;
    const char* const end = lowered.data() + lowered.size();
    const auto [stop, error] = std::from_chars(lowered.data() + prefix.size(), end, number);
    return error == std::errc{} && stop == end && number >= first && number <= last ? offset + number : 0;
  }
  return 0;
}

}  // namespace

std::optional<CodePageTable> codePageNamed(std::string_view name) {
  const UINT page = pageNumber(name);
  CPINFO info = {};
  if (page == 0 || GetCPInfo(page, &info) == 0 || info.MaxCharSize != 1) {
    return std::nullopt;
  }
  CodePageTable table{};
  for (unsigned code = 0; code < 256; ++code) {
    const auto byte = static_cast<char>(code);
    wchar_t character = 0;
    // Fails for a code that stands for nothing.
    MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, &byte, 1, &character, 1);
    if (code >= 128) {
      table[code - 128U] = static_cast<char16_t>(character);
    } else if (character != code) {
      return std::nullopt;
    }
  }
  return table;
}

void setCodePage(const CodePageTable&) {}

std::string utf16ToAnsi(std::u16string_view text) {
  if (text.empty()) {
    return {};
  }
  const auto* wide = reinterpret_cast<const wchar_t*>(text.data());
  const int count = length(text.size());
  const int needed = WideCharToMultiByte(CP_ACP, 0, wide, count, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, 0, wide, count, result.data(), needed, nullptr, nullptr);
  return result;
}

std::u16string ansiToUtf16(std::string_view text) {
  if (text.empty()) {
    return {};
  }
  const int count = length(text.size());
  const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), count, nullptr, 0);
  std::u16string result(static_cast<std::size_t>(needed), u'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), count, reinterpret_cast<wchar_t*>(result.data()), needed);
  return result;
}

const std::array<char, 256>& ansiLowerTable() {
  static const std::array<char, 256> table = [] {
    CPINFO info = {};
    const bool singleByte = GetCPInfo(CP_ACP, &info) != 0 && info.MaxCharSize == 1;
    std::array<char, 256> lower{};
    for (std::size_t code = 0; code < lower.size(); ++code) {
      lower[code] = static_cast<char>(code);
      if (singleByte || code < 128) {
        CharLowerBuffA(&lower[code], 1);
      }
    }
    return lower;
  }();
  return table;
}

}  // namespace veltrano
