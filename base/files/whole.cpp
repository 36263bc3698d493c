#include "base/files/whole.h"

#include <algorithm>
#include <system_error>

#include "base/files/file.h"
#include "base/trace.h"

namespace veltrano {

namespace {

/// The first `limit` bytes.
Result<std::string> readStart(const std::filesystem::path& file, std::size_t limit) {
  auto opened = File::open(file, Opening::read);
  auto size = opened ? opened->size() : Result<std::uint64_t>(opened.status());
  if (!size) {
    return size.status();
  }
  if (std::min<std::uint64_t>(*size, limit) >= PTRDIFF_MAX) {
    return {Failure::other, "too large for the memory"};
  }
  std::string content;
  std::size_t length = 0;
  // One byte more than the file says it has: some have more (pipes), and the read that finds the end then
  // needs no larger buffer.
  for (std::uint64_t room = *size + 1; length < limit; room *= 2) {
    content.resize(static_cast<std::size_t>(std::min<std::uint64_t>(room, limit)));
    const auto count = opened->read(std::span(content).subspan(length));
    if (!count) {
      return count.status();
    }
    length += *count;
    if (length < content.size()) {
      break;
    }
  }
  content.resize(length);
  return content;
}

}  // namespace

std::optional<std::string> readFileStart(const std::filesystem::path& file, std::size_t limit) {
  auto content = readStart(file, limit);
  if (!content) {
    trace("The file ", file, " cannot be read: ", content.status(), ".");
    return std::nullopt;
  }
  return *std::move(content);
}

Result<std::string> readFile(const std::filesystem::path& file, std::size_t most) {
  auto content = readStart(file, most + 1);
  if (!content && kindOf(file) == FileKind::folder) {
    return {Failure::other, "a folder has this name"};
  }
  if (content && content->size() > most) {
    return {Failure::other, "it has more than " + std::to_string(most >> 20) + " MB"};
  }
  return content;
}

std::optional<std::string> readWholeFile(const std::filesystem::path& file) {
  return readFileStart(file, PTRDIFF_MAX);
}

std::optional<std::vector<std::filesystem::path>> listFiles(const std::filesystem::path& folder) {
  auto names = namesOfFiles(folder);
  if (!names) {
    trace("The folder ", folder, " cannot be listed: ", names.status(), ".");
    return std::nullopt;
  }
  std::sort(names->begin(), names->end(),
            [](const auto& a, const auto& b) { return a.native() < b.native(); });
  return *std::move(names);
}

}  // namespace veltrano
