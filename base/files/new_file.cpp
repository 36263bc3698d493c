#include "base/files/new_file.h"

#include <string>
#include <utility>

namespace veltrano {

NewFile::NewFile(std::filesystem::path target, std::filesystem::path unfinished)
    : target_(std::move(target)), unfinished_(std::move(unfinished)) {}

Result<NewFile> NewFile::create(const std::filesystem::path& name) {
  auto target = linkTarget(name);
  const FileKind kind = kindOf(name);  // "/dev/stdout" leads to something that has no name
  if (target.empty() || kind == FileKind::folder) {
    return {Failure::notAllowed, target.empty() ? "no name" : "a folder has this name"};
  }
  if (kind == FileKind::device) {
    return {Failure::notAllowed, "a device or pipe, not a file"};
  }
  const auto number = randomNumber();
  if (!number) {
    return number.status();
  }
  auto unfinished = target;
  unfinished += "." + std::to_string(*number) + ".part";
  if (const auto made = File::open(unfinished, Opening::createNew); !made) {
    return made.status();
  }
  return NewFile(std::move(target), std::move(unfinished));
}

NewFile::~NewFile() {
  if (!unfinished_.empty()) {
    file_.reset();
    removeFile(unfinished_);
  }
}

Status NewFile::write(std::string_view bytes) {
  if (!file_) {
    auto opened = File::open(unfinished_, Opening::write);
    if (!opened) {
      return opened.status();
    }
    file_ = *std::move(opened);
  }
  return file_->write(bytes);
}

Status NewFile::complete() {
  file_.reset();
  if (kindOf(target_) == FileKind::regular) {
    if (!mayWrite(target_)) {
      return {Failure::notAllowed, "the file may not be written"};
    }
    if (auto file = File::open(unfinished_, Opening::change)) {
      file->takeRightsOf(target_);
    }
  }
  Status renamed = renameOver(unfinished_, target_, false);
  if (renamed) {
    unfinished_.clear();
  }
  return renamed;
}

}  // namespace veltrano
