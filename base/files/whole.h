#ifndef VELTRANO_BASE_FILES_WHOLE_H
#define VELTRANO_BASE_FILES_WHOLE_H

// Reading whole files and folders. Failures are results, and the trace says why; only lack of memory throws.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/files/identity.h"
#include "base/files/paths.h"
#include "base/files/replace.h"
#include "base/status.h"

namespace veltrano {

/// The whole file as bytes. Empty if it is missing, a folder or unreadable. Others may use the file meanwhile.
std::optional<std::string> readWholeFile(const std::filesystem::path& file);

/// The whole file as bytes; fails with the reason, also if there are more than `most`.
Result<std::string> readFile(const std::filesystem::path& file, std::size_t most);

/// The first `limit` bytes, or all of a shorter file; otherwise like readWholeFile.
std::optional<std::string> readFileStart(const std::filesystem::path& file, std::size_t limit);

/// Names (not paths) of the regular files in `folder`, sorted by their bytes, so that the order is the same
/// on every system. Empty if there is no such folder.
std::optional<std::vector<std::filesystem::path>> listFiles(const std::filesystem::path& folder);

}  // namespace veltrano

#endif
