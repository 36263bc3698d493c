#include "base/os/files.h"
#include "base/text/code_page.h"

namespace veltrano {

std::filesystem::path pathFromAnsi(std::string_view name) {
  return pathFromUtf16(ansiToUtf16(name));
}

}  // namespace veltrano
