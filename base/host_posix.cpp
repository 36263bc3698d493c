#include <dlfcn.h>

#include "base/files.h"
#include "base/host.h"

namespace veltrano {

namespace {

std::filesystem::path executable() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace

std::filesystem::path libraryFolder() {
  static const std::filesystem::path folder = [] {
    Dl_info info = {};
    std::filesystem::path file;
    if (dladdr(reinterpret_cast<const void*>(&libraryFolder), &info) != 0 && info.dli_fname != nullptr) {
      file = info.dli_fname;
    }
    // A program's own name is what its caller typed, which need not be a path that leads to it.
    std::error_code error;
    if (file.filename().native().find(".so") == std::string::npos) {
      file = executable();
    }
    const auto real = std::filesystem::canonical(file, error);
    return (error ? file : real).parent_path();
  }();
  return folder;
}

std::string hostApplicationName() {
  return pathToAnsi(executable().stem());
}

void yieldToHost() {}

}  // namespace veltrano
