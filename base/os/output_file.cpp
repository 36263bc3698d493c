#include <utility>

#include "base/os/files.h"
#include "base/os/raw_output.h"
#include "base/trace.h"

namespace veltrano {

OutputFile::OutputFile(std::unique_ptr<RawOutput> file) : file_(std::move(file)) {}
OutputFile::OutputFile(OutputFile&&) noexcept = default;
OutputFile& OutputFile::operator=(OutputFile&&) noexcept = default;
OutputFile::~OutputFile() = default;

std::optional<OutputFile> OutputFile::create(const std::filesystem::path& file) {
  auto raw = RawOutput::create(file);
  if (!raw) {
    return std::nullopt;
  }
  return OutputFile(std::move(raw));
}

bool OutputFile::write(std::string_view text) {
  const bool written = file_->write(text);
  if (!written) {
    traceSkipped("OutputFile", "text could not be written");
  }
  return written;
}

}  // namespace veltrano
