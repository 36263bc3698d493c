#include "database/access/recordset.h"

#include <algorithm>

#include "database/access/pages/long_value.h"
#include "database/access/schema/default_value.h"
#include "database/access/schema/field_codec.h"

namespace veltrano::access {

AccessRecordset::AccessRecordset(std::shared_ptr<OpenFile> file, TableDefinition definition,
                                 std::uint64_t opener)
    : file_(std::move(file)), opener_(opener), table_(*file_->pager, std::move(definition)) {
  file_->recordsets.push_back(this);
  writer_ = TableWriter::create(table_, readOnlyReason_);
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

bool AccessRecordset::close() {
  if (state_ == State::closed) {
    return fail("the recordset is closed");
  }
  state_ = State::closed;
  edit_ = Edit::none;
  drafts_.clear();
  row_.reset();
  cursor_.reset();
  std::erase(file_->recordsets, this);
  const bool synced = file_->pager->checkpoint();
  file_.reset();
  return synced || fail("the disk does not confirm the writing");
}

// --- Moving

// The end of every move: loads the record whose place was found, or the next one that can be loaded.
bool AccessRecordset::step(bool found) {
  while (found && !load()) {
    found = nextPlace();
  }
  state_ = found ? State::onRecord : State::atEnd;
  if (!found) {
    row_.reset();
  }
  return true;
}

// To the place after the current one; the record there may turn out to be none.
bool AccessRecordset::nextPlace() {
  if (!cursor_) {
    const auto next = table_.next(place_);
    place_ = next.value_or(place_);
    return next.has_value();
  }
  while (cursor_->next()) {
    place_ = cursor_->row();
    if (alreadyMet_.empty() || !alreadyMet_.contains(place_)) {
      return true;
    }
  }
  return false;
}

bool AccessRecordset::load() {
  row_ = table_.fetch(place_);
  changes_ = file_->changes;
  if (row_) {
    view_ = table_.view(*row_);
  }
  return row_ && view_.valid();
}

// Makes sure that the current record's bytes are those of now. False when there is none.
bool AccessRecordset::look() {
  if (state_ != State::onRecord) {
    return fail("no current record");
  }
  if (changes_ != file_->changes && !load()) {
    row_.reset();
    state_ = State::onDeleted;
    return fail("the record has been deleted");
  }
  return true;
}

bool AccessRecordset::moveFirst() {
  if (state_ == State::closed) {
    return fail("the recordset is closed");
  }
  edit_ = Edit::none;
  alreadyMet_.clear();
  if (cursor_) {
    const bool found = cursor_->first();
    place_ = found ? cursor_->row() : place_;
    step(found);
  } else {
    const auto first = table_.next(std::nullopt);
    place_ = first.value_or(RowPointer{});
    step(first.has_value());
  }
  return state_ == State::onRecord || fail("the table has no records");
}

bool AccessRecordset::moveLast() {
  if (state_ == State::closed) {
    return fail("the recordset is closed");
  }
  edit_ = Edit::none;
  alreadyMet_.clear();
  bool found = false;
  if (cursor_) {
    for (found = cursor_->last(); found; found = cursor_->previous()) {
      place_ = cursor_->row();
      if (load()) {
        break;
      }
    }
  } else if (const auto last = table_.last()) {
    place_ = *last;
    found = true;
  }
  step(found);
  return state_ == State::onRecord || fail("the table has no records");
}

bool AccessRecordset::moveNext() {
  edit_ = Edit::none;
  if (state_ == State::closed || state_ == State::atEnd) {
    return fail("no record follows");
  }
  return step(nextPlace());
}

std::optional<bool> AccessRecordset::atEnd() {
  if (state_ == State::closed) {
    fail("the recordset is closed");
    return std::nullopt;
  }
  return state_ == State::atEnd;
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
    fail("no such field");
    return std::nullopt;
  }
  const auto index = static_cast<std::size_t>(column - table_.definition().columns.data());
  if (namesAsked_.size() < mostNames) {
    namesAsked_.emplace_back(field, index);
    nextName_ = namesAsked_.size();
  }
  return index;
}

bool AccessRecordset::readText(std::string_view field, std::string& text) {
  text.clear();
  if (state_ == State::closed || (edit_ != Edit::adding && !look())) {
    return fail("no current record");
  }
  const auto index = columnIndex(field);
  if (!index) {
    return false;
  }
  const Column& column = table_.definition().columns[*index];
  if (edit_ == Edit::adding || (edit_ == Edit::changing && drafts_[*index].assigned)) {
    const Cell& cell = drafts_[*index].cell;
    if (cell.null) {
      return fail("the field is null");
    }
    std::vector<std::uint8_t> inlineCell;
    if (column.isLongValue()) {
      makeInlineCell(cell.bytes, inlineCell);
    }
    return cellToText(table_.pager(), column, column.isLongValue() ? Bytes(inlineCell) : cell.view(), text);
  }
  const auto cell = view_.cell(column);
  return cell ? cellToText(table_.pager(), column, *cell, text) : fail("the field is null");
}

bool AccessRecordset::find(std::string_view field, const TextMatcher& matcher) {
  const auto index = state_ == State::closed ? std::nullopt : columnIndex(field);
  edit_ = Edit::none;
  if (!index) {
    // As a scan that finds nothing would end.
    if (state_ != State::closed) {
      step(false);
    }
    return false;
  }
  const Column& column = table_.definition().columns[*index];
  for (; state_ != State::atEnd; step(nextPlace())) {
    const auto cell = look() ? view_.cell(column) : std::nullopt;
    if (cell && cellMatches(table_.pager(), column, *cell, matcher)) {
      return true;
    }
  }
  return false;
}

// --- Writing

bool AccessRecordset::edit() {
  if (state_ == State::closed || !look()) {
    return fail("no current record");
  }
  if (!writer_) {
    return fail(readOnlyReason_);
  }
  drafts_.assign(table_.definition().columns.size(), Draft());
  edit_ = Edit::changing;
  return true;
}

// A new record begins with its columns' defaults and its autonumbers.
void AccessRecordset::prepareNewRecord() {
  const std::vector<Column>& columns = table_.definition().columns;
  drafts_.assign(columns.size(), Draft());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    auto cell = initialCell(columns[i], writer_->nextAutoNumber());
    if (cell) {
      drafts_[i] = {{false, std::move(*cell)}, true};
    } else if (columns[i].type == ColumnType::boolean) {
      drafts_[i] = {{false, {0}}, true};
    }
  }
}

