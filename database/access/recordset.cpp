#include "database/access/recordset.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/trace.h"
#include "database/access/pages/long_value.h"
#include "database/access/schema/default_value.h"
#include "database/access/schema/field_codec.h"
#include "database/access/search/indexed_search.h"

namespace veltrano::access {

namespace {

Status closedRecordset() {
  return {Failure::missing, "the recordset is closed"};
}
Status noRecords() {
  return {Failure::missing, "the table has no records"};
}
Status noEdit() {
  return {Failure::missing, "no edit is under way"};
}
Status noSuchField() {
  return {Failure::missing, "no such field"};
}

// The cell of a value that is assigned, but not stored; `buffer` holds it then.
std::optional<Bytes> draftedCell(const Column& column, const Cell& draft, std::vector<std::uint8_t>& buffer) {
  if (draft.null || !column.isLongValue()) {
    return draft.null ? std::nullopt : std::optional(draft.view());
  }
  makeInlineCell(draft.bytes, buffer);
  return buffer;
}

}  // namespace

void OpenFile::rowDeleted(PageNumber table, RowPointer place) {
  for (AccessRecordset* recordset : recordsets) {
    if (recordset->table_.definition().page == table) {
      recordset->rowDeleted(place);
    }
  }
}

AccessRecordset::AccessRecordset(std::shared_ptr<OpenFile> file, TableDefinition definition,
                                 std::uint64_t opener)
    : file_(std::move(file)),
      opener_(opener),
      table_(*file_->pager, std::move(definition)),
      current_(table_) {
  file_->recordsets.push_back(this);
  if (auto writer = TableWriter::create(table_)) {
    writer_ = *std::move(writer);
  } else {
    writable_ = writer.status();
    trace("The table \"", table_.definition().name, "\" can only be read: ", writable_, ".");
  }
  if (const Index* key = table_.definition().primaryKey()) {
    order_.emplace(table_.pager(), table_.definition().page, *key);
    cursor_.emplace(*order_, table_.pager());
    // Better in another order than not at all.
    cursor_->first();
    if (cursor_->damaged()) {
      cursor_.reset();
    }
  }
  moveFirst();
}

AccessRecordset::~AccessRecordset() {
  AccessRecordset::close();
}

void AccessRecordset::dropEdit() {
  if (edit_ != Edit::none) {
    trace("What ", edit_ == Edit::adding ? "AddNew" : "Edit", " began is dropped: Update was not called.");
  }
  edit_ = Edit::none;
}

Status AccessRecordset::close() {
  if (state_ == State::closed) {
    return closedRecordset();
  }
  state_ = State::closed;
  dropEdit();
  drafts_.clear();
  current_.release();
  cursor_.reset();
  keepAutoNumbers();
  std::erase(file_->recordsets, this);
  return std::exchange(file_, nullptr)->pager->checkpoint();
}

// --- Moving

// The end of every move: stands on the record at `place`, or on the next one that can be read.
bool AccessRecordset::settle(std::optional<RowPointer> place) {
  while (place && !current_.moveTo(*place, file_->generation)) {
    place = following();
  }
  state_ = place ? State::onRecord : State::atEnd;
  if (!place) {
    current_.release();
  }
  return place.has_value();
}

// The place after the current one; the record there may turn out to be none. After a deletion it may be the same
// place, taken by another record.
std::optional<RowPointer> AccessRecordset::following() {
  if (!cursor_) {
    return current_.deleted() ? table_.from(current_.place()) : table_.next(current_.place());
  }
  bool found = current_.deleted() ? cursor_->again() : cursor_->next();
  while (found && changedKeys_.contains(cursor_->row())) {
    found = cursor_->next();
  }
  return found ? std::optional(cursor_->row()) : std::nullopt;
}

Status AccessRecordset::whyNoRecord() const {
  return {Failure::missing, state_ == State::onRecord ? "the record has been deleted" : "no current record"};
}

void AccessRecordset::rowDeleted(RowPointer place) {
  changedKeys_.erase(place);
  if (state_ == State::onRecord && current_.place() == place) {
    current_.markDeleted();
  }
}

Status AccessRecordset::moveFirst() {
  if (state_ == State::closed) {
    return closedRecordset();
  }
  dropEdit();
  changedKeys_.clear();
  std::optional<RowPointer> first;
  if (!cursor_) {
    first = table_.from({});
  } else if (cursor_->first()) {
    first = cursor_->row();
  }
  return settle(first) ? Status() : noRecords();
}

Status AccessRecordset::moveLast() {
  if (state_ == State::closed) {
    return closedRecordset();
  }
  dropEdit();
  changedKeys_.clear();
  std::optional<RowPointer> last;
  if (cursor_) {
    bool found = cursor_->last();
    while (found && !current_.moveTo(cursor_->row(), file_->generation)) {
      found = cursor_->previous();
    }
    last = found ? std::optional(cursor_->row()) : std::nullopt;
  } else {
    last = table_.last();
  }
  return settle(last) ? Status() : noRecords();
}

Status AccessRecordset::moveNext() {
  dropEdit();
  if (state_ != State::onRecord) {
    return {Failure::missing, "no record follows"};
  }
  settle(following());
  return {};
}

std::optional<bool> AccessRecordset::atEnd() {
  return state_ == State::closed ? std::nullopt : std::optional(state_ == State::atEnd);
}

// --- Reading

std::optional<std::size_t> AccessRecordset::columnIndex(std::string_view field) {
  constexpr std::size_t mostNames = 512;
  for (std::size_t i = 0; i < namesAsked_.size(); ++i) {
    if (nextName_ >= namesAsked_.size()) {
      nextName_ = 0;
    }
    const auto& [name, index] = namesAsked_[nextName_++];
    if (name == field) {
      return index;
    }
  }
  const Column* column = table_.definition().find(field);
  if (column == nullptr) {
    return std::nullopt;
  }
  const auto index = static_cast<std::size_t>(column - table_.definition().columns.data());
  if (namesAsked_.size() < mostNames) {
    namesAsked_.emplace_back(field, index);
    nextName_ = namesAsked_.size();
  }
  return index;
}

Status AccessRecordset::readText(std::string_view field, std::string& text) {
  text.clear();
  if (edit_ != Edit::adding && !refresh()) {
    return whyNoRecord();
  }
  const auto index = columnIndex(field);
  if (!index) {
    return noSuchField();
  }
  const Column& column = table_.definition().columns[*index];
  const bool drafted = edit_ == Edit::adding || (edit_ == Edit::changing && drafts_[*index].assigned);
  std::vector<std::uint8_t> buffer;
  const auto cell =
      drafted ? draftedCell(column, drafts_[*index].cell, buffer) : current_.view().cell(column);
  if (!cell) {
    return {Failure::missing, "the field is null"};
  }
  return cellToText(table_.pager(), column, *cell, text) ? Status()
                                                         : Status(Failure::damaged, "the value has no text");
}

// Stands where a search has led: on a record or at the end. False, with nothing changed, if the order does not have the
// record.
bool AccessRecordset::standOn(const SearchAnswer& answer) {
  if (answer.row && cursor_) {
    IndexCursor cursor(*order_, table_.pager());
    const IndexEntry entry{answer.key, *answer.row};
    if (!cursor.seek(entry) || compareEntries(cursor.entry(), entry) != 0) {
      return false;
    }
    cursor_ = std::move(cursor);
  }
  settle(answer.row);
  return true;
}

bool AccessRecordset::find(std::string_view field, const TextMatcher& matcher) {
  if (state_ == State::closed) {
    return false;
  }
  dropEdit();
  const auto index = columnIndex(field);
  if (!index) {
    trace("There is no field \"", field, "\" to look in.");
    // As a scan that finds nothing would end.
    return settle(std::nullopt);
  }
  const Column& column = table_.definition().columns[*index];
  const Index* order = cursor_ ? table_.definition().primaryKey() : nullptr;
  if (const auto answer = searchIndexes(table_, order, column, matcher); answer && standOn(*answer)) {
    return state_ == State::onRecord;
  }
  for (; state_ != State::atEnd; settle(following())) {
    const auto cell = refresh() ? current_.view().cell(column) : std::nullopt;
    if (cell && cellMatches(table_.pager(), column, *cell, matcher)) {
      return true;
    }
  }
  return false;
}

// --- Writing

Status AccessRecordset::edit() {
  const bool current = refresh();
  if (!current || !writer_) {
    return current ? writable_ : whyNoRecord();
  }
  dropEdit();
  drafts_.assign(table_.definition().columns.size(), Draft());
  edit_ = Edit::changing;
  return {};
}

// The table's next autonumber. It is given once, whether or not a record with it is stored.
std::optional<std::int32_t> AccessRecordset::handOutAutoNumber() {
  const auto stored = writer_->lastAutoNumber();
  if (!stored) {
    return std::nullopt;
  }
  std::int32_t& last = file_->autoNumbers.try_emplace(table_.definition().page, *stored).first->second;
  last = std::max(last, *stored);
  return last == std::numeric_limits<std::int32_t>::max() ? std::nullopt : std::optional(++last);
}

// Enters numbers that were shown, but not stored with a record, in the file.
void AccessRecordset::keepAutoNumbers() {
  const auto last = file_->autoNumbers.find(table_.definition().page);
  if (writer_ && last != file_->autoNumbers.end() &&
      writer_->lastAutoNumber().value_or(last->second) < last->second) {
    writer_->raiseAutoNumber(last->second);
  }
}

// A new record starts with its columns' defaults and its autonumbers.
void AccessRecordset::prepareNewRecord() {
  const std::vector<Column>& columns = table_.definition().columns;
  drafts_.assign(columns.size(), Draft());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    auto cell = initialCell(columns[i], countsUp(columns[i]) ? handOutAutoNumber() : std::nullopt);
    if (cell) {
      drafts_[i] = {{false, std::move(*cell)}, true};
    } else if (columns[i].type == ColumnType::boolean) {
      drafts_[i] = {{false, {0}}, true};
    }
  }
}

