#include "base/files/output.h"

#include <utility>

#include "base/trace.h"

namespace veltrano {

OutputFile::OutputFile(File file) : file_(std::move(file)) {}

std::optional<OutputFile> OutputFile::create(const std::filesystem::path& file) {
  auto opened = File::open(file, Opening::append);
  // Emptied only now that it is known that nobody else is writing it.
  const Status status = opened && opened->onDisk() ? opened->resize(0) : opened.status();
  if (!status) {
    trace("The file ", file, " cannot be written: ", status, ".");
    return std::nullopt;
  }
  return OutputFile(*std::move(opened));
}

bool OutputFile::write(std::string_view text) {
  const Status status = file_.write(text);
  if (!status) {
    trace("The file ", file_.name(), " cannot take what is to be written: ", status, ".");
  }
  return static_cast<bool>(status);
}

}  // namespace veltrano
