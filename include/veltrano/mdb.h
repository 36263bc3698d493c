#ifndef VELTRANO_MDB_H
#define VELTRANO_MDB_H

// One table of a Microsoft Access database, a record at a time.
//
// The host opens a database, then a table, then moves, reads, edits and finds records, and closes both. All
// texts are UTF-8; an unpaired surrogate in a field takes the three bytes that its number would have. No
// member throws (but for std::bad_alloc) or reports more than its result: a step that fails is skipped, and
// the debug trace says why. Without an open database or table a member does nothing.

#include <cstdint>
#include <memory>
#include <string>

#include "veltrano/export.h"
#include "veltrano/value.h"

namespace veltrano {

class DatabaseEngine;

class VELTRANO_API VeltranoMDB {
 public:
  /// Works with the engine that all objects of the process share: the machine's own, where it has one,
  /// otherwise the embedded one.
  VeltranoMDB();
  /// Works with another engine, which must outlive the object.
  explicit VeltranoMDB(DatabaseEngine& engine);
  VeltranoMDB(VeltranoMDB&&) noexcept;
  VeltranoMDB& operator=(VeltranoMDB&&) noexcept;
  VeltranoMDB(const VeltranoMDB&) = delete;
  VeltranoMDB& operator=(const VeltranoMDB&) = delete;
  /// Closes what is open; an edit without its Update is dropped.
  ~VeltranoMDB();

  /// Opens the file; an empty password opens an unprotected one. `Username` is accepted and not used. True if
  /// no error occurred; if it fails, the database opened before stays the current one.
  bool OpenDB(const std::string& filename, const std::string& Username = {},
              const std::string& Password = {});
  /// Opens a table (named in any case) of the current database and stands on its first record. True if no
  /// error occurred; if it fails, the table opened before stays the current one.
  bool OpenTable(const std::string& Table);

  /// Assigns a value to a field of the record that Edit or AddNew began, converted to the field's type as
  /// described in docs/access.md. Always false, written or not: hosts rely on the result they know.
  bool WriteRecord(const std::string& Field, const Value& value);
  /// The field's value as text, numbers and dates in one form in every locale ("12.5", "2026-11-21
  /// 14:05:00"); empty for a null, an unknown field, and without a current record.
  std::string ReadRecord_String(const std::string& xField);

  void Edit();
  void Delete();
  void MoveFirst();
  void MoveNext();
  void MoveLast();
  void AddNew();
  /// `EOF` to hosts (the C library has made that name a macro): true after the last record.
  bool Eof();
  void Update();

  /// Goes from the first record to the first one whose field equals `Value`: exactly if `CaseSensivite` is
  /// -1, in lower case otherwise. False if no record does; the table is then at its end.
  bool FindRecord(const std::string& Field, const std::string& Value, std::int16_t CaseSensivite);

  void CloseTable();
  void CloseDatabase();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace veltrano

#endif
