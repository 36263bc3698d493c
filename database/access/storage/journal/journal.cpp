#include "database/access/storage/journal/journal.h"

#include <algorithm>
#include <random>
#include <utility>

namespace veltrano::access {

namespace {

// A record that grows longer than this goes to the file in pieces.
constexpr std::size_t pieceSize = std::size_t{1} << 20;

std::uint64_t randomNumber() {
  std::random_device source;
  return (std::uint64_t{source()} << 32) | source();
}

}  // namespace

std::filesystem::path journalPath(const std::filesystem::path& database) {
  std::filesystem::path path = database;
  path += "-journal";
  return path;
}

Journal::Journal(FileSystem& files, const std::filesystem::path& database, std::uint64_t identity)
    : files_(&files), path_(journalPath(database)) {
  head_.identity = identity;
}

void Journal::startAt(std::uint64_t databaseLength) {
  head_.length = length_ = mayReach_ = durableReach_ = databaseLength;
  head_.nonce = head_.nonce == 0 ? randomNumber() : head_.nonce + 1;
  lastHash_ = head_.hash();
}

void Journal::startRecord() {
  // The first record is written together with the head.
  pending_.assign((empty() ? JournalHead::size : 0) + RecordHead::size, 0);
  flushed_ = 0;
  changesHash_ = lastHash_;
  changesSize_ = 0;
  failed_ = false;
}

std::uint8_t* Journal::append(std::size_t size) {
  if (pending_.size() > pieceSize && !flush()) {
    failed_ = true;
    pending_.clear();
  }
  const std::size_t at = pending_.size();
  pending_.resize(at + size);
  changesSize_ += size;
  return pending_.data() + at;
}

void Journal::addChange(std::uint64_t offset, Bytes before, Bytes after) {
  const std::size_t size = Change::headSize + before.size() + after.size();
  std::uint8_t* change = append(size);
  store64(change, offset);
  store32(change + 8,
          static_cast<std::uint32_t>(after.size()) | (before.empty() ? Change::withoutOldBytes : 0));
  std::copy(before.begin(), before.end(), change + Change::headSize);
  std::copy(after.begin(), after.end(), change + Change::headSize + before.size());
  changesHash_ = mixHash(changesHash_, hashBytes(Bytes(change, size)));
}

bool Journal::flush() {
  if (!file_) {
    if (auto opened = files_->open(path_, OpenMode::create)) {
      file_ = *std::move(opened);
    }
  }
  if (!file_ || !file_->writeAt(end_ + flushed_, pending_)) {
    return false;
  }
  flushed_ += pending_.size();
  pending_.clear();
  return true;
}

bool Journal::writeRecord(std::uint64_t databaseLength) {
  RecordHead record = {0, changesSize_, databaseLength, std::max(mayReach_, databaseLength)};
  record.hash = record.hashWith(changesHash_);
  std::vector<std::uint8_t> heads((empty() ? JournalHead::size : 0) + RecordHead::size);
  if (empty()) {
    head_.store(heads.data());
  }
  record.store(heads.data() + heads.size() - RecordHead::size);
  const bool inPieces = flushed_ != 0;
  if (!inPieces) {
    std::copy(heads.begin(), heads.end(), pending_.begin());
  }
  if (failed_ || !flush() || (inPieces && !file_->writeAt(end_, heads))) {
    return false;
  }
  end_ += flushed_;
  lastHash_ = record.hash;
  length_ = record.length;
  mayReach_ = record.mayReach;
  return true;
}

bool Journal::announce(std::uint64_t databaseLength) {
  const std::uint64_t before = std::exchange(mayReach_, databaseLength);
  startRecord();
  if (!writeRecord(length_)) {
    mayReach_ = before;
    return false;
  }
  return sync();
}

bool Journal::sync() {
  if (file_ && !file_->sync()) {
    return false;
  }
  durableReach_ = mayReach_;
  return true;
}

bool Journal::clear() {
  // All of the head: a part of it that stayed could be made whole by the beginning of the next one.
  constexpr JournalHead::Stored zeros = {};
  end_ = 0;
  return file_ && file_->writeAt(0, zeros) && file_->sync();
}

void Journal::remove() {
  if (file_) {
    file_.reset();
    files_->remove(path_);
  }
}

}  // namespace veltrano::access
