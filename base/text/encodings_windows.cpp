#include <windows.h>

#include <algorithm>
#include <charconv>
#include <limits>

#include "base/text/encodings.h"

namespace veltrano {

namespace {

struct NumberedName {
  std::string_view prefix;
  UINT first;
  UINT last;
  UINT offset;
};

/// The system numbers its code pages. A name is one of `names`, or a prefix and a number.
constexpr NumberedName numberedNames[] = {{"iso-8859-", 1, 16, 28590},
                                          {"iso_8859-", 1, 16, 28590},
                                          {"windows-", 874, 1361, 0},
                                          {"cp", 437, 1361, 0},
                                          {"ibm", 437, 869, 0}};
constexpr struct {
  std::string_view name;
  UINT page;
} names[] = {{"us-ascii", 20127}, {"ascii", 20127},     {"latin1", 28591},       {"koi8-r", 20866},
             {"koi8-u", 21866},   {"macintosh", 10000}, {"shift_jis", 932},      {"shift-jis", 932},
             {"sjis", 932},       {"x-sjis", 932},      {"ms_kanji", 932},       {"windows-31j", 932},
             {"euc-jp", 51932},   {"euc-jp", 20932},    {"iso-2022-jp", 50220},  {"gb2312", 936},
             {"gbk", 936},        {"gb18030", 54936},   {"hz-gb-2312", 52936},   {"big5", 950},
             {"euc-kr", 51949},   {"euc-kr", 949},      {"ks_c_5601-1987", 949}, {"iso-2022-kr", 50225},
             {"johab", 1361},     {"tis-620", 874}};

/// Zero if the name stands for none that this system has.
UINT pageNumber(std::string_view name) {
  std::string lowered(name);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
  for (const auto& [known, page] : names) {
    if (lowered == known && IsValidCodePage(page) != 0) {
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
    const bool valid = error == std::errc{} && stop == end && number >= first && number <= last &&
                       IsValidCodePage(offset + number) != 0;
    return valid ? offset + number : 0;
  }
  return 0;
}

std::optional<std::u16string> toUnicode(UINT page, DWORD flags, std::string_view bytes) {
  const auto* from = bytes.data();
  const auto size = static_cast<int>(bytes.size());
  const int needed = MultiByteToWideChar(page, flags, from, size, nullptr, 0);
  if (needed <= 0) {
    return std::nullopt;
  }
  std::u16string text(static_cast<std::size_t>(needed), u'\0');
  MultiByteToWideChar(page, flags, from, size, reinterpret_cast<wchar_t*>(text.data()), needed);
  return text;
}

bool isConvertible(UINT page, std::size_t size) {
  return page != 0 && size <= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

}  // namespace

std::optional<std::u16string> decodeText(std::string_view encoding, std::string_view bytes) {
  const UINT page = pageNumber(encoding);
  if (!isConvertible(page, bytes.size())) {
    return std::nullopt;
  }
  if (bytes.empty()) {
    return std::u16string();
  }
  // Some code pages take no flags at all.
  auto text = toUnicode(page, MB_ERR_INVALID_CHARS, bytes);
  return text || GetLastError() != ERROR_INVALID_FLAGS ? text : toUnicode(page, 0, bytes);
}

std::optional<std::string> encodeText(std::string_view encoding, std::u16string_view text) {
  const UINT page = pageNumber(encoding);
  if (!isConvertible(page, text.size())) {
    return std::nullopt;
  }
  if (text.empty()) {
    return std::string();
  }
  const auto* from = reinterpret_cast<const wchar_t*>(text.data());
  const auto size = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(page, 0, from, size, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(std::max(needed, 0)), '\0');
  WideCharToMultiByte(page, 0, from, size, bytes.data(), needed, nullptr, nullptr);
  // Which code pages can say that they lack a character differs; what comes back tells for all of them.
  return needed > 0 && toUnicode(page, 0, bytes) == text ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace veltrano
