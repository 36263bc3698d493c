#include "base/files/whole.h"

#include <algorithm>
#include <system_error>

#include "base/files/file.h"
#include "base/trace.h"

namespace veltrano {

std::optional<std::string> readWholeFile(const std::filesystem::path& file) {
  return readFileStart(file, PTRDIFF_MAX);
}

std::optional<std::string> readFileStart(const std::filesystem::path& file, std::size_t limit) {
  auto opened = File::open(file, Opening::read);
  auto size = opened ? opened->size() : Result<std::uint64_t>(opened.status());
  if (!size) {
    trace("The file ", file, " cannot be read: ", size.status(), ".");
    return std::nullopt;
  }
  if (std::min<std::uint64_t>(*size, limit) >= PTRDIFF_MAX) {
    trace("The file ", file, " is too large for the memory.");
    return std::nullopt;
  }
  std::string content;
  std::size_t length = 0;
  // One byte more than the file says it has: some have more (pipes), and the read that finds the end then
  // needs no larger buffer.
  for (std::uint64_t room = *size + 1; length < limit; room *= 2) {
    content.resize(static_cast<std::size_t>(std::min<std::uint64_t>(room, limit)));
    const auto count = opened->read(std::span(content).subspan(length));
    if (!count) {
      trace("The file ", file, " cannot be read to its end: ", count.status(), ".");
      return std::nullopt;
    }
    length += *count;
    if (length < content.size()) {
      break;
    }
  }
  content.resize(length);
  return content;
}

std::optional<std::vector<std::filesystem::path>> listFiles(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::directory_iterator entry(folder, error);
  if (error) {
    trace("The folder ", folder, " cannot be listed: ", error.message(), ".");
    return std::nullopt;
  }
  std::vector<std::filesystem::path> names;
  while (!error && entry != std::filesystem::directory_iterator()) {
    std::error_code ignored;  // an entry that vanished meanwhile is not listed
    if (entry->is_regular_file(ignored)) {
      names.push_back(entry->path().filename());
    }
    entry.increment(error);
  }
  std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return a.native() < b.native(); });
  return names;
}

}  // namespace veltrano
