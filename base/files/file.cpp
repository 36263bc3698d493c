#include "base/files/file.h"

#include <utility>

#include "base/files/calls.h"

namespace veltrano {

namespace {

/// Repeats `move`, which is told how many bytes are done and where in the file they go on, until all are moved or it
/// moves none.
template <typename Move>
Result<std::size_t> moveAll(std::size_t size, std::optional<std::uint64_t> offset, Move move) {
  std::size_t done = 0;
  while (done < size) {
    auto count = move(done, offset ? std::optional(*offset + done) : std::nullopt);
    if (!count) {
      return count;
    }
    if (*count == 0) {
      break;
    }
    done += *count;
  }
  return done;
}

}  // namespace

File::File(FileHandle handle, std::filesystem::path name)
    : handle_(std::move(handle)), name_(std::move(name)) {}

Result<std::size_t> File::readAll(std::optional<std::uint64_t> offset, std::span<char> target) {
  if (Status watched = beforeFileCall(FileCall::read, name_); !watched) {
    return watched;
  }
  return moveAll(target.size(), offset, [&](std::size_t done, std::optional<std::uint64_t> place) {
    return readSome(place, target.subspan(done));
  });
}

Status File::writeAll(std::optional<std::uint64_t> offset, std::string_view bytes) {
  if (Status watched = beforeFileCall(FileCall::write, name_); !watched) {
    return watched;
  }
  const auto count = moveAll(bytes.size(), offset, [&](std::size_t done, std::optional<std::uint64_t> place) {
    return writeSome(place, bytes.substr(done));
  });
  return !count || *count == bytes.size() ? count.status()
                                          : Status(Failure::other, "the system takes no more");
}

Result<std::size_t> File::read(std::span<char> target) {
  return readAll(std::nullopt, target);
}
Status File::write(std::string_view bytes) {
  return writeAll(std::nullopt, bytes);
}
Result<std::size_t> File::readAt(std::uint64_t offset, std::span<char> target) {
  return readAll(offset, target);
}
Status File::writeAt(std::uint64_t offset, std::string_view bytes) {
  return writeAll(offset, bytes);
}

}  // namespace veltrano
