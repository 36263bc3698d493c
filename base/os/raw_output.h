#ifndef VELTRANO_BASE_OS_RAW_OUTPUT_H
#define VELTRANO_BASE_OS_RAW_OUTPUT_H

// What OutputFile needs of the operating system.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "base/os/files.h"

namespace veltrano {

/// An open file that takes bytes at its end; closes when it goes away.
class RawOutput {
 public:
  /// Deletes `file` and creates it anew, for this process alone to write. Null when that is impossible, also
  /// when another RawOutput still has the file open.
  static std::unique_ptr<RawOutput> createNew(const std::filesystem::path& file);

  RawOutput(const RawOutput&) = delete;
  RawOutput& operator=(const RawOutput&) = delete;
  virtual ~RawOutput() = default;

  /// False when not all of it could be written.
  virtual bool write(std::string_view bytes) = 0;

 protected:
  RawOutput() = default;
};

struct OutputFile::State {
  /// As many bytes are gathered before one system call writes them.
  static constexpr std::size_t capacity = std::size_t{64} * 1024;

  explicit State(std::unique_ptr<RawOutput> raw);

  std::unique_ptr<RawOutput> file;
  std::string buffer;
  bool lost = false;
};

}  // namespace veltrano

#endif
