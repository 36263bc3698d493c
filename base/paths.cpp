#include "base/code_page.h"
#include "base/files.h"

namespace veltrano {

// An embedded zero would silently cut the name on its way to the system and so name another file.

std::filesystem::path pathFromUtf16(std::u16string_view name) {
  return name.find(u'\0') == std::u16string_view::npos ? std::filesystem::path(name)
                                                       : std::filesystem::path();
}

std::filesystem::path pathFromUtf8(std::string_view name) {
  return pathFromUtf16(utf8ToUtf16(name));
}

std::filesystem::path pathFromAnsi(std::string_view name) {
  return pathFromUtf16(ansiToUtf16(name));
}

}  // namespace veltrano
