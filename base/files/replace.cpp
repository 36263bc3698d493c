#include "base/files/replace.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "base/files/file.h"
#include "base/os/clock.h"
#include "base/trace.h"

namespace veltrano {

namespace {

using Pieces = std::span<const std::string_view>;

std::size_t sizeOf(Pieces pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) {
    size += piece.size();
  }
  return size;
}

Status writePieces(File& file, Pieces pieces, Durability durability) {
  for (const std::string_view piece : pieces) {
    if (Status status = file.write(piece); !status) {
      return status;
    }
  }
  return durability == Durability::power ? file.sync() : Status();
}

/// Writes the bytes from `first` up to `last` of all pieces together at the same offsets of the file.
Status writeRange(File& file, Pieces pieces, std::size_t first, std::size_t last) {
  std::size_t start = 0;
  for (const std::string_view piece : pieces) {
    const std::size_t from = std::max(start, first);
    const std::size_t to = std::min(start + piece.size(), last);
    if (from < to) {
      if (Status status = file.writeAt(from, piece.substr(from - start, to - from)); !status) {
        return status;
      }
    }
    start += piece.size();
  }
  return {};
}

/// Lets what another program prevents for a moment (a virus scanner, a reader) be tried again, some tens of
/// milliseconds in all.
class Patience {
 public:
  /// After `status`: true when it is worth another attempt, for which it has then waited.
  bool allowsAnother(const Status& status) {
    constexpr int longestPause = 16;
    if (status.failure() != Failure::inUse || milliseconds_ > longestPause) {
      return false;
    }
    pauseThread(milliseconds_);
    milliseconds_ *= 2;
    return true;
  }

 private:
  int milliseconds_ = 1;
};

/// A file of this call's own beside another one; deleted when it goes away, unless it was renamed.
class TemporaryFile {
 public:
  static Result<TemporaryFile> createBeside(const std::filesystem::path& file, bool isPrivate) {
    constexpr int mostAttempts = 16;
    Status status;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
      const auto name = nameBeside(file);
      if (!name) {
        return name.status();
      }
      auto created = File::open(*name, isPrivate ? Opening::createPrivate : Opening::createNew);
      if (created) {
        return TemporaryFile(*name, *std::move(created));
      }
      status = created.status();
      if (status.failure() != Failure::exists) {
        break;
      }
    }
    return status;
  }

  TemporaryFile(TemporaryFile&&) noexcept = default;
  TemporaryFile& operator=(TemporaryFile&&) noexcept = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!name_.empty()) {
      file_.reset();
      removeFile(name_);
    }
  }

  File& file() { return *file_; }

  Status renameTo(const std::filesystem::path& target, Durability durability, Patience& patience) {
    file_.reset();
    Status status;
    do {
      status = renameOver(name_, target, durability == Durability::power);
    } while (patience.allowsAnother(status));
    if (status) {
      name_.clear();
    }
    return status;
  }

 private:
  TemporaryFile(std::filesystem::path name, File file) : name_(std::move(name)), file_(std::move(file)) {}

  // Unpredictable, so that neither another process nor another machine hits on it.
  static Result<std::filesystem::path> nameBeside(const std::filesystem::path& file) {
    const auto number = randomNumber();
    if (!number) {
      return number.status();
    }
    std::string name = ".veltrano-";
    for (int shift = 60; shift >= 0; shift -= 4) {
      name += "0123456789abcdef"[(*number >> shift) & 15];
    }
    return file.parent_path() / (name + ".tmp");
  }

  std::filesystem::path name_;
  std::optional<File> file_;
};

/// What became of an attempt to put a new file in the place of an old one.
struct Replacement {
  Status status;
  bool inPlaceMayWork = false;
};

/// `model`: the file whose rights the new one gets; empty if there is none.
Replacement replaceByRenaming(const std::filesystem::path& target, const std::filesystem::path& model,
                              Pieces pieces, Durability durability, Patience& patience) {
  auto temporary = TemporaryFile::createBeside(target, !model.empty());
  if (!temporary) {
    return {temporary.status(), temporary.failure() != Failure::full};
  }
  if (!model.empty() && !temporary->file().takeRightsOf(model)) {
    return {Status(Failure::notAllowed, "the file belongs to somebody else"), true};
  }
  if (Status status = writePieces(temporary->file(), pieces, durability); !status) {
    // A disk that is full or broken: the old content is the best there is.
    return {std::move(status), false};
  }
  return {temporary->renameTo(target, durability, patience), true};
}

