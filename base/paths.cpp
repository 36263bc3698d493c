#include "base/code_page.h"
#include "base/files.h"

namespace veltrano {

std::filesystem::path pathFromAnsi(std::string_view name) {
  return pathFromUtf16(ansiToUtf16(name));
}

}  // namespace veltrano
