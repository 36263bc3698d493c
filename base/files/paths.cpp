#include "base/files/paths.h"

#include "base/text/code_page.h"

namespace veltrano {

std::filesystem::path pathFromAnsi(std::string_view name) {
  return pathFromUtf16(ansiToUtf16(name));
}

std::string pathToAnsi(const std::filesystem::path& path) {
  return utf8ToAnsi(pathToUtf8(path));
}

}  // namespace veltrano
