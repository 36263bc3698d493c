#include "database/access/check/database_check.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "database/access/check/index_check.h"
#include "database/access/index/table_indexes.h"
#include "database/access/pages/long_value.h"
#include "database/access/relations/related_tables.h"
#include "database/access/schema/catalog.h"
#include "database/access/schema/field_codec.h"
#include "database/access/schema/table.h"
#include "database/access/storage/data_page.h"
#include "database/access/storage/space/usage_map.h"

namespace veltrano::access {

namespace {

class Checker {
 public:
  explicit Checker(Pager& pager) : pager_(pager), related_(pager), owners_(pager.pageCount()) {}

  std::string run(CheckCounters counters);

 private:
  struct Scan {
    std::uint32_t rows = 0;
    std::int64_t greatestAutoNumber = 0;
    // For each index: key of each row that has an entry.
    std::vector<std::map<RowPointer, std::vector<std::uint8_t>>> keys;
    std::set<RowPointer> targets;
  };

  bool wrong(const std::string& what) {
    if (wrong_.empty()) {
      wrong_ = what;
    }
    return false;
  }
  bool claim(PageNumber page, const std::string& owner);
  bool claimMap(RowPointer place, const std::string& owner);
  bool claimDefinition(const TableDefinition& table);
  bool checkTable(const TableDefinition& definition, CheckCounters counters);
  bool checkDataPage(const Table& table, PageNumber number, std::optional<TableIndexes>& indexes, Scan& scan);
  bool checkRow(const Table& table, RowPointer place, std::optional<TableIndexes>& indexes, Scan& scan);
  bool checkLongValue(const Column& column, Bytes cell);
  bool checkLongValuePages(const Column& column);
  bool checkHidden(const Table& table, const Scan& scan);
  bool checkIndexes(const Table& table, const Scan& scan);
  bool checkRelations(PageNumber page);
  bool checkFreePages();

