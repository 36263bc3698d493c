#ifndef VELTRANO_BASE_OS_RAW_OUTPUT_H
#define VELTRANO_BASE_OS_RAW_OUTPUT_H

// What OutputFile needs of the operating system.

#include <filesystem>
#include <memory>
#include <string_view>

namespace veltrano {

/// An open file that takes bytes at its end; closes when it goes away.
class RawOutput {
 public:
  /// See OutputFile::create.
  static std::unique_ptr<RawOutput> create(const std::filesystem::path& file);

  RawOutput(const RawOutput&) = delete;
  RawOutput& operator=(const RawOutput&) = delete;
  virtual ~RawOutput() = default;

  /// False when not all of it could be written.
  virtual bool write(std::string_view bytes) = 0;

 protected:
  RawOutput() = default;
};

}  // namespace veltrano

#endif
