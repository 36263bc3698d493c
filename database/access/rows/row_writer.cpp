#include "database/access/rows/row_writer.h"

#include <algorithm>
#include <limits>

#include "database/access/pages/long_value.h"
#include "database/access/schema/default_value.h"

namespace veltrano::access {

// What a change touches:
//
//                            insert            update in place       update, row moved          delete
//   data page                new slot          row replaced          row in another page,       slot marked
//                                                                    pointer in the old slot
//   map of pages with room   page out if full                        page out if full           page in
//   definition: rows         + 1                                                                - 1
//   definition: autonumber   the last one
//   indexes                  entries           entries that differ   entries that differ        entries
//   long values              stored            new stored,           new stored,                given back
//                                              old given back        old given back
//
// In the indexes a row has the place of its first slot. A page left without rows goes back to the file.

namespace {

constexpr std::size_t rowsAt = 16;  // in the definition's first page
constexpr std::size_t autoNumberAt = 20;
constexpr std::size_t pointerRowSize = 4;

bool holdsData(const Column& column) {
  return column.type != ColumnType::complex && !column.calculated;
}

}  // namespace

bool RowWriter::fail(Failure failure, const char* reason) {
  failure_ = {failure, reason};
  return false;
}

bool RowWriter::failFromPager() {
  failure_ = pager().pageFailure() ? Status(Failure::damaged, "the file is damaged") : pager().pageFailure();
  return false;
}

Result<RowWriter> RowWriter::create(const Table& table) {
  const TableDefinition& definition = table.definition();
  if (!table.pager().writable()) {
    return table.pager().writable();
  }
  if (!std::all_of(definition.columns.begin(), definition.columns.end(), holdsData)) {
    return {Failure::notAllowed, "the table has calculated or multi-valued columns"};
  }
  auto indexes = TableIndexes::create(table);
  if (!indexes) {
    return indexes.status();
  }
  auto validation = Validation::create(table);
  if (!validation) {
    return validation.status();
  }
  return RowWriter(table, *std::move(indexes), *std::move(validation));
}

bool RowWriter::checkRequired(const std::vector<Draft>& drafts, bool all) {
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    const Column& column = definition().columns[i];
    if (column.required && column.type != ColumnType::boolean && (all || drafts[i].assigned) &&
        drafts[i].cell.null) {
      return fail(Failure::other, "a required field is null");
    }
  }
  return true;
}

// --- Building the row

// Makes row_ from cells_, with the long values that were assigned stored or inline.
bool RowWriter::makeRow(const std::vector<Draft>& drafts) {
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
  buildRow(definition().rowLayout(), cells_, row_);
  while (row_.size() > maximumRowSize(pager().version())) {
    if (!storeLongestInline()) {
      return false;
    }
    buildRow(definition().rowLayout(), cells_, row_);
  }
  return true;
}

// Moves the longest of the long values that lie in the row out of it, whether this edit assigned it or not.
bool RowWriter::storeLongestInline() {
  std::size_t longest = cells_.size();
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    if (definition().columns[i].isLongValue() && liesInRow(cells_[i].bytes) &&
        (longest == cells_.size() || cells_[i].bytes.size() > cells_[longest].bytes.size())) {
      longest = i;
    }
  }
  if (longest == cells_.size()) {
    return fail(Failure::full, "the record is too large");
  }
  std::vector<std::uint8_t> cell;
  const bool stored = storeLongValue(pager(), definition().columns[longest],
                                     cells_[longest].view().subspan(longValueHead), cell);
  cells_[longest].bytes = std::move(cell);
  return stored || failFromPager();
}

// Of row_, after it was made: the rules of the assigned fields, or of all, and the table's.
bool RowWriter::checkRules(const std::vector<Draft>& drafts, bool all) {
  failure_ = validation_.check(*table_, viewOf(row_),
                               [&](std::size_t field) { return all || drafts[field].assigned; });
  return static_cast<bool>(failure_);
}

bool RowWriter::makeKeysOf(Bytes row, TableIndexes::RowKeys& keys) {
  const RowView view = viewOf(row);
  return (view.valid() && indexes_.makeKeys(*table_, view, keys)) ||
         fail(Failure::damaged, "the record is damaged");
}

// --- Placing the row

RowSpace RowWriter::space() const {
  return {pager(), definition().page, definition().ownedPages, definition().freePages};
}

std::optional<RowPointer> RowWriter::placeNewRow(Bytes row, std::uint16_t flags) {
  const auto place = space().insert(row, flags);
  if (!place) {
    failFromPager();
  }
  return place;
}

// Gives the row at `place` other bytes. `home` is its first slot: where it does not fit, the bytes go to
// another page and home points there, never over a second pointer.
bool RowWriter::replaceRow(RowPointer home, RowPointer place, Bytes row) {
  const MutableBytes page = pager().edit(place.page);
  if (page.empty() || !DataPage(page, pager().version()).sound()) {
    return fail(Failure::damaged, "the row's page is damaged");
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
    return fail(Failure::damaged, "the row cannot be moved");
  }
  return !moved || removeRow(place);
}

