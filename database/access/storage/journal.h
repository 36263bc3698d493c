#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_H

// The rollback journal: a file beside the database that holds, while a transaction is being written, what it
// takes to undo it. It is made at the first commit, kept open, and removed when the database is closed;
// between transactions its record is marked void, not erased. journal.cpp shows the bytes.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "database/access/storage/bytes.h"
#include "database/access/storage/file.h"

namespace veltrano::access {

class Journal {
 public:
  /// `files` must outlive the journal. Touches no file.
  Journal(FileSystem& files, const std::filesystem::path& database);

  /// Undoes what a record left in the file says, if there is a valid one that belongs to `database`, and
  /// removes the journal. False when a record is left that could not be undone: the database must not be used
  /// then. With a null database (open for reading only) a valid record is such a failure.
  bool recover(const std::filesystem::path& databasePath, RandomAccessFile* database, std::uint64_t identity);

  /// Whether the journal's file can be made, without which nothing can be written.
  bool canBeMade();

  // A commit: startRecord, addRange for each stretch of bytes to be overwritten, then writeRecord; when the
  // database has been written, voidRecord. Between the last two the journal can undo the transaction.

  void startRecord(std::uint64_t oldSize, std::uint64_t identity);
  void addRange(std::uint64_t offset, Bytes before, Bytes after);
  bool writeRecord();
  bool voidRecord();
  /// Puts the old bytes back as the record in memory has them, and voids it.
  bool undo(RandomAccessFile& database);

  /// Makes the voiding of the last record survive a power failure.
  bool sync();
  /// Closes and removes the file. Its record must be void, or is lost.
  void remove();
  /// Closes the file and leaves it for the next open of the database.
  void keep();

 private:
  FileSystem* files_;
  std::filesystem::path path_;
  std::unique_ptr<RandomAccessFile> file_;
  std::vector<std::uint8_t> record_;
};

/// A number that tells one database from another: a hash of its header page as it lies in the file.
std::uint64_t hashBytes(Bytes bytes);

}  // namespace veltrano::access

#endif
