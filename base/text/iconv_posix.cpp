#include "base/text/iconv_posix.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>

namespace veltrano {

namespace {

/// Null if the system does not know one of the encodings.
iconv_t openConverter(const std::string& from, const std::string& to) {
  if (from.empty() || to.empty()) {
    return nullptr;
  }
  const iconv_t handle = iconv_open(to.c_str(), from.c_str());
  // NOLINTNEXTLINE(performance-no-int-to-ptr): what iconv_open answers.
  return handle == reinterpret_cast<iconv_t>(-1) ? nullptr : handle;
}

constexpr auto failed = static_cast<std::size_t>(-1);

}  // namespace

const char* const nativeUtf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

std::string systemEncodingName(std::string_view name) {
  std::string upper(name);
  for (char& c : upper) {
    c = c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
    const bool plain = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    if (!plain) {
      return {};  // the system would read more than a name from it ("//TRANSLIT")
    }
  }
  constexpr struct {
    std::string_view name;
    std::string_view systemName;
  } renamed[] = {{"SHIFT_JIS", "CP932"},     {"SHIFT-JIS", "CP932"}, {"SJIS", "CP932"},
                 {"X-SJIS", "CP932"},        {"MS_KANJI", "CP932"},  {"WINDOWS-31J", "CP932"},
                 {"EUC-JP", "EUC-JP-MS"},    {"GB2312", "GBK"},      {"EUC-KR", "CP949"},
                 {"KS_C_5601-1987", "CP949"}};
  for (const auto& [known, systemName] : renamed) {
    if (upper == known) {
      return std::string(systemName);
    }
  }
  constexpr std::string_view windows = "WINDOWS-";
  return upper.starts_with(windows) ? "CP" + upper.substr(windows.size()) : upper;
}

Converter::Converter(const std::string& from, const std::string& to) : handle_(openConverter(from, to)) {}

bool Converter::convert(std::string_view text, std::string& result, const Otherwise& otherwise) {
  iconv(handle_.get(), nullptr, nullptr, nullptr, nullptr);
  auto* from = const_cast<char*>(text.data());  // NOLINT(cppcoreguidelines-pro-type-const-cast): only read
  std::size_t left = text.size();
  std::array<char, 4096> block;
  // The last round, without text, returns a stateful encoding to where it began.
  for (bool last = false;;) {
    char* to = block.data();
    std::size_t room = block.size();
    const std::size_t answer = iconv(handle_.get(), last ? nullptr : &from, &left, &to, &room);
    const int error = answer == failed ? errno : 0;
    result.append(block.data(), block.size() - room);
    if (error == 0) {
      if (last) {
        return true;
      }
      last = true;
    } else if (error != E2BIG) {
      const std::size_t skipped = otherwise({from, left}, result);
      if (skipped == 0) {
        return false;
      }
      from += std::min(skipped, left);
      left -= std::min(skipped, left);
    }
  }
}

}  // namespace veltrano