  Pager& pager_;
  RelatedTables related_;
  std::vector<std::string> owners_;
  std::set<RowPointer> maps_;
  std::set<RowPointer> pieces_;  // of long values that rows point to
  std::string name_;             // of the table being checked
  std::string wrong_;
};

std::string text(RowPointer place) {
  return std::to_string(place.page) + "." + std::to_string(place.row);
}

bool Checker::claim(PageNumber page, const std::string& owner) {
  if (page >= owners_.size()) {
    return wrong(owner + ": page after the end of the file");
  }
  if (!owners_[page].empty()) {
    return wrong("page " + std::to_string(page) + " belongs to " + owners_[page] + " and to " + owner);  // C1
  }
  owners_[page] = owner;
  return true;
}

// A map's row, and its bitmap pages. Several maps share a page. Access leaves out maps of pages with room.
bool Checker::claimMap(RowPointer place, const std::string& owner) {
  if (place == RowPointer{}) {
    return true;
  }
  const PageView view = pager_.read(place.page);
  const auto row = view ? DataPage(view.bytes(), pager_.version()).row(place.row) : std::nullopt;
  if (!row || row->size() < 5 || !maps_.insert(place).second) {
    return wrong(owner + ": map missing, or shared with another");
  }
  if (owners_[place.page].empty()) {
    owners_[place.page] = "maps";
  }
  if (owners_[place.page] != "maps") {
    return wrong(owner + ": map on a page of " + owners_[place.page]);
  }
  for (std::size_t at = 1; (*row)[0] == 1 && at + 4 <= row->size(); at += 4) {
    const PageNumber bitmap = load32(row->data() + at);
    if (bitmap != 0 && !claim(bitmap, "bitmap of " + owner)) {
      return false;
    }
  }
  return true;
}

bool Checker::claimDefinition(const TableDefinition& table) {
  for (PageNumber page = table.page; page != 0;) {
    if (!claim(page, "definition of " + name_)) {
      return false;
    }
    page = load32(pager_.read(page).data() + 4);
  }
  bool done = claimMap(table.ownedPages, name_) && claimMap(table.freePages, name_);
  for (const Index& index : table.indexes) {
    done = done && claimMap(index.ownedPages, name_ + "/" + index.name);
    const UsageMap map(pager_, index.ownedPages);
    for (auto page = map.next(0); done && page; page = map.next(*page + 1)) {
      // Other programs leave pages there that the tree has given up.
      done = *page >= owners_.size() || claim(*page, name_ + "/" + index.name);
    }
  }
  for (const Column& column : table.columns) {
    if (column.isLongValue() && column.ownedPages.page != 0) {
      done = done && claimMap(column.ownedPages, name_ + "." + column.name) &&
             claimMap(column.freePages, name_ + "." + column.name);
    }
  }
  return done;
}

// C3, C6
bool Checker::checkLongValue(const Column& column, Bytes cell) {
  std::vector<std::uint8_t> buffer;
  if (cell.empty()) {
    return true;
  }
  if (!readLongValue(pager_, cell, buffer)) {
    return wrong(name_ + "." + column.name + ": damaged long value");
  }
  const std::uint32_t kind = load32(cell.data()) >> 30;
  RowPointer place = RowPointer::fromDisk(load32(cell.data() + 4));
  while (kind != 2 && place.page != 0) {
    if (!pieces_.insert(place).second) {
      return wrong(name_ + "." + column.name + ": piece " + text(place) + " belongs to two values");
    }
    const PageView view = pager_.read(place.page);
    const auto row = view ? DataPage(view.bytes(), pager_.version()).row(place.row) : std::nullopt;
    if (!row || DataPage(view.bytes(), pager_.version()).isDeleted(place.row)) {
      return wrong(name_ + "." + column.name + ": piece " + text(place) + " is missing");
    }
    place = kind == 0 && row->size() >= 4 ? RowPointer::fromDisk(load32(row->data())) : RowPointer{};
  }
  return true;
}

bool Checker::checkRow(const Table& table, RowPointer place, std::optional<TableIndexes>& indexes,
                       Scan& scan) {
  const auto row = table.fetch(place);
  if (!row || !table.view(*row).valid()) {
    return wrong(name_ + ": damaged row " + text(place));
  }
  if (row->place != place && !scan.targets.insert(row->place).second) {
    return wrong(name_ + ": two pointers to " + text(row->place));
  }
  const RowView view = table.view(*row);
  std::string value;
  for (const Column& column : table.definition().columns) {
    const auto cell = view.cell(column);
    if (cell && !column.isLongValue() && column.fixed && column.type != ColumnType::boolean &&
        cell->size() < column.length) {
      return wrong(name_ + ": short value in row " + text(place));
    }
    if (cell && column.isLongValue() && !column.calculated && !checkLongValue(column, *cell)) {
      return false;
    }
    if (cell && column.autoNumber && cell->size() >= 4) {
      scan.greatestAutoNumber =
          std::max<std::int64_t>(scan.greatestAutoNumber, static_cast<std::int32_t>(load32(cell->data())));
    }
  }
  ++scan.rows;
  TableIndexes::RowKeys keys;
  if (indexes && !indexes->makeKeys(table, view, keys)) {
    return wrong(name_ + ": no keys for row " + text(place));
  }
  for (std::size_t i = 0; i < keys.entries.size(); ++i) {
    if (keys.entries[i].present()) {
      scan.keys[i].emplace(place, keys.entries[i].key);
    }
  }
  return true;
}

bool Checker::checkDataPage(const Table& table, PageNumber number, std::optional<TableIndexes>& indexes,
                            Scan& scan) {
  const PageView view = pager_.read(number);
  const std::string where = name_ + ": page " + std::to_string(number);
  if (!view || !claim(number, name_)) {
    return wrong(where + " cannot be read");
  }
  const DataPage page(view.bytes(), pager_.version());
  if (!page.sound() || page.owner() != table.definition().page) {
    return wrong(where + " is no sound data page of the table");  // C2
  }
  if (load16(view.data() + 2) != page.freeBytes()) {
    return wrong(where + " states other free bytes than it has");
  }
  for (std::uint32_t slot = 0; slot < page.slotCount(); ++slot) {
    const RowPointer place{number, static_cast<std::uint8_t>(slot)};
    if (!page.isHidden(slot) && !checkRow(table, place, indexes, scan)) {
      return false;
    }
  }
  return true;
}

// C3: no hidden row without a pointer to it.
bool Checker::checkHidden(const Table& table, const Scan& scan) {
  const UsageMap owned(pager_, table.definition().ownedPages);
  for (auto number = owned.next(0); number; number = owned.next(*number + 1)) {
    const PageView view = pager_.read(*number);
    const DataPage page(view.bytes(), pager_.version());
    for (std::uint32_t slot = 0; slot < page.slotCount(); ++slot) {
      const RowPointer place{*number, static_cast<std::uint8_t>(slot)};
      if (page.isHidden(slot) && !page.isDeleted(slot) && !scan.targets.contains(place)) {
        return wrong(name_ + ": nothing points to the hidden row " + text(place));
      }
    }
  }
  return true;
}

// C6: no piece without a value, on the pages that the column's map names.
bool Checker::checkLongValuePages(const Column& column) {
  const UsageMap owned(pager_, column.ownedPages);
  for (auto number = owned.next(0); number; number = owned.next(*number + 1)) {
    const std::string where = name_ + "." + column.name + ": page " + std::to_string(*number);
    const PageView view = pager_.read(*number);
    if (!view || !claim(*number, name_ + "." + column.name)) {
      return wrong(where + " cannot be read");
    }
    const DataPage page(view.bytes(), pager_.version());
    if (!page.sound() || page.owner() != longValueOwner) {
      return wrong(where + " is no sound page of long values");
    }
    for (std::uint32_t slot = 0; slot < page.slotCount(); ++slot) {
      if (!page.isDeleted(slot) && !pieces_.contains({*number, static_cast<std::uint8_t>(slot)})) {
        return wrong(where + " has a piece that no row leads to");
      }
    }
  }
  return true;
}

// C5
bool Checker::checkIndexes(const Table& table, const Scan& scan) {
  for (std::size_t i = 0; i < scan.keys.size(); ++i) {
    const Index& index = table.definition().indexes[i];
    std::vector<OwnedEntry> entries;
    const std::string tree = checkIndex(pager_, table.definition().page, index, entries);
    if (!tree.empty()) {
      return wrong(name_ + "/" + index.name + ": " + tree);
    }
    if (entries.size() != scan.keys[i].size()) {
      return wrong(name_ + "/" + index.name + ": " + std::to_string(entries.size()) + " entries for " +
                   std::to_string(scan.keys[i].size()) + " rows");
    }
    for (const OwnedEntry& entry : entries) {
      const auto key = scan.keys[i].find(entry.row);
      if (key == scan.keys[i].end() || key->second != entry.key) {
        return wrong(name_ + "/" + index.name + ": the entry of row " + text(entry.row) + " is wrong");
      }
    }
  }
  return true;
}

bool Checker::checkTable(const TableDefinition& definition, CheckCounters counters) {
  constexpr std::size_t rowsAt = 16;
  constexpr std::size_t autoNumberAt = 20;
  const Table table(pager_, definition);
  // Indexes in an order that is not known are not checked.
  std::optional<TableIndexes> indexes;
  if (auto known = TableIndexes::create(table); known && !isJet3(pager_.version())) {
    indexes = *std::move(known);
  }
  Scan scan;
  scan.keys.resize(indexes ? definition.indexes.size() : 0);
  if (!claimDefinition(definition)) {
    return false;
  }
  const UsageMap owned(pager_, definition.ownedPages);
  for (auto page = owned.next(0); page; page = owned.next(*page + 1)) {
    if (!checkDataPage(table, *page, indexes, scan)) {
      return false;
    }
  }
  const UsageMap free(pager_, definition.freePages);
  for (auto page = free.next(0); page; page = free.next(*page + 1)) {
    if (!owned.contains(*page)) {
      return wrong(name_ + ": page with room that is not its own");  // C4
    }
  }
  for (const Column& column : definition.columns) {
    if (column.isLongValue() && column.ownedPages.page != 0 && !checkLongValuePages(column)) {
      return false;
    }
  }
  const PageView head = pager_.read(definition.page);
  if (counters == CheckCounters::yes && (load32(head.data() + rowsAt) != scan.rows ||
                                         load32(head.data() + autoNumberAt) < scan.greatestAutoNumber)) {
    return wrong(name_ + ": wrong counters");  // C7
  }
  return checkHidden(table, scan) && checkIndexes(table, scan);
}

// C8. Relations that this engine does not enforce are not checked.
bool Checker::checkRelations(PageNumber page) {
  const auto found = related_.find(page);
  if (!found) {
    return true;
  }
  const Table& table = (*found)->table;
  for (const Relation& relation : (*found)->asChild) {
    for (auto place = table.from({}); place; place = table.next(*place)) {
      const auto row = table.fetch(*place);
      const auto key = row ? relation.keyOf(Relation::Role::child, table.view(*row)) : std::nullopt;
      const auto parent = key ? relation.hasParent(*key) : Result<bool>(false);
      if (!key || !parent || (!key->allNull && !*parent)) {
        return wrong(table.definition().name + ": row " + text(*place) + " has no parent by the relation " +
                     relation.name());
      }
    }
  }
  return true;
}

bool Checker::checkFreePages() {
  const UsageMap free(pager_, RowPointer{1, 0});
  for (auto page = free.next(0); page && *page < owners_.size(); page = free.next(*page + 1)) {
    if (!owners_[*page].empty()) {
      return wrong("page " + std::to_string(*page) + " of " + owners_[*page] + " counts as free");  // C1
    }
  }
  return true;
}

std::string Checker::run(CheckCounters counters) {
  if (owners_.size() < 2) {
    return "no pages";
  }
  owners_[0] = "header";
  owners_[1] = "maps";
  claimMap({1, 0}, "the file");
  const auto catalog = readCatalog(pager_);
  if (!catalog) {
    return "damaged catalog";
  }
  for (const CatalogEntry& entry : *catalog) {
    if (entry.kind != ObjectKind::table || !wrong_.empty()) {
      continue;
    }
    name_ = entry.name;
    const auto definition = readTableDefinition(pager_, entry.definitionPage());
    if (!definition) {
      return name_ + ": damaged definition";
    }
    checkTable(*definition, counters);
  }
  for (const CatalogEntry& entry : *catalog) {
    if (entry.kind == ObjectKind::table && wrong_.empty()) {
      checkRelations(entry.definitionPage());
    }
  }
  if (wrong_.empty()) {
    checkFreePages();
  }
  return wrong_;
}

}  // namespace

std::string checkDatabase(Pager& pager, CheckCounters counters) {
  return Checker(pager).run(counters);
}

}  // namespace veltrano::access
