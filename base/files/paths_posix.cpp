#include "base/files/paths.h"
#include "base/text/code_page.h"

namespace veltrano {

std::filesystem::path pathFromUtf8(std::string_view name) {
  return name.find('\0') == std::string_view::npos ? std::filesystem::path(name) : std::filesystem::path();
}

std::filesystem::path pathFromUtf16(std::u16string_view name) {
  return pathFromUtf8(utf16ToUtf8(name));
}

std::string pathToUtf8(const std::filesystem::path& path) {
  return path.native();
}

}  // namespace veltrano
