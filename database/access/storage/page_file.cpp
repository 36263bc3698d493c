#include "database/access/storage/page_file.h"

#include <algorithm>
#include <array>

#include "database/access/storage/encryption/information.h"
#include "database/access/storage/journal/journal.h"
#include "database/access/storage/journal/recovery.h"

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

// The folder may be closed to the user although the file is not.
bool journalCanBeMade(FileSystem& files, const std::filesystem::path& path) {
  // Closed again before it is removed.
  const bool made = static_cast<bool>(files.open(journalPath(path), OpenMode::create));
  return made && files.remove(journalPath(path));
}

}  // namespace

Result<PageFile> PageFile::open(FileSystem& files, const std::filesystem::path& path, bool readOnly,
                                std::string_view password) {
  PageFile file;
  // The journal lies beside the file itself.
  std::error_code error;
  file.path_ = std::filesystem::canonical(path, error);
  if (error) {
    file.path_ = path;
  }
  if (readOnly) {
    file.writable_ = {Failure::notAllowed, "it was opened for reading only"};
  }
  Status done = file.openFile(files);
  if (done) {
    done = file.readHeaderPage(password);
  }
  if (done) {
    done = file.recover(files);
  }
  if (done) {
    done = file.checkDecoding();
  }
  return done ? Result<PageFile>(std::move(file)) : done;
}

Status PageFile::openFile(FileSystem& files) {
  auto opened = files.open(path_, writable_ ? OpenMode::write : OpenMode::read);
  if (writable_ && opened.failure() == Failure::notAllowed) {
    writable_ = opened.status();
    opened = files.open(path_, OpenMode::read);
  }
  if (!opened) {
    return opened.status();
  }
  file_ = *std::move(opened);
  if (otherProgramUses(files, path_)) {
    return {Failure::inUse, "another program's lock file says that the file is in use"};
  }
  return {};
}

Status PageFile::readHeaderPage(std::string_view password) {
  std::array<std::uint8_t, headerSize> first = {};
  const auto got = file_->readAt(0, first);
  if (!got) {
    return {Failure::other, "the file cannot be read"};
  }
  auto header = readHeader(Bytes(first).first(*got), password);
  if (!header) {
    return header.status();
  }
  header_ = *std::move(header);
  identity_ = hashBytes(Bytes(first).first(pageSize()));
  return {};
}

Status PageFile::recover(FileSystem& files) {
  if (!recoverDatabase(files, path_, writable_ ? file_.get() : nullptr, identity_, pageSize())) {
    return {Failure::other, "an ended process left a journal beside the file, and it cannot be applied"};
  }
  const auto length = file_->size();
  if (!length || *length > maximumFileSize(header_.version)) {
    return {Failure::damaged, "the file is larger than the format allows"};
  }
  length_ = *length;
  if (writable_) {
    writable_ = whyNotWritable(files);
  }
  return {};
}

Status PageFile::whyNotWritable(FileSystem& files) const {
  if (length_ % pageSize() != 0) {
    return {Failure::damaged, "the last page of the file is not whole"};
  }
  if (isJet3(header_.version)) {
    // Nobody can check what would be written.
    return {Failure::notAllowed, "files of Access 97 and earlier are only read"};
  }
  if (!journalCanBeMade(files, path_)) {
    return {Failure::notAllowed, "its folder takes no journal beside the file"};
  }
  return {};
}

// No sum protects the pages: what a wrong key makes of them is found by how the first two must begin.
Status PageFile::checkDecoding() {
  if (!header_.cipher || header_.version < Version::ace12) {
    return {};
  }
  constexpr std::array<std::uint8_t, 2> kinds = {page_kind::data, page_kind::definition};
  std::vector<std::uint8_t> page(pageSize());
  for (PageNumber number = 1; number <= kinds.size(); ++number) {
    if (!read(number, page) || page[0] != kinds[number - 1] || page[1] != 1) {
      return unknownEncryption("its pages do not decode");
    }
  }
  return {};
}

bool PageFile::read(PageNumber page, MutableBytes target) {
  const auto got = file_->readAt(offsetOf(page), target);
  if (!got) {
    return false;
  }
  if (header_.cipher && page != 0) {
    header_.cipher->decode(page, target);
  }
  std::fill(target.begin() + static_cast<std::ptrdiff_t>(*got), target.end(), std::uint8_t{0});
  return true;
}

bool PageFile::write(PageNumber page, Bytes bytes) {
  // A write that fails on a full disk may have made the file longer by a part of the page.
  length_ = std::max(length_, offsetOf(page) + pageSize());
  return file_->writeAt(offsetOf(page), encoded(page, bytes, space_));
}

bool PageFile::setLength(std::uint64_t length) {
  if (length == length_ || file_->resize(length)) {
    length_ = length;
    return true;
  }
  return false;
}

Bytes PageFile::encoded(PageNumber page, Bytes bytes, std::vector<std::uint8_t>& space) const {
  if (!header_.cipher || page == 0) {
    return bytes;
  }
  space.assign(bytes.begin(), bytes.end());
  header_.cipher->encode(page, space);
  return space;
}

Bytes PageFile::readEncoded(PageNumber page, std::vector<std::uint8_t>& space) {
  space.resize(pageSize());
  return file_->readAt(offsetOf(page), space) == space.size() ? Bytes(space) : Bytes();
}

}  // namespace veltrano::access
