#include "database/access/table_writer.h"

#include <algorithm>
#include <limits>

#include "database/access/pages/long_value.h"
#include "database/access/schema/default_value.h"

namespace veltrano::access {

// What one change touches:
//
//                         insert              update, same page   update, moved           delete
//   data page             new slot            row replaced        target elsewhere,       slot marked, slid
//   shut;
//                                                                 pointer in the old slot target too
//   map of pages w. room  page out when full                      as insert               page in again
//   definition: rows      +1                                                              -1
//   definition: last      the number given                                                never
//     autonumber
//   indexes               entries             entries that differ entries that differ     entries
//   long values           stored              new stored, old     as before               given back
//                                             given back
//
// A row's place in the indexes is that of its first slot. A page left without rows goes back to the file.

namespace {

constexpr std::size_t rowsAt = 16;  // in the definition's first page
constexpr std::size_t autoNumberAt = 20;
constexpr std::size_t pointerRowSize = 4;

bool holdsData(const Column& column) {
  return column.type != ColumnType::complex && !column.calculated;
}

}  // namespace

bool TableWriter::fail(const char* reason) {
  reason_ = reason;
  return false;
}

bool TableWriter::failFromPager() {
  reason_ = pager().lastError();
  if (reason_.empty()) {
    reason_ = "the file is damaged or full";
  }
  return false;
}

std::optional<TableWriter> TableWriter::create(const Table& table, std::string& reason) {
  const TableDefinition& definition = table.definition();
  if (table.pager().readOnly()) {
    reason = "the file is open for reading only";
    return std::nullopt;
  }
  if (definition.enforcedRelations) {
    reason = "the table has relations that would have to be enforced";
    return std::nullopt;
  }
  if (!std::all_of(definition.columns.begin(), definition.columns.end(), holdsData)) {
    reason = "the table has calculated or multi-valued columns";
    return std::nullopt;
  }
  auto indexes = TableIndexes::create(table, reason);
  if (!indexes) {
    return std::nullopt;
  }
  return TableWriter(table, std::move(*indexes));
}

bool TableWriter::checkRequired(const std::vector<Draft>& drafts, bool all) {
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    const Column& column = definition().columns[i];
    if (column.required && column.type != ColumnType::boolean && (all || drafts[i].assigned) &&
        drafts[i].cell.null) {
      return fail("a required field is null");
    }
  }
  return true;
}

// --- Building the row

// Makes row_ from cells_, with the long values that were assigned stored or inline.
bool TableWriter::makeRow(const std::vector<Draft>& drafts) {
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    if (!drafts[i].assigned) {
      continue;
    }
    const Column& column = definition().columns[i];
    if (!column.isLongValue() || drafts[i].cell.null) {
      cells_[i] = drafts[i].cell;
      continue;
    }
    cells_[i].null = false;
    const Bytes value = drafts[i].cell.bytes;
    if (value.size() <= mostInlineBytes) {
      makeInlineCell(value, cells_[i].bytes);
    } else if (!storeLongValue(pager(), column, value, cells_[i].bytes)) {
      return failFromPager();
    }
  }
  buildRow(definition(), cells_, row_);
  while (row_.size() > maximumRowSize(pager().version())) {
    if (!storeLongestInline(drafts)) {
      return false;
    }
    buildRow(definition(), cells_, row_);
  }
  return true;
}

// Moves the longest of the assigned long values that lie in the row out of it.
bool TableWriter::storeLongestInline(const std::vector<Draft>& drafts) {
  std::size_t longest = drafts.size();
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    if (definition().columns[i].isLongValue() && drafts[i].assigned &&
        cells_[i].bytes.size() > longValueHead &&
        (longest == drafts.size() || cells_[i].bytes.size() > cells_[longest].bytes.size())) {
      longest = i;
    }
  }
  if (longest == drafts.size()) {
    return fail("the record is too large");
  }
  return storeLongValue(pager(), definition().columns[longest], drafts[longest].cell.bytes,
                        cells_[longest].bytes) ||
         failFromPager();
}

bool TableWriter::makeKeysOf(Bytes row, TableIndexes::RowKeys& keys) {
  const RowView view(row, pager().version(), definition().variableColumns != 0);
  return (view.valid() && indexes_.makeKeys(*table_, view, keys)) || fail("the record is damaged");
}

// --- Placing the row

RowSpace TableWriter::space() const {
  return {pager(), definition().page, definition().ownedPages, definition().freePages};
}

std::optional<RowPointer> TableWriter::placeNewRow(Bytes row, std::uint16_t flags) {
  const auto place = space().insert(row, flags);
  if (!place) {
    failFromPager();
  }
  return place;
}

// Gives the row at `place` other bytes. `home` is its first slot: where it does not fit, the bytes go to
// another page and home points there, never over a second pointer.
bool TableWriter::replaceRow(RowPointer home, RowPointer place, Bytes row) {
  const MutableBytes page = pager().edit(place.page);
  if (page.empty() || !DataPage(page, pager().version()).sound()) {
    return fail("the row's page is damaged");
  }
  const bool moved = place != home;
  if (DataPageEditor(page).replace(place.row, row, moved ? slot_flag::hidden : std::uint16_t{0})) {
    space().noteRoom(place.page);
    return true;
  }
  const auto target = placeNewRow(row, slot_flag::hidden);
  if (!target) {
    return false;
  }
  std::uint8_t pointer[pointerRowSize];
  store32(pointer, target->toDisk());
  const MutableBytes homePage = pager().edit(home.page);
  if (homePage.empty() || !DataPage(homePage, pager().version()).sound() ||
      !DataPageEditor(homePage).replace(home.row, pointer, slot_flag::pointer)) {
    return fail("the row cannot be moved");
  }
  return !moved || removeRow(place);
}

