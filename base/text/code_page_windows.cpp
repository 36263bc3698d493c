#include <windows.h>

#include <limits>
#include <string>

#include "base/text/code_page.h"

namespace veltrano {

namespace {

// The conversion functions count in int; text of 2 GiB and more is beyond what a host can hold in one string
// anyway.
int length(std::size_t size) {
  constexpr auto largest = static_cast<std::size_t>(std::numeric_limits<int>::max());
  return static_cast<int>(size < largest ? size : largest);
}

}  // namespace

std::string codePage() {
  return "windows-" + std::to_string(GetACP());
}

bool setCodePage(std::string_view) {
  return false;
}

std::string convertToAnsi(std::u16string_view text) {
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

}  // namespace veltrano
