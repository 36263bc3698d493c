#include "base/files/paths.h"
#include "base/text/code_page.h"

namespace veltrano {

std::filesystem::path pathFromUtf16(std::u16string_view name) {
  if (name.find(u'\0') != std::u16string_view::npos) {
    return {};
  }
  return std::wstring(name.begin(), name.end());
}

std::filesystem::path pathFromUtf8(std::string_view name) {
  return pathFromUtf16(utf8ToUtf16(name));
}

std::string pathToUtf8(const std::filesystem::path& path) {
  return utf16ToUtf8(path.u16string());
}

}  // namespace veltrano
