#ifndef VELTRANO_DATABASE_ACCESS_RECORDSET_H
#define VELTRANO_DATABASE_ACCESS_RECORDSET_H

// The records of one table of an open file, in the order of its primary key, or in storage order without one.
//
//  state       current record   readText   write, update   moveNext
//  on a record  yes              the record  after edit       to the next one or the end
//  on a deleted none             fails       after addNew     to the one after it
//  at the end   none             fails       after addNew     fails
//  closed       none             fails       fails            fails
//
// edit (only on a record) and addNew start an edit, which readText and write then work on. update stores and ends it,
// unless it fails; every move, remove and close drops it.
//
// The order is walked as it is at that moment: a record added meanwhile is met if it comes after the current one, or
// in the place of the current one if that was deleted. A record of which the walk itself has changed the key is not
// met again.

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "database/access/index/cursor.h"
#include "database/access/index/tree.h"
#include "database/access/rows/row_handle.h"
#include "database/access/schema/table.h"
#include "database/access/storage/encryption/primitives.h"
#include "database/access/table_writer.h"
#include "database/database_engine.h"

namespace veltrano::access {

class AccessRecordset;
struct SearchAnswer;

/// A file with the recordsets that are open on it. It is closed when the last of its users is.
struct OpenFile {
  std::unique_ptr<Pager> pager;
  Secret password;  ///< what it was opened with; others who open it must give the same
  std::vector<AccessRecordset*> recordsets;
  std::uint64_t openers = 0;  ///< database objects that the file has had
  /// Counts changes of rows, so that recordsets know when to read theirs again.
  std::uint64_t generation = 0;
  /// The last autonumbers shown to a host, by the table's definition page. They are not given again even if the
  /// record that showed them was dropped.
  std::map<PageNumber, std::int32_t> autoNumbers;

  /// Tells the recordsets of a table that a row is gone, before another one can get its place.
  void rowDeleted(PageNumber table, RowPointer place);
};

class AccessRecordset final : public Recordset {
 public:
  /// `opener` is the number of the database object that opened it.
  AccessRecordset(std::shared_ptr<OpenFile> file, TableDefinition definition, std::uint64_t opener = 0);
  AccessRecordset(const AccessRecordset&) = delete;
  AccessRecordset& operator=(const AccessRecordset&) = delete;
  ~AccessRecordset() override;

  Status moveFirst() override;
  Status moveLast() override;
  Status moveNext() override;
  std::optional<bool> atEnd() override;
  Status edit() override;
  Status addNew() override;
  Status update() override;
  Status remove() override;
  Status readText(std::string_view field, std::string& text) override;
  Status write(std::string_view field, const Value& value) override;
  bool find(std::string_view field, const TextMatcher& matcher) override;
  Status close() override;

  [[nodiscard]] std::uint64_t opener() const { return opener_; }

 private:
  friend struct OpenFile;
  enum class State { onRecord, atEnd, closed };  // "on a deleted one" is the handle's to say
  enum class Edit { none, changing, adding };

  bool settle(std::optional<RowPointer> place);
  void dropEdit();
  bool standOn(const SearchAnswer& answer);
  std::optional<RowPointer> following();
  /// Reads the current record as it is in the file now. False without a current record.
  bool refresh() { return state_ == State::onRecord && current_.refresh(file_->generation); }
  [[nodiscard]] Status whyNoRecord() const;
  void rowDeleted(RowPointer place);
  std::optional<std::size_t> columnIndex(std::string_view field);
  void prepareNewRecord();
  std::optional<std::int32_t> handOutAutoNumber();
  void keepAutoNumbers();
  Status updateCurrent();
  void noteChangedKey();

  std::shared_ptr<OpenFile> file_;
  std::uint64_t opener_;
  Table table_;
  std::optional<TableWriter> writer_;
  Status writable_;
  std::optional<IndexTree> order_;  // of the primary key
  std::optional<IndexCursor> cursor_;

  State state_ = State::atEnd;
  RowHandle current_;
  std::set<RowPointer> changedKeys_;  // records of which this walk has changed the key: not met again

  Edit edit_ = Edit::none;
  std::vector<Draft> drafts_;

  // Hosts ask for the same fields in the same order, record after record.
  std::vector<std::pair<std::string, std::size_t>> namesAsked_;
  std::size_t nextName_ = 0;
};

}  // namespace veltrano::access

#endif
