#ifndef VELTRANO_BASE_FILES_REPLACE_H
#define VELTRANO_BASE_FILES_REPLACE_H

#include <filesystem>
#include <span>
#include <string_view>

#include "base/status.h"

namespace veltrano {

/// How much a replacement must survive.
enum class Durability {
  process,  ///< the process may be killed at any instant; the system's own buffers are trusted
  power,    ///< the power may fail: the new content is on the disk before the old one goes
};

/// Puts the pieces, one after another, in place of what `file` holds, or makes the file.
///
/// The pieces are written to a new file beside it, which is then renamed over it, so the file has its old
/// content or its new one at any instant. Where that is impossible (another program keeps the file open, the
/// user may not create files in the folder) the file is written in place, as a plain open for output would.
/// If that fails too, or the disk is full, the file keeps its old content; one that did not exist is not made.
/// What another program prevents for a moment is tried again for some 30 milliseconds.
///
/// A link keeps pointing to its target, whose owner and permissions are kept: a file that a new one could not
/// be given the owner of is written in place. A read-only file is refused. A device or pipe is written to
/// directly.
Status replaceFile(const std::filesystem::path& file, std::span<const std::string_view> pieces,
                   Durability durability = Durability::process);
Status replaceFile(const std::filesystem::path& file, std::string_view content,
                   Durability durability = Durability::process);

/// The same with the owner and permissions of `model`, for copies that must be as private as that. Never in
/// place.
Status replaceFileAs(const std::filesystem::path& model, const std::filesystem::path& file,
                     std::string_view content, Durability durability);

}  // namespace veltrano

#endif
