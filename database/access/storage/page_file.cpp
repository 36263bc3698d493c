#include "database/access/storage/page_file.h"

#include <algorithm>
#include <array>

#include "database/access/storage/journal.h"
#include "database/access/storage/recovery.h"

namespace veltrano::access {

namespace {

bool otherProgramUses(FileSystem& files, const std::filesystem::path& file) {
  for (const char* extension : {".ldb", ".laccdb"}) {
    std::filesystem::path lockFile = file;
    if (files.lockFileInUse(lockFile.replace_extension(extension))) {
      return true;
    }
  }
  return false;
}

const char* reasonOf(OpenFailure failure) {
  switch (failure) {
    case OpenFailure::missing:
      return "no such file";
    case OpenFailure::inUse:
      return "the file is in use";
    default:
      return "the file cannot be opened";
  }
}

// The folder may be closed to the user although the file is not.
bool journalCanBeMade(FileSystem& files, const std::filesystem::path& path) {
  OpenFailure failure = {};
  const bool made = files.open(journalPath(path), OpenMode::create, failure) != nullptr;
  return made && files.remove(journalPath(path));
}

}  // namespace

std::optional<PageFile> PageFile::open(FileSystem& files, const std::filesystem::path& path, bool readOnly,
                                       std::string_view password, std::string& reason) {
  PageFile file;
  // The journal lies beside the file itself.
  std::error_code error;
  file.path_ = std::filesystem::canonical(path, error);
  if (error) {
    file.path_ = path;
  }
  file.readOnly_ = readOnly;
  const bool opened =
      file.openFile(files, reason) && file.readHeaderPage(password, reason) && file.recover(files, reason);
  return opened ? std::optional(std::move(file)) : std::nullopt;
}

bool PageFile::openFile(FileSystem& files, std::string& reason) {
  OpenFailure failure = OpenFailure::notWritable;
  if (!readOnly_) {
    file_ = files.open(path_, OpenMode::write, failure);
  }
  if (!file_ && failure == OpenFailure::notWritable) {
    readOnly_ = true;
    file_ = files.open(path_, OpenMode::read, failure);
  }
  if (!file_) {
    reason = reasonOf(failure);
    return false;
  }
  if (otherProgramUses(files, path_)) {
    reason = "another program's lock file says that the file is in use";
    return false;
  }
  return true;
}

bool PageFile::readHeaderPage(std::string_view password, std::string& reason) {
  std::array<std::uint8_t, headerSize> first = {};
  const auto got = file_->readAt(0, first);
  if (!got) {
    reason = "the file cannot be read";
    return false;
  }
  const auto header = readHeader(Bytes(first).first(*got), password, reason);
  if (!header) {
    return false;
  }
  header_ = *header;
  codec_ = PageCodec(header->pageKey);
  identity_ = hashBytes(Bytes(first).first(pageSize()));
  return true;
}

bool PageFile::recover(FileSystem& files, std::string& reason) {
  if (!recoverDatabase(files, path_, readOnly_ ? nullptr : file_.get(), identity_, pageSize())) {
    reason = "an ended process left a journal beside the file, and it cannot be applied";
    return false;
  }
  const auto length = file_->size();
  if (!length || *length > maximumFileSize(header_.version)) {
    reason = "the file is larger than the format allows";
    return false;
  }
  length_ = *length;
  // Jet 3 is read only: nobody can check what would be written.
  readOnly_ =
      readOnly_ || length_ % pageSize() != 0 || isJet3(header_.version) || !journalCanBeMade(files, path_);
  return true;
}

bool PageFile::read(PageNumber page, MutableBytes target) {
  const auto got = file_->readAt(offsetOf(page), target);
  if (!got) {
    return false;
  }
  std::fill(target.begin() + static_cast<std::ptrdiff_t>(*got), target.end(), std::uint8_t{0});
  codec_.apply(page, target);
  return true;
}

bool PageFile::write(PageNumber page, Bytes bytes) {
  if (!file_->writeAt(offsetOf(page), encoded(page, bytes, space_))) {
    return false;
  }
  length_ = std::max(length_, offsetOf(page) + pageSize());
  return true;
}

bool PageFile::setLength(std::uint64_t length) {
  if (length == length_ || file_->resize(length)) {
    length_ = length;
    return true;
  }
  return false;
}

Bytes PageFile::encoded(PageNumber page, Bytes bytes, std::vector<std::uint8_t>& space) const {
  if (!codec_.encodes()) {
    return bytes;
  }
  space.assign(bytes.begin(), bytes.end());
  codec_.apply(page, space);
  return space;
}

Bytes PageFile::readEncoded(PageNumber page, std::vector<std::uint8_t>& space) {
  space.resize(pageSize());
  return file_->readAt(offsetOf(page), space) == space.size() ? Bytes(space) : Bytes();
}

}  // namespace veltrano::access
