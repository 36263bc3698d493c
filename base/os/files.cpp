#include "base/os/files.h"

#include <algorithm>
#include <system_error>

#include "base/trace.h"

namespace veltrano {

bool replaceFile(const std::filesystem::path& file, std::string_view content, Durability durability) {
  return replaceFile(file, std::span(&content, 1), durability);
}

std::optional<std::vector<std::filesystem::path>> listFiles(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::directory_iterator entry(folder, error);
  if (error) {
    traceSkipped("listFiles", error.message());
    return std::nullopt;
  }
  std::vector<std::filesystem::path> names;
  while (!error && entry != std::filesystem::directory_iterator()) {
    std::error_code ignored;  // an entry that vanished meanwhile is none
    if (entry->is_regular_file(ignored)) {
      names.push_back(entry->path().filename());
    }
    entry.increment(error);
  }
  std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return a.native() < b.native(); });
  return names;
}

}  // namespace veltrano