bool AccessRecordset::addNew() {
  if (state_ == State::closed) {
    return fail("the recordset is closed");
  }
  if (!writer_) {
    return fail(readOnlyReason_);
  }
  prepareNewRecord();
  edit_ = Edit::adding;
  return true;
}

bool AccessRecordset::write(std::string_view field, const Value& value) {
  if (edit_ == Edit::none) {
    return fail("no edit is under way");
  }
  const auto index = columnIndex(field);
  if (!index) {
    return false;
  }
  const Column& column = table_.definition().columns[*index];
  if (column.autoNumber || column.autoGuid) {
    return fail("the field is numbered by the engine");
  }
  if (value.isNull()) {
    const bool flag = column.type == ColumnType::boolean;
    drafts_[*index] = flag ? Draft{{false, {0}}, true} : Draft{{}, true};
    return true;
  }
  auto cell = valueToCell(column, value);
  if (!cell) {
    return fail("the value does not fit the field");
  }
  drafts_[*index] = {{false, std::move(*cell)}, true};
  return true;
}

bool AccessRecordset::update() {
  if (edit_ == Edit::none) {
    return fail("no edit is under way");
  }
  if (edit_ == Edit::adding) {
    if (!writer_->insert(drafts_)) {
      return fail(writer_->lastError());
    }
  } else {
    if (!look()) {
      return false;
    }
    if (std::none_of(drafts_.begin(), drafts_.end(), [](const Draft& draft) { return draft.assigned; })) {
      edit_ = Edit::none;
      return true;
    }
    if (!writer_->update(place_, drafts_)) {
      return fail(writer_->lastError());
    }
    const Index* key = cursor_ ? table_.definition().primaryKey() : nullptr;
    for (std::size_t i = 0; key != nullptr && i < drafts_.size(); ++i) {
      const auto isColumn = [&](const IndexColumn& part) {
        return part.column == table_.definition().columns[i].number;
      };
      if (drafts_[i].assigned && std::any_of(key->columns.begin(), key->columns.end(), isColumn)) {
        alreadyMet_.insert(place_);
      }
    }
  }
  edit_ = Edit::none;
  ++file_->changes;
  return true;
}

bool AccessRecordset::remove() {
  edit_ = Edit::none;
  if (state_ == State::closed || !look()) {
    return fail("no current record");
  }
  if (!writer_) {
    return fail(readOnlyReason_);
  }
  row_.reset();
  if (!writer_->remove(place_)) {
    load();
    return fail(writer_->lastError());
  }
  // A new record may get the same place.
  alreadyMet_.erase(place_);
  ++file_->changes;
  state_ = State::onDeleted;
  return true;
}

}  // namespace veltrano::access
