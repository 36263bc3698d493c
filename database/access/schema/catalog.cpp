#include "database/access/schema/catalog.h"

#include <algorithm>

#include "base/text/lower_case.h"
#include "database/access/pages/long_value.h"
#include "database/access/schema/field_codec.h"
#include "database/access/schema/properties.h"
#include "database/access/schema/table.h"
#include "database/access/storage/text_codec.h"

namespace veltrano::access {

namespace {

// MSysObjects with the columns that matter here.
struct Catalog {
  Table table;
  const Column* id;
  const Column* name;
  const Column* type;
  const Column* flags;
  const Column* properties;
};

std::optional<Catalog> openCatalog(Pager& pager) {
  auto definition = readTableDefinition(pager, catalogPage);
  if (!definition) {
    return std::nullopt;
  }
  Catalog catalog{Table(pager, std::move(*definition)), nullptr, nullptr, nullptr, nullptr, nullptr};
  const TableDefinition& table = catalog.table.definition();
  const auto columnOf = [&table](std::string_view name, ColumnType type) {
    const Column* column = table.find(name);
    return column != nullptr && column->type == type ? column : nullptr;
  };
  catalog.id = columnOf("Id", ColumnType::longInteger);
  catalog.name = columnOf("Name", ColumnType::text);
  catalog.type = columnOf("Type", ColumnType::integer);
  catalog.flags = columnOf("Flags", ColumnType::longInteger);
  catalog.properties = columnOf("LvProp", ColumnType::ole);
  if (catalog.id == nullptr || catalog.name == nullptr || catalog.type == nullptr ||
      catalog.flags == nullptr) {
    return std::nullopt;
  }
  return catalog;
}

std::optional<CatalogEntry> readEntry(const Catalog& catalog, RowPointer place) {
  const auto row = catalog.table.fetch(place);
  if (!row) {
    return std::nullopt;
  }
  const RowView view = catalog.table.view(*row);
  if (!view.valid()) {
    return std::nullopt;
  }
  const auto id = view.cell(*catalog.id);
  const auto name = view.cell(*catalog.name);
  const auto type = view.cell(*catalog.type);
  const auto flags = view.cell(*catalog.flags);
  if (!id || !name || !type || id->size() < 4 || type->size() < 2) {
    return std::nullopt;
  }
  CatalogEntry entry;
  entry.id = load32(id->data());
  entry.kind = static_cast<ObjectKind>(load16(type->data()));
  entry.flags = flags && flags->size() >= 4 ? load32(flags->data()) : 0;
  entry.row = place;
  cellToText(catalog.table.pager(), *catalog.name, *name, entry.name);
  return entry;
}

// Calls action(entry) for every object, until it answers false.
template <typename Action>
void forEachEntry(const Catalog& catalog, Action action) {
  for (auto place = catalog.table.from({}); place; place = catalog.table.next(*place)) {
    const auto entry = readEntry(catalog, *place);
    if (entry && !action(*entry)) {
      return;
    }
  }
}

void readProperties(const Catalog& catalog, const CatalogEntry& entry, TableDefinition& table) {
  if (catalog.properties == nullptr) {
    return;
  }
  const auto row = catalog.table.fetch(entry.row);
  const auto cell = row ? catalog.table.view(*row).cell(*catalog.properties) : std::nullopt;
  std::vector<std::uint8_t> buffer;
  const auto value = cell ? readLongValue(catalog.table.pager(), *cell, buffer) : std::nullopt;
  if (value) {
    applyProperties(*value, catalog.table.pager(), table);
  }
}

const char* refusalOf(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::query:
      return "a query, which this engine does not run";
    case ObjectKind::linkedTable:
    case ObjectKind::linkedOdbc:
      return "a table linked from elsewhere";
    default:
      return "no such table";
  }
}

Status damagedCatalog() {
  return {Failure::damaged, "the catalog is damaged"};
}

Result<TableDefinition> readTable(const Catalog& catalog, const CatalogEntry& entry) {
  Pager& pager = catalog.table.pager();
  auto definition = readTableDefinition(pager, entry.definitionPage());
  if (!definition) {
    return {Failure::damaged, "the table's definition is damaged"};
  }
  const auto unreadable = [&pager](const Column& column) {
    return isJet3(pager.version()) && column.isText() && !isKnownCodePage(column.codePage);
  };
  if (std::any_of(definition->columns.begin(), definition->columns.end(), unreadable)) {
    return {Failure::other, "the table has text in a code page that the system cannot convert"};
  }
  definition->name = entry.name;
  readProperties(catalog, entry, *definition);
  return *std::move(definition);
}

}  // namespace

std::optional<std::vector<CatalogEntry>> readCatalog(Pager& pager) {
  const auto catalog = openCatalog(pager);
  if (!catalog) {
    return std::nullopt;
  }
  std::vector<CatalogEntry> entries;
  forEachEntry(*catalog, [&entries](const CatalogEntry& entry) {
    entries.push_back(entry);
    return true;
  });
  return entries;
}

Result<TableDefinition> findTable(Pager& pager, std::string_view name) {
  const auto catalog = openCatalog(pager);
  if (!catalog) {
    return damagedCatalog();
  }
  const char* refusal = "no such table";
  std::optional<CatalogEntry> found;
  forEachEntry(*catalog, [&](const CatalogEntry& entry) {
    if (!sameName(entry.name, name)) {
      return true;
    }
    // Forms, reports and the like may have the name of a table.
    if (entry.kind != ObjectKind::table) {
      refusal = refusalOf(entry.kind);
      return true;
    }
    found = entry;
    return false;
  });
  return found ? readTable(*catalog, *found) : Status(Failure::missing, refusal);
}

Result<TableDefinition> findTable(Pager& pager, PageNumber page) {
  const auto catalog = openCatalog(pager);
  if (!catalog) {
    return damagedCatalog();
  }
  std::optional<CatalogEntry> found;
  forEachEntry(*catalog, [&](const CatalogEntry& entry) {
    if (entry.kind == ObjectKind::table && entry.definitionPage() == page) {
      found = entry;
    }
    return !found;
  });
  return found ? readTable(*catalog, *found) : Status(Failure::missing, "no such table");
}

}  // namespace veltrano::access
