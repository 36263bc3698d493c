#include "database/access/storage/journal.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "base/trace.h"

namespace veltrano::access {

// The file holds one record, at its start:
//
// Offset Size
//   0     8  "VMDBJNL1"; zeros when the record is void
//   8     8  length of the database before the transaction
//  16     8  identity of the database (hash of its header page)
//  24     8  bytes of all ranges
//  32     8  hash of the bytes 8..31 and of all ranges
//  40        the ranges, one after another
//
// A range:
//   0     8  offset in the database
//   8     4  length n
//  12     n  the old bytes
//  12+n   n  the new bytes
//
// The new bytes prove that the record is about this file: each byte of a range must be found as the old or
// the new one, since the writing may have stopped anywhere. When they are not, somebody has put another file
// there.

namespace {

constexpr std::array<std::uint8_t, 8> magic = {'V', 'M', 'D', 'B', 'J', 'N', 'L', '1'};
constexpr std::size_t recordHead = 40;
constexpr std::size_t hashAt = 32;
constexpr std::size_t rangeHead = 12;

struct Range {
  std::uint64_t offset = 0;
  Bytes before;
  Bytes after;
};

std::uint64_t mix(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
  return hash ^ (hash >> 29);
}

std::uint64_t recordHash(Bytes record) {
  return mix(hashBytes(record.subspan(8, hashAt - 8)), hashBytes(record.subspan(recordHead)));
}

// Calls `action` for every range, until it answers false. False then, and when the ranges are damaged.
template <typename Action>
bool forEachRange(Bytes record, Action action) {
  for (Bytes rest = record.subspan(recordHead); !rest.empty();) {
    if (rest.size() < rangeHead) {
      return false;
    }
    const std::size_t length = load32(rest.data() + 8);
    if ((rest.size() - rangeHead) / 2 < length) {
      return false;
    }
    const Range range = {load64(rest.data()), rest.subspan(rangeHead, length),
                         rest.subspan(rangeHead + length, length)};
    if (!action(range)) {
      return false;
    }
    rest = rest.subspan(rangeHead + 2 * length);
  }
  return true;
}

std::optional<std::vector<std::uint8_t>> readRecord(RandomAccessFile& file) {
  std::array<std::uint8_t, recordHead> head = {};
  const auto size = file.size();
  if (!size || *size < recordHead || file.readAt(0, head) != recordHead ||
      !std::equal(magic.begin(), magic.end(), head.begin())) {
    return std::nullopt;
  }
  const std::uint64_t length = load64(head.data() + 24);
  if (length > *size - recordHead) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> record(recordHead + static_cast<std::size_t>(length));
  if (file.readAt(0, record) != record.size() || recordHash(record) != load64(record.data() + hashAt)) {
    return std::nullopt;
  }
  return record;
}

bool belongsTo(Bytes record, RandomAccessFile& database, std::uint64_t identity) {
  const auto size = database.size();
  if (!size || *size < load64(record.data() + 8) || load64(record.data() + 16) != identity) {
    return false;
  }
  std::vector<std::uint8_t> found;
  return forEachRange(record, [&](const Range& range) {
    found.resize(range.before.size());
    if (database.readAt(range.offset, found) != found.size()) {
      return false;
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
      if (found[i] != range.before[i] && found[i] != range.after[i]) {
        return false;
      }
    }
    return true;
  });
}

bool putBack(Bytes record, RandomAccessFile& database) {
  return forEachRange(record,
                      [&](const Range& range) { return database.writeAt(range.offset, range.before); }) &&
         database.resize(load64(record.data() + 8));
}

}  // namespace

std::uint64_t hashBytes(Bytes bytes) {
  std::uint64_t hash = bytes.size();
  std::size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    hash = mix(hash, load64(bytes.data() + i));
  }
  std::array<std::uint8_t, 8> tail = {};
  std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(i), bytes.end(), tail.begin());
  return mix(hash, load64(tail.data()));
}

Journal::Journal(FileSystem& files, const std::filesystem::path& database) : files_(&files), path_(database) {
  path_ += "-journal";
}

bool Journal::recover(const std::filesystem::path& databasePath, RandomAccessFile* database,
                      std::uint64_t identity) {
  OpenFailure failure = {};
  auto file = files_->open(path_, database != nullptr ? OpenMode::write : OpenMode::read, failure);
  if (!file) {
    return failure == OpenFailure::missing;
  }
  const auto record = readRecord(*file);
  if (record && database == nullptr) {
    return false;
  }
  if (record && belongsTo(*record, *database, identity)) {
    traceSkipped("OpenDB", "undoes what an ended process left half written", databasePath.string());
    if (!putBack(*record, *database) || !database->sync()) {
      return false;
    }
  }
  if (database != nullptr) {
    file.reset();
    files_->remove(path_);
  }
  return true;
}

bool Journal::canBeMade() {
  OpenFailure failure = {};
  if (!files_->open(path_, OpenMode::create, failure)) {
    return false;
  }
  files_->remove(path_);
  return true;
}

void Journal::startRecord(std::uint64_t oldSize, std::uint64_t identity) {
  record_.resize(recordHead);
  std::copy(magic.begin(), magic.end(), record_.begin());
  store64(record_.data() + 8, oldSize);
  store64(record_.data() + 16, identity);
}

void Journal::addRange(std::uint64_t offset, Bytes before, Bytes after) {
  const std::size_t at = record_.size();
  const std::size_t length = before.size();
  record_.resize(at + rangeHead + 2 * length);
  std::uint8_t* range = record_.data() + at;
  store64(range, offset);
  store32(range + 8, static_cast<std::uint32_t>(length));
  std::memcpy(range + rangeHead, before.data(), length);
  std::memcpy(range + rangeHead + length, after.data(), length);
}

bool Journal::writeRecord() {
  store64(record_.data() + 24, record_.size() - recordHead);
  store64(record_.data() + hashAt, recordHash(record_));
  if (!file_) {
    OpenFailure failure = {};
    file_ = files_->open(path_, OpenMode::create, failure);
  }
  // A record written in part is void by its hash; but the disk may have room again later, so say so.
  if (!file_ || !file_->writeAt(0, record_)) {
    voidRecord();
    return false;
  }
  return true;
}

bool Journal::voidRecord() {
  constexpr std::array<std::uint8_t, 8> zeros = {};
  return file_ && file_->writeAt(0, zeros);
}

bool Journal::undo(RandomAccessFile& database) {
  return putBack(record_, database) && voidRecord();
}

bool Journal::sync() {
  return !file_ || file_->sync();
}

void Journal::remove() {
  if (file_) {
    file_.reset();
    files_->remove(path_);
  }
}

void Journal::keep() {
  file_.reset();
}

}  // namespace veltrano::access
