#ifndef VELTRANO_DATABASE_DATABASE_ENGINE_H
#define VELTRANO_DATABASE_DATABASE_ENGINE_H

// What VeltranoMDB needs of a database engine: databases that open tables as recordsets, one record at a
// time. Two engines implement it: the DAO engine (dao/, late bound, where a Windows machine has one) and the
// embedded engine (access/, everywhere else).
//
// All texts are UTF-8, those of fields with unpaired surrogates kept (base/text/wtf8.h). Nothing throws but
// std::bad_alloc. A step that fails changes nothing. Objects are used by one thread at a time. A recordset that
// outlives its database object goes on working until one of the two is closed by its close.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/status.h"
#include "veltrano/value.h"

namespace veltrano {

class TextMatcher;

/// The records of one table with a current one among them, as a DAO dynaset behaves:
///  - it begins on its first record, or at end of file if it has none;
///  - at end of file, and on a record that was deleted, there is no current record: reading, edit and remove
///    fail;
///  - edit and addNew begin a copy of the current or of an empty record, which readText and write then work
///    on; update stores it, any move drops it;
///  - after the update of a new record the current record is the one it was before addNew;
///  - a deleted record stays current (and unreadable) until the next move.
class Recordset {
 public:
  Recordset() = default;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;
  virtual ~Recordset() = default;

  virtual Status moveFirst() = 0;
  virtual Status moveLast() = 0;
  /// To the next record, or past the last one; fails at end of file.
  virtual Status moveNext() = 0;
  /// Empty if the recordset is closed.
  virtual std::optional<bool> atEnd() = 0;

  virtual Status edit() = 0;
  virtual Status addNew() = 0;
  virtual Status update() = 0;
  /// Deletes the current record.
  virtual Status remove() = 0;

  /// Puts the field's value as text (field_to_text.h says how) into `text`, whose storage is reused. A
  /// null, an unknown field and the lack of a current record fail; `text` is then empty.
  virtual Status readText(std::string_view field, std::string& text) = 0;
  /// Assigns a value to a field of the record being edited or added, converted to the field's type. What does
  /// not convert, does not fit or is not allowed fails and leaves the field, and the edit, as they were.
  virtual Status write(std::string_view field, const Value& value) = 0;

  /// Called on the first record (after moveFirst): goes to the first record whose field is equal to the matcher's text,
  /// and returns true; false and end of file if there is none. A null equals nothing. The default reads every record as
  /// text; an engine that can compare the stored form of just that field, or has an index on it, overrides it.
  virtual bool find(std::string_view field, const TextMatcher& matcher);

  virtual Status close() = 0;
};

/// One open database file. Goes away closed.
class Database {
 public:
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  virtual ~Database() = default;

  /// A dynaset on the table of that name (in any case).
  virtual Result<std::unique_ptr<Recordset>> openTable(std::string_view table) = 0;
  /// Closes the recordsets opened on it, too.
  virtual Status close() = 0;
};

class DatabaseEngine {
 public:
  DatabaseEngine() = default;
  DatabaseEngine(const DatabaseEngine&) = delete;
  DatabaseEngine& operator=(const DatabaseEngine&) = delete;
  virtual ~DatabaseEngine() = default;

  /// Opens a database file for reading and, where that is possible, writing. `connect` is empty or
  /// "MS Access;PWD=" followed by the password as it is. Unlike the other objects an engine serves all threads
  /// at once.
  virtual Result<std::unique_ptr<Database>> openDatabase(std::string_view fileName,
                                                         std::optional<std::string_view> connect) = 0;
};

/// What a connect string says before the password.
inline constexpr std::string_view passwordConnectPrefix = "MS Access;PWD=";

}  // namespace veltrano

#endif
