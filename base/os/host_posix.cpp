#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>

#include "base/files/whole.h"
#include "base/os/host.h"
#include "veltrano/installed.h"

namespace veltrano {

namespace {

constexpr const char* sharedMetrics = "share/veltranoframework/metrics";

bool holdsMetrics(const std::filesystem::path& folder) {
  // Every object asks at its start, and a look for one name is far cheaper than a list of all.
  std::error_code error;
  if (std::filesystem::exists(folder / "Helvetica.afm", error)) {
    return true;
  }
  const auto files = listFiles(folder);
  return files && std::ranges::any_of(*files, [](const auto& file) { return file.extension() == ".afm"; });
}

/// What veltrano/installed.h says; empty if the program was built without it.
std::filesystem::path& metricsOfHeaders() {
  static std::filesystem::path& folder =
      *new std::filesystem::path;  // outlives global objects, as all here do
  return folder;
}

std::filesystem::path metricsByEnvironment() {
  const char* folder = std::getenv("VELTRANO_METRICS");
  return folder == nullptr ? "" : folder;
}

}  // namespace

std::filesystem::path libraryFolder() {
  static const std::filesystem::path& folder = *new std::filesystem::path([] {
    Dl_info info = {};
    std::filesystem::path file;
    if (dladdr(reinterpret_cast<const void*>(&libraryFolder), &info) != 0 && info.dli_fname != nullptr) {
      file = info.dli_fname;
    }
    // A program's own name is what its caller typed, which need not be a path that leads to it.
    std::error_code error;
    if (file.filename().native().find(".so") == std::string::npos) {
      file = hostExecutable();
    }
    const auto real = std::filesystem::canonical(file, error);
    return (error ? file : real).parent_path();
  }());
  return folder;
}

bool setMetricsFolder(const char* folder) {
  std::error_code error;
  metricsOfHeaders() = std::filesystem::absolute(folder, error).lexically_normal();
  return true;
}

std::filesystem::path metricsFolder() {
  auto own = libraryFolder();
  for (const auto& folder :
       {metricsByEnvironment(), own, own.parent_path() / sharedMetrics, metricsOfHeaders()}) {
    if (!folder.empty() && holdsMetrics(folder)) {
      return folder;
    }
  }
  return own;
}

std::filesystem::path hostExecutable() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::string hostApplicationName() {
  return pathToAnsi(hostExecutable().stem());
}

void yieldToHost() {}

}  // namespace veltrano
