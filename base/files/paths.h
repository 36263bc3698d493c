#ifndef VELTRANO_BASE_FILES_PATHS_H
#define VELTRANO_BASE_FILES_PATHS_H

// File names in the encodings that text has inside the library. An embedded zero character would cut a name on
// its way to the system and so name another file: such a name gives an empty path, which no file has.

#include <filesystem>
#include <string>
#include <string_view>

namespace veltrano {

std::filesystem::path pathFromAnsi(std::string_view name);
std::filesystem::path pathFromUtf8(std::string_view name);
std::filesystem::path pathFromUtf16(std::u16string_view name);

/// The name in the ANSI code page; characters outside it become what the system's default conversion makes of
/// them.
std::string pathToAnsi(const std::filesystem::path& path);
std::string pathToUtf8(const std::filesystem::path& path);

}  // namespace veltrano

#endif
