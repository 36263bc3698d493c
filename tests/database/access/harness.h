#ifndef VELTRANO_TESTS_DATABASE_ACCESS_HARNESS_H
#define VELTRANO_TESTS_DATABASE_ACCESS_HARNESS_H

// What the engine's tests share: files that go away, tables and records in short, a table with a column of
// every type, and random changes to it next to a model in memory.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/files/random_access.h"
#include "database/access/authoring/create_database.h"
#include "database/access/recordset.h"
#include "tests/temporary_folder.h"

namespace veltrano::access {

using Folder = tests::TemporaryFolder;

using ByteList = std::vector<std::uint8_t>;

inline constexpr std::size_t pageSize = 4096;

ByteList bytesOf(std::string_view text);

// --- Tables

/// The tables of a schema text (authoring/schema_text.h); a semicolon ends a line, too.
std::vector<NewTable> tablesOf(std::string_view schema);
/// The only one.
NewTable tableOf(std::string_view schema);

/// "People": a column of every type that files can be made with. ID is the primary key, Code unique, Name and
/// Notes indexed.
const NewTable& peopleTable();
/// The same without any index: kept in storage order.
NewTable plainTable();
/// "Small": ID counts, Name is required and short, Note has a default, Code is unique.
NewTable smallTable();

// --- Records, as a host writes and reads them

using Values = std::vector<std::pair<std::string, Value>>;

/// Adds a record. Each field must take its value.
Status add(Recordset& recordset, const Values& values);
/// Changes the current record.
Status change(Recordset& recordset, const Values& values);
/// Stands on the first record with this text in a field; fails the test if there is none.
void stand(Recordset& recordset, std::string_view field, const std::string& text);
/// A field's text; in brackets if there is none.
std::string read(Recordset& recordset, std::string_view field);
/// The texts of these fields, one after the other.
std::string readFields(Recordset& recordset, const std::vector<std::string>& fields);
/// These fields of all records, one after the other: "1a 2b".
std::string readAll(Recordset& recordset, const std::vector<std::string>& fields);

// --- Files

/// Makes a database with these tables; fails the test if that fails.
void makeDatabase(const std::filesystem::path& file, const std::vector<NewTable>& tables,
                  const NewDatabase& options = {});

/// Makes a file as long as one may be, with no free page in it.
void fillToTheEnd(const std::filesystem::path& file);

/// Opens a file as a host does; null if it is refused.
std::unique_ptr<Database> open(const std::filesystem::path& file,
                               const std::optional<std::string>& password = {});

/// Takes the pages below `end` out of the map of free pages; inside a transaction.
void useUp(Pager& pager, PageNumber end);

/// An open file, and what its soundness is.
class OpenedFile {
 public:
  /// `opened` is false when the file was refused.
  explicit OpenedFile(const std::filesystem::path& file, FileSystem* files = nullptr,
                      std::uint32_t cachePages = 4096, const std::string& password = {});
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;
  ~OpenedFile();

  [[nodiscard]] bool opened() const { return file_->pager != nullptr; }
  [[nodiscard]] const std::string& reason() const { return reason_; }
  [[nodiscard]] Pager& pager() const { return *file_->pager; }
  std::unique_ptr<AccessRecordset> table(const std::string& name);
  std::unique_ptr<AccessRecordset> table(TableDefinition definition);
  /// "" for a sound file.
  [[nodiscard]] std::string check() const;

 private:
  std::shared_ptr<OpenFile> file_;
  std::string reason_;
};

/// A database in a folder of the test's own.
class DatabaseTest : public testing::Test {
 protected:
  /// Makes the file and opens it.
  void make(const std::vector<NewTable>& tables, const NewDatabase& options = {},
            std::uint32_t cachePages = 4096);
  void close();
  void reopen();
  /// The same one each time, until the file is closed. Quotes after the name ask for another one on that table.
  AccessRecordset& table(const std::string& name);
  /// Plays a scene, steps separated by semicolons or lines, and checks the file at its end:
  ///   add T Field=value ...           delete T Field=value     change T Field=value Field=value ...
  ///   first|last|next|edit|new|update|delete T         stand T Field=value        write T Field=value ...
  ///   read T Field ...: of the current record          all T Field ...: of all records, 1a 2b
  /// The first value of delete, change and stand is that of the record to go to. In values - is a null, _ a blank.
  /// After an exclamation mark a step must be refused; after a colon stands a part of the reason.
  void play(const std::string& scene);
  [[nodiscard]] Pager& pager() const { return opened_->pager(); }
  [[nodiscard]] std::string check() const { return opened_->check(); }

  Folder folder_;
  std::filesystem::path file_ = folder_ / "a.mdb";
  std::optional<OpenedFile> opened_;

 private:
  std::map<std::string, std::unique_ptr<AccessRecordset>> tables_;
};

// --- Random changes

/// A record as a host reads it; nothing for a null.
using Record = std::map<std::string, std::optional<std::string>>;
/// Records by their ID.
using Model = std::map<int, Record>;

/// The first difference between a table and a model, "" if there is none. `ordered`: also the order must be that of
/// the model's keys.
std::string difference(AccessRecordset& recordset, const Model& model, bool ordered);

/// Random changes to the table of peopleTable or plainTable, the same to the model.
class RandomWork {
 public:
  explicit RandomWork(unsigned seed) : random_(seed) {}

  /// Whether an ID that is in use may be tried again; a table without a primary key would take it.
  bool repeatsIds = true;
  /// How many of ten changes add a record; of the others two in five delete one.
  int addsOfTen = 5;

  /// One change, tried on the recordset; `after` is what the model is if it worked. Answers what update or
  /// remove did.
  bool step(AccessRecordset& recordset, const Model& before, Model& after);
  /// Whether the last step added a record.
  [[nodiscard]] bool added() const { return added_; }
  int number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

 private:
  int randomId(const Model& before);
  std::string randomText(int most);
  std::optional<std::string> randomValue(const NewColumn& column);
  void assignSome(AccessRecordset& recordset, Record& record);

  std::mt19937 random_;
  bool added_ = false;
};

/// So many random changes, of which the model has those that worked.
void fillAtRandom(AccessRecordset& recordset, unsigned seed, int changes, Model& model);

}  // namespace veltrano::access

#endif
