#include <utility>

#include "base/os/files.h"
#include "base/os/raw_output.h"
#include "base/trace.h"

namespace veltrano {

OutputFile::State::State(std::unique_ptr<RawOutput> raw) : file(std::move(raw)) {
  buffer.reserve(capacity);
}

OutputFile::OutputFile(std::unique_ptr<State> state) : state_(std::move(state)) {}
OutputFile::OutputFile(OutputFile&&) noexcept = default;

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  if (this != &other) {
    flush();
    state_ = std::move(other.state_);
  }
  return *this;
}

OutputFile::~OutputFile() {
  flush();
}

std::optional<OutputFile> OutputFile::create(const std::filesystem::path& file) {
  auto raw = RawOutput::createNew(file);
  if (!raw) {
    return std::nullopt;
  }
  return OutputFile(std::make_unique<State>(std::move(raw)));
}

void OutputFile::write(std::string_view text) {
  std::string& buffer = state_->buffer;
  if (text.size() > State::capacity - buffer.size()) {
    flush();
    if (text.size() >= State::capacity) {
      state_->lost |= !state_->file->write(text);
      return;
    }
  }
  buffer.append(text);
}

void OutputFile::writeLine(std::string_view text) {
  write(text);
  write("\r\n");
}

bool OutputFile::flush() {
  if (!state_) {
    return true;
  }
  if (!state_->buffer.empty()) {
    if (!state_->file->write(state_->buffer)) {
      traceSkipped("OutputFile", "text could not be written");
      state_->lost = true;
    }
    state_->buffer.clear();
  }
  return !std::exchange(state_->lost, false);
}

}  // namespace veltrano