bool TableWriter::removeRow(RowPointer place) {
  const MutableBytes bytes = pager().edit(place.page);
  if (bytes.empty() || !DataPage(bytes, pager().version()).sound()) {
    return fail("the row's page is damaged");
  }
  return space().remove(place) || failFromPager();
}

// Gives back the long values of a row: all, or those that the drafts replace.
bool TableWriter::releaseLongValues(const RowView& row, const std::vector<Draft>* drafts) {
  for (std::size_t i = 0; i < definition().columns.size(); ++i) {
    const Column& column = definition().columns[i];
    if (!column.isLongValue() || (drafts != nullptr && !(*drafts)[i].assigned)) {
      continue;
    }
    const auto cell = row.cell(column);
    if (cell && !releaseLongValue(pager(), column, *cell)) {
      return failFromPager();
    }
  }
  return true;
}

// --- Counters in the definition

std::optional<std::int32_t> TableWriter::nextAutoNumber() const {
  const PageView page = pager().read(definition().page);
  if (!page) {
    return std::nullopt;
  }
  const auto last = static_cast<std::int32_t>(load32(page.data() + autoNumberAt));
  return last == std::numeric_limits<std::int32_t>::max() ? std::nullopt : std::optional(last + 1);
}

bool TableWriter::assignAutoNumber(std::vector<Draft>& drafts) {
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    const Column& column = definition().columns[i];
    if (!column.autoNumber || column.type != ColumnType::longInteger || drawsNumbers(column)) {
      continue;
    }
    const auto next = nextAutoNumber();
    const MutableBytes page = next ? pager().edit(definition().page) : MutableBytes();
    if (page.empty()) {
      return fail("no autonumber is left");
    }
    drafts[i].assigned = true;
    drafts[i].cell.null = false;
    drafts[i].cell.bytes.resize(4);
    store32(drafts[i].cell.bytes.data(), static_cast<std::uint32_t>(*next));
    store32(page.data() + autoNumberAt, static_cast<std::uint32_t>(*next));
  }
  return true;
}

// The figure of other programs can be wrong; it must at least not go below none.
bool TableWriter::countRows(int change) {
  const MutableBytes page = pager().edit(definition().page);
  if (page.empty()) {
    return failFromPager();
  }
  const std::uint32_t rows = load32(page.data() + rowsAt);
  if (change > 0 || rows > 0) {
    store32(page.data() + rowsAt, rows + static_cast<std::uint32_t>(change));
  }
  return true;
}

// --- The three changes

std::optional<RowPointer> TableWriter::insertInTransaction(std::vector<Draft>& drafts) {
  cells_.assign(drafts.size(), Cell());
  if (!assignAutoNumber(drafts) || !checkRequired(drafts, true) || !makeRow(drafts) ||
      !makeKeysOf(row_, after_)) {
    return std::nullopt;
  }
  const auto place = placeNewRow(row_, 0);
  return place && indexes_.change(*table_, nullptr, &after_, *place, reason_) && countRows(1) ? place
                                                                                              : std::nullopt;
}

std::optional<RowPointer> TableWriter::insert(std::vector<Draft>& drafts) {
  Transaction transaction(pager());
  if (!transaction) {
    failFromPager();
    return std::nullopt;
  }
  const auto place = insertInTransaction(drafts);
  if (place && !transaction.commit()) {
    failFromPager();
    return std::nullopt;
  }
  return place;
}

bool TableWriter::update(RowPointer home, const std::vector<Draft>& drafts) {
  Transaction transaction(pager());
  if (!transaction) {
    return failFromPager();
  }
  const auto old = table_->fetch(home);
  if (!old) {
    return fail("the record has been deleted");
  }
  const std::vector<std::uint8_t> oldBytes(old->bytes.begin(), old->bytes.end());
  const RowView oldRow(oldBytes, pager().version(), definition().variableColumns != 0);
  if (!oldRow.valid() || !checkRequired(drafts, false) || !makeKeysOf(oldBytes, before_)) {
    return false;
  }
  cells_.assign(drafts.size(), Cell());
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    if (const auto cell = oldRow.cell(definition().columns[i])) {
      cells_[i].null = false;
      cells_[i].bytes.assign(cell->begin(), cell->end());
    }
  }
  return makeRow(drafts) && makeKeysOf(row_, after_) && releaseLongValues(oldRow, &drafts) &&
         replaceRow(home, old->place, row_) && indexes_.change(*table_, &before_, &after_, home, reason_) &&
         (transaction.commit() || failFromPager());
}

bool TableWriter::remove(RowPointer home) {
  Transaction transaction(pager());
  if (!transaction) {
    return failFromPager();
  }
  const auto row = table_->fetch(home);
  if (!row) {
    return fail("the record has been deleted");
  }
  const std::vector<std::uint8_t> bytes(row->bytes.begin(), row->bytes.end());
  const RowView view(bytes, pager().version(), definition().variableColumns != 0);
  return view.valid() && makeKeysOf(bytes, before_) &&
         indexes_.change(*table_, &before_, nullptr, home, reason_) && releaseLongValues(view, nullptr) &&
         removeRow(row->place) && (row->place == home || removeRow(home)) && countRows(-1) &&
         (transaction.commit() || failFromPager());
}

}  // namespace veltrano::access