Status AccessRecordset::addNew() {
  if (state_ == State::closed) {
    return closedRecordset();
  }
  if (!writer_) {
    return writable_;
  }
  dropEdit();
  prepareNewRecord();
  edit_ = Edit::adding;
  return {};
}

Status AccessRecordset::write(std::string_view field, const Value& value) {
  if (edit_ == Edit::none) {
    return noEdit();
  }
  const auto index = columnIndex(field);
  if (!index) {
    return noSuchField();
  }
  const Column& column = table_.definition().columns[*index];
  if (column.autoNumber || column.autoGuid) {
    return {Failure::notAllowed, "the field is numbered by the engine"};
  }
  if (value.isNull()) {
    const bool flag = column.type == ColumnType::boolean;
    drafts_[*index] = flag ? Draft{{false, {0}}, true} : Draft{{}, true};
    return {};
  }
  auto cell = valueToCell(column, value);
  if (!cell) {
    return {Failure::other, "the value does not fit the field"};
  }
  drafts_[*index] = {{false, std::move(*cell)}, true};
  return {};
}

Status AccessRecordset::update() {
  if (edit_ == Edit::none) {
    return noEdit();
  }
  Status done = edit_ == Edit::adding ? writer_->insert(drafts_).status() : updateCurrent();
  if (done) {
    edit_ = Edit::none;
    ++file_->generation;
  }
  return done;
}