bool RowWriter::removeRow(RowPointer place) {
  const MutableBytes bytes = pager().edit(place.page);
  if (bytes.empty() || !DataPage(bytes, pager().version()).sound()) {
    return fail(Failure::damaged, "the row's page is damaged");
  }
  return space().remove(place) || failFromPager();
}

// Gives back the long values of a row: all, or those that the drafts replace.
bool RowWriter::releaseLongValues(const RowView& row, const std::vector<Draft>* drafts) {
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

std::optional<std::int32_t> RowWriter::lastAutoNumber() const {
  const PageView page = pager().read(definition().page);
  return page ? std::optional(static_cast<std::int32_t>(load32(page.data() + autoNumberAt))) : std::nullopt;
}

bool RowWriter::raiseTo(std::int32_t number) {
  const MutableBytes page = pager().edit(definition().page);
  if (page.empty()) {
    return failFromPager();
  }
  const auto last = static_cast<std::int32_t>(load32(page.data() + autoNumberAt));
  store32(page.data() + autoNumberAt, static_cast<std::uint32_t>(std::max(last, number)));
  return true;
}

Status RowWriter::raiseAutoNumber(std::int32_t number) {
  return raiseTo(number) ? Status() : failure_;
}

// Gives a new row its autonumber.
bool RowWriter::enterAutoNumber(std::vector<Draft>& drafts) {
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    if (!countsUp(definition().columns[i]) || drafts[i].assigned) {
      continue;
    }
    const auto last = lastAutoNumber();
    if (!last) {
      return failFromPager();
    }
    if (*last == std::numeric_limits<std::int32_t>::max()) {
      return fail(Failure::full, "no autonumber is left");
    }
    drafts[i] = {{false, std::vector<std::uint8_t>(4)}, true};
    store32(drafts[i].cell.bytes.data(), static_cast<std::uint32_t>(*last) + 1);
  }
  return true;
}

// Makes a greater autonumber among the drafts the table's last one.
bool RowWriter::keepAutoNumber(const std::vector<Draft>& drafts) {
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    const Draft& draft = drafts[i];
    if (countsUp(definition().columns[i]) && draft.assigned && draft.cell.bytes.size() >= 4 &&
        !raiseTo(static_cast<std::int32_t>(load32(draft.cell.bytes.data())))) {
      return false;
    }
  }
  return true;
}

// The figure of other programs can be wrong; it must at least not go below none.
bool RowWriter::countRows(int change) {
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

bool RowWriter::changeIndexes(const TableIndexes::RowKeys* before, const TableIndexes::RowKeys* after,
                              RowPointer row) {
  failure_ = indexes_.change(*table_, before, after, row);
  return static_cast<bool>(failure_);
}

bool RowWriter::makeInsertion(std::vector<Draft>& drafts, std::optional<RowPointer>& place) {
  cells_.assign(drafts.size(), Cell());
  if (!enterAutoNumber(drafts) || !keepAutoNumber(drafts) || !checkRequired(drafts, true) ||
      !makeRow(drafts) || !checkRules(drafts, true) || !makeKeysOf(row_, after_)) {
    return false;
  }
  place = placeNewRow(row_, 0);
  return place && changeIndexes(nullptr, &after_, *place) && countRows(1);
}

bool RowWriter::makeUpdate(RowPointer home, const std::vector<Draft>& drafts) {
  const auto old = table_->fetch(home);
  if (!old) {
    return fail(Failure::missing, "the record has been deleted");
  }
  const RowPointer place = old->place;
  old_.assign(old->bytes.begin(), old->bytes.end());
  if (!checkRequired(drafts, false) || !makeKeysOf(old_, before_)) {
    return false;
  }
  const RowView oldRow = before();
  cells_.assign(drafts.size(), Cell());
  for (std::size_t i = 0; i < drafts.size(); ++i) {
    if (const auto cell = oldRow.cell(definition().columns[i])) {
      cells_[i].null = false;
      cells_[i].bytes.assign(cell->begin(), cell->end());
    }
  }
  return keepAutoNumber(drafts) && makeRow(drafts) && checkRules(drafts, false) && makeKeysOf(row_, after_) &&
         releaseLongValues(oldRow, &drafts) && replaceRow(home, place, row_) &&
         changeIndexes(&before_, &after_, home);
}

bool RowWriter::makeRemoval(RowPointer home) {
  const auto row = table_->fetch(home);
  if (!row) {
    return fail(Failure::missing, "the record has been deleted");
  }
  old_.assign(row->bytes.begin(), row->bytes.end());
  return makeKeysOf(old_, before_) && changeIndexes(&before_, nullptr, home) &&
         releaseLongValues(before(), nullptr) && removeRow(row->place) &&
         (row->place == home || removeRow(home)) && countRows(-1);
}

Result<RowPointer> RowWriter::insert(std::vector<Draft>& drafts) {
  old_.clear();
  std::optional<RowPointer> place;
  if (!makeInsertion(drafts, place)) {
    return failure_;
  }
  return *place;
}

Status RowWriter::update(RowPointer home, const std::vector<Draft>& drafts) {
  return makeUpdate(home, drafts) ? Status() : failure_;
}

Status RowWriter::remove(RowPointer home) {
  row_.clear();
  return makeRemoval(home) ? Status() : failure_;
}

}  // namespace veltrano::access
