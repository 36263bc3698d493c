#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_JOURNAL_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_JOURNAL_H

// The journal being written: a file beside the database that holds every transaction since the last
// checkpoint. format.h shows the bytes, recovery.h reads them after a crash, and pager.h says what is
// written when.
//
// The file is made at the first transaction, kept open, and removed when the database is closed.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "base/files/random_access.h"
#include "database/access/storage/bytes.h"
#include "database/access/storage/journal/format.h"

namespace veltrano::access {

/// The journal's file beside a database.
std::filesystem::path journalPath(const std::filesystem::path& database);

class Journal {
 public:
  /// `files` must outlive the journal. Touches no file. `identity`: hash of the database's header page.
  Journal(FileSystem& files, const std::filesystem::path& database, std::uint64_t identity);

  /// The length of the database at the last checkpoint; to be told while the journal is empty.
  void startAt(std::uint64_t databaseLength);
  /// True if nothing was written since the last checkpoint.
  [[nodiscard]] bool empty() const { return end_ == 0; }
  [[nodiscard]] std::uint64_t size() const { return end_; }

  // A transaction: startRecord, its changes, writeRecord. Long records go to the file in pieces, with the head
  // last, so that they count only when they are whole. A record that failed, or was never finished, is written
  // over by the next one.

  void startRecord();
  /// `before` may be empty for pages that the database did not have at the checkpoint.
  void addChange(std::uint64_t offset, Bytes before, Bytes after);
  void addNewBytes(std::uint64_t offset, Bytes bytes) { addChange(offset, {}, bytes); }
  /// `databaseLength`: after the transaction.
  bool writeRecord(std::uint64_t databaseLength);

  /// States, durably, that the database may be as long as that although no transaction made it so.
  bool announce(std::uint64_t databaseLength);
  /// The length that a record or announcement on the disk allows.
  [[nodiscard]] std::uint64_t announced() const { return durableReach_; }
  /// Makes the records survive a power failure.
  bool sync();
  /// Makes all records void, durably. The journal is empty then even if that failed.
  bool clear();
  /// Closes and removes the file.
  void remove();

 private:
  std::uint8_t* append(std::size_t size);
  bool flush();
  bool writeWhole();

  FileSystem* files_;
  std::filesystem::path path_;
  std::unique_ptr<RandomAccessFile> file_;
  JournalHead head_;
  std::uint64_t length_ = 0;        // of the database, as the last record states it
  std::uint64_t mayReach_ = 0;      // as the last record states it
  std::uint64_t durableReach_ = 0;  // as the last synced record states it
  std::uint64_t lastHash_ = 0;      // of the last record, or the head
  std::uint64_t end_ = 0;           // of the last record; 0 without a head

  // The record under way: `pending_` is what comes after the flushed bytes.
  std::vector<std::uint8_t> pending_;
  std::uint64_t flushed_ = 0;
  std::uint64_t changesHash_ = 0;
  std::uint64_t changesSize_ = 0;
  bool failed_ = false;
};

}  // namespace veltrano::access

#endif