Status AccessRecordset::updateCurrent() {
  if (!refresh()) {
    return whyNoRecord();
  }
  if (std::none_of(drafts_.begin(), drafts_.end(), [](const Draft& draft) { return draft.assigned; })) {
    return {};
  }
  Status done = writer_->update(current_.place(), drafts_);
  if (done) {
    noteChangedKey();
  }
  return done;
}

// A record whose new key comes later in the order must not be met twice.
void AccessRecordset::noteChangedKey() {
  const Index* key = cursor_ ? table_.definition().primaryKey() : nullptr;
  const std::vector<Column>& columns = table_.definition().columns;
  for (std::size_t i = 0; key != nullptr && i < drafts_.size(); ++i) {
    const auto isColumn = [&](const IndexColumn& part) { return part.column == columns[i].number; };
    if (drafts_[i].assigned && std::any_of(key->columns.begin(), key->columns.end(), isColumn)) {
      changedKeys_.insert(current_.place());
    }
  }
}

Status AccessRecordset::remove() {
  dropEdit();
  const bool current = refresh();
  if (!current || !writer_) {
    return current ? writable_ : whyNoRecord();
  }
  const auto gone = writer_->remove(current_.place());
  if (gone) {
    ++file_->generation;
    for (const RowOfTable& row : *gone) {
      file_->rowDeleted(row.table, row.row);
    }
  }
  return gone.status();
}

}  // namespace veltrano::access