/// A failure leaves the file as it was, as far as the disk allows.
Status writeOver(File& file, Pieces pieces, Durability durability) {
  const auto oldSize = file.size();
  if (!oldSize) {
    return oldSize.status();
  }
  const std::size_t newSize = sizeOf(pieces);
  const auto common = static_cast<std::size_t>(std::min<std::uint64_t>(*oldSize, newSize));
  std::string old(common, '\0');
  if (const auto count = file.readAt(0, old); !count || *count != common) {
    return count ? Status(Failure::other, "the file changes meanwhile") : count.status();
  }
  // First what needs room on the disk, then what replaces the old content, last what cuts it.
  Status status = writeRange(file, pieces, common, newSize);
  if (status) {
    status = writeRange(file, pieces, 0, common);
    if (status && newSize < *oldSize) {
      status = file.resize(newSize);
    }
    if (!status) {
      file.writeAt(0, old);
    }
  }
  if (!status) {
    if (newSize > *oldSize) {
      file.resize(*oldSize);
    }
    return status;
  }
  return durability == Durability::power ? file.sync() : Status();
}

Status writeNew(const std::filesystem::path& target, Pieces pieces, Durability durability) {
  auto created = File::open(target, Opening::createNew);
  if (!created) {
    return created.status();
  }
  Status status = writePieces(*created, pieces, durability);
  if (!status) {
    { const File closed = *std::move(created); }
    removeFile(target);
  }
  return status;
}

/// As a plain open for output would.
Status writeInPlace(const std::filesystem::path& target, Pieces pieces, Durability durability,
                    Patience& patience) {
  for (;;) {
    auto file = File::open(target, Opening::change);
    if (file) {
      return writeOver(*file, pieces, durability);
    }
    if (file.failure() == Failure::missing) {
      return writeNew(target, pieces, durability);
    }
    if (!patience.allowsAnother(file.status())) {
      return file.status();
    }
  }
}

Status replace(const std::filesystem::path& file, Pieces pieces, Durability durability) {
  const auto target = linkTarget(file);
  const FileKind kind = kindOf(target);
  if (kind == FileKind::device) {
    auto device = File::open(target, Opening::write);
    return device ? writePieces(*device, pieces, Durability::process) : device.status();
  }
  if (kind == FileKind::folder) {
    return {Failure::notAllowed, "a folder has this name"};
  }
  const bool exists = kind == FileKind::regular;
  // Renaming needs rights on the folder only; the file's own refusal must count too.
  if (exists && !mayWrite(target)) {
    return {Failure::notAllowed, "the file is read-only"};
  }
  Patience patience;
  Replacement replacement =
      replaceByRenaming(target, exists ? target : std::filesystem::path(), pieces, durability, patience);
  if (replacement.status || !replacement.inPlaceMayWork) {
    return std::move(replacement.status);
  }
  Status status = writeInPlace(target, pieces, durability, patience);
  if (status) {
    trace("The file ", file,
          " was written in place, because no new one can take its place: ", replacement.status, ".");
  }
  return status;
}

}  // namespace

Status replaceFile(const std::filesystem::path& file, std::span<const std::string_view> pieces,
                   Durability durability) {
  Status status = file.empty() ? Status(Failure::missing, "no name") : replace(file, pieces, durability);
  if (!status) {
    trace("The file ", file, " was not written: ", status, ".");
  }
  return status;
}

Status replaceFile(const std::filesystem::path& file, std::string_view content, Durability durability) {
  return replaceFile(file, std::span(&content, 1), durability);
}

Status replaceFileAs(const std::filesystem::path& model, const std::filesystem::path& file,
                     std::string_view content, Durability durability) {
  Patience patience;
  Status status = kindOf(file) == FileKind::folder
                      ? Status(Failure::notAllowed, "a folder has this name")
                      : replaceByRenaming(file, model, std::span(&content, 1), durability, patience).status;
  if (!status) {
    trace("The file ", file, " was not written: ", status, ".");
  }
  return status;
}

}  // namespace veltrano
