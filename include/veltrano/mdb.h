#ifndef VELTRANO_DATABASE_VELTRANO_MDB_H
#define VELTRANO_DATABASE_VELTRANO_MDB_H

// One table of a Microsoft Access database, a record at a time.
//
// The host opens a database, then a table, then moves, reads, edits and finds records, and closes both. All
// texts are UTF-8. No member throws (but for std::bad_alloc) or reports more than its result: a step that
// fails is skipped, and the debug trace says why. Called without an open database or table a member does
// nothing.

#include <cstdint>
#include <memory>
#include <string>

#include "base/value.h"

namespace veltrano {

class Database;
class DatabaseEngine;
class Recordset;

class VeltranoMDB {
 public:
  /// Works with the engine that all objects of the process share.
  VeltranoMDB();
  /// Works with another engine, which must outlive the object.
  explicit VeltranoMDB(DatabaseEngine& engine);
  VeltranoMDB(VeltranoMDB&&) noexcept;
  VeltranoMDB& operator=(VeltranoMDB&&) noexcept;
  VeltranoMDB(const VeltranoMDB&) = delete;
  VeltranoMDB& operator=(const VeltranoMDB&) = delete;
  /// Closes what is open; an edit without its Update is dropped.
  ~VeltranoMDB();

  /// Opens the file; an empty password opens an unprotected one. `Username` is accepted and not used. True
  /// when no error occurred; when it fails, the database opened before stays the current one.
  bool OpenDB(const std::string& filename, const std::string& Username = {},
              const std::string& Password = {});
  /// Opens a table (named in any case) of the current database and stands on its first record. True when no
  /// error occurred; when it fails, the table opened before stays the current one.
  bool OpenTable(const std::string& Table);

  /// Assigns a value to a field of the record that Edit or AddNew began. Always false, written or not: hosts
  /// rely on the result they know.
  bool WriteRecord(const std::string& Field, const Value& value);
  /// The field's value as text; "" when there is none (a null, no such field, no current record).
  std::string ReadRecord_String(const std::string& xField);

  void Edit();
  void Delete();
  void MoveFirst();
  void MoveNext();
  void MoveLast();
  void AddNew();
  /// `EOF` to hosts (the C library has made that name a macro): true behind the last record.
  bool Eof();
  void Update();

  /// Goes from the first record to the first one whose field equals `Value`, exactly if `CaseSensivite` is
  /// -1, in lower case otherwise. False when there is none: the table is then at its end.
  bool FindRecord(const std::string& Field, const std::string& Value, std::int16_t CaseSensivite);

  void CloseTable();
  void CloseDatabase();

 private:
  DatabaseEngine* engine_;
  std::unique_ptr<Database> database_;
  std::unique_ptr<Recordset> recordset_;
};

}  // namespace veltrano

#endif
