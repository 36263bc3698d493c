#include "database/access/authoring/system_tables.h"

#include <algorithm>
#include <array>

#include "database/access/authoring/byte_writer.h"
#include "database/access/authoring/definition_builder.h"
#include "database/access/rows/row_writer.h"
#include "database/access/schema/catalog.h"
#include "database/access/schema/field_codec.h"
#include "database/access/storage/space/allocator.h"

namespace veltrano::access {

namespace {

// Containers have numbers of their own; a table's is the page of its definition.
constexpr PageNumber relationsPage = catalogPage + 3;
constexpr std::uint32_t rootId = 0x0F000000;
constexpr std::uint32_t tablesId = 0x0F000001;
constexpr std::uint32_t databasesId = 0x0F000002;
constexpr std::uint32_t relationshipsId = 0x0F000003;
constexpr std::uint32_t databaseId = 0x10000000;
constexpr std::uint32_t firstOtherId = 0x80000000;  // of objects that are no tables
constexpr std::uint32_t systemFlag = 0x80000000;
constexpr std::uint32_t fullAccess = 0x000FFFFF;
// The owner of everything, as the engine that the format comes from knows it.
Value::Bytes owner() {
  return {0xA6, 0x33};
}

NewColumn number(const char* name, ColumnType type = ColumnType::longInteger) {
  return {.name = name, .type = type};
}
NewColumn text(const char* name) {
  return {.name = name, .type = ColumnType::text, .compressed = false};
}
NewColumn binary(const char* name) {
  return {.name = name, .type = ColumnType::binary, .size = 510};
}
NewColumn memo(const char* name) {
  return {.name = name, .type = ColumnType::memo, .compressed = false};
}
NewColumn ole(const char* name) {
  return {.name = name, .type = ColumnType::ole};
}

std::array<NewTable, 4> systemTables() {
  return {
      NewTable{.name = "MSysObjects",
               .columns = {number("Id"), number("ParentId"), text("Name"),
                           number("Type", ColumnType::integer), number("DateCreate", ColumnType::dateTime),
                           number("DateUpdate", ColumnType::dateTime), binary("Owner"), number("Flags"),
                           memo("Database"), memo("Connect"), text("ForeignName"), binary("RmtInfoShort"),
                           ole("RmtInfoLong"), ole("Lv"), ole("LvProp"), ole("LvModule"), ole("LvExtra")},
               .indexes = {{.name = "Id", .columns = {{"Id"}}, .primary = true},
                           {.name = "ParentIdName", .columns = {{"ParentId"}, {"Name"}}, .unique = true}}},
      NewTable{.name = "MSysACEs",
               .columns = {number("ObjectId"), binary("SID"), number("ACM"),
                           number("FInheritable", ColumnType::boolean)},
               .indexes = {{.name = "ObjectId", .columns = {{"ObjectId"}}, .required = true}}},
      NewTable{
          .name = "MSysQueries",
          .columns = {number("ObjectId"), number("Attribute", ColumnType::byte), binary("Order"),
                      text("Name1"), text("Name2"), memo("Expression"), number("Flag", ColumnType::integer)},
          .indexes = {{.name = "ObjectIdAttribute",
                       .columns = {{"ObjectId"}, {"Attribute"}, {"Order"}},
                       .primary = true}}},
      NewTable{.name = "MSysRelationships",
               .columns = {text("szRelationship"), number("grbit"), number("ccolumn"), number("icolumn"),
                           text("szObject"), text("szColumn"), text("szReferencedObject"),
                           text("szReferencedColumn")},
               .indexes = {{.name = "szObject", .columns = {{"szObject"}}, .ignoreNulls = true},
                           {.name = "szReferencedObject",
                            .columns = {{"szReferencedObject"}},
                            .ignoreNulls = true},
                           {.name = "szRelationship", .columns = {{"szRelationship"}}, .ignoreNulls = true}}},
  };
}

// --- Rows

// A table of the system, open for adding rows.
struct SystemTable {
  Table table;
  TableIndexes indexes;
};

struct FieldValue {
  const char* name;
  Value value;
};

// Adds a row to an open table, within the transaction of the caller.
Status addRow(const SystemTable& system, const std::vector<FieldValue>& fields) {
  const TableDefinition& definition = system.table.definition();
  std::vector<Draft> drafts(definition.columns.size());
  for (const FieldValue& field : fields) {
    const Column* column = definition.find(field.name);
    const auto cell = column != nullptr ? valueToCell(*column, field.value) : std::nullopt;
    if (!cell) {
      return {Failure::damaged, "the system tables lack a column"};
    }
    drafts[static_cast<std::size_t>(column - definition.columns.data())] = {{false, *cell}, true};
  }
  return RowWriter(system.table, system.indexes).insert(drafts).status();
}

Result<SystemTable> openSystemTable(Pager& pager, PageNumber page) {
  auto definition = readTableDefinition(pager, page);
  if (!definition) {
    return {Failure::damaged, "a system table is damaged"};
  }
  Table table(pager, std::move(*definition));
  auto indexes = TableIndexes::create(table);
  if (!indexes) {
    return indexes.status();
  }
  return SystemTable{std::move(table), *std::move(indexes)};
}

std::int64_t asLong(std::uint32_t bits) {
  return static_cast<std::int32_t>(bits);
}

struct Object {
  std::uint32_t id;
  std::uint32_t parent;
  std::string name;
  ObjectKind kind;
  std::uint32_t flags;
};

// Enters an object in the catalog and in the access rights.
Status addObject(Pager& pager, const Object& object, double created, const Value::Bytes& properties) {
  const auto objects = openSystemTable(pager, catalogPage);
  const auto rights = openSystemTable(pager, catalogPage + 1);
  if (!objects || !rights) {
    return objects ? rights.status() : objects.status();
  }
  std::vector<FieldValue> fields = {{"Id", asLong(object.id)},
                                    {"ParentId", asLong(object.parent)},
                                    {"Name", object.name},
                                    {"Type", static_cast<int>(object.kind)},
                                    {"DateCreate", Date{created}},
                                    {"DateUpdate", Date{created}},
                                    {"Owner", owner()},
                                    {"Flags", asLong(object.flags)}};
  if (!properties.empty()) {
    fields.push_back({"LvProp", properties});
  }
  if (Status added = addRow(*objects, fields); !added) {
    return added;
  }
  return addRow(*rights, {{"ObjectId", asLong(object.id)},
                          {"SID", owner()},
                          {"ACM", asLong(fullAccess)},
                          {"FInheritable", object.kind == ObjectKind::container}});
}

// --- Properties; properties.cpp shows the bytes

class PropertyWriter {
 public:
  // Starts the properties of a column, or of the object itself.
  void begin(std::uint16_t kind, const std::string& name) {
    finishChunk();
    kind_ = kind;
    chunk_.put32(6 + 2 * utf8ToUtf16(name).size());
    chunk_.text(name);
  }
  void addFlag(const char* name, bool value) {
    const std::uint8_t byte = value ? 0xFF : 0;
    add(name, 1, Bytes(&byte, 1));
  }
  void addText(const char* name, const std::string& value) {
    constexpr std::size_t lengthSize = 2;
    ByteWriter text;
    text.text(value);
    add(name, 10, Bytes(text.bytes).subspan(lengthSize));
  }
  // All of it; empty if nothing was started.
  Value::Bytes finish() {
    finishChunk();
    if (names_.empty()) {
      return {};
    }
    ByteWriter names;
    for (const std::string& name : names_) {
      names.text(name);
    }
    ByteWriter all;
    all.put(std::array<std::uint8_t, 4>{'M', 'R', '2', 0});
    putChunk(all, 0x80, names.bytes);
    all.put(chunks_.bytes);
    return std::move(all.bytes);
  }

 private:
  void add(const char* name, std::uint8_t type, Bytes value) {
    const auto known = std::find(names_.begin(), names_.end(), name);
    const auto index = static_cast<std::size_t>(known - names_.begin());
    if (known == names_.end()) {
      names_.emplace_back(name);
    }
    chunk_.put16(8 + value.size());
    chunk_.put8(0);
    chunk_.put8(type);
    chunk_.put16(index);
    chunk_.put16(value.size());
    chunk_.put(value);
  }
  void finishChunk() {
    if (!chunk_.bytes.empty()) {
      putChunk(chunks_, kind_, chunk_.bytes);
      chunk_.bytes.clear();
    }
  }
  static void putChunk(ByteWriter& all, std::uint16_t kind, Bytes body) {
    constexpr std::size_t headSize = 6;
    all.put32(headSize + body.size());
    all.put16(kind);
    all.put(body);
  }

  ByteWriter chunks_;
  ByteWriter chunk_;
  std::uint16_t kind_ = 0;
  std::vector<std::string> names_;
};

Value::Bytes databaseProperties() {
  PropertyWriter writer;
  writer.begin(0, "");
  writer.addText("AccessVersion", "08.50");
  return writer.finish();
}

Value::Bytes tableProperties(const NewTable& table) {
  PropertyWriter writer;
  if (!table.validationRule.empty()) {
    writer.begin(0, table.name);
    writer.addText("ValidationRule", table.validationRule);
  }
  for (const NewColumn& column : table.columns) {
    if (!column.required && column.allowZeroLength && column.defaultValue.empty() &&
        column.validationRule.empty()) {
      continue;
    }
    writer.begin(1, column.name);
    if (column.required) {
      writer.addFlag("Required", true);
    }
    if (!column.allowZeroLength) {
      writer.addFlag("AllowZeroLength", false);
    }
    if (!column.defaultValue.empty()) {
      writer.addText("DefaultValue", column.defaultValue);
    }
    if (!column.validationRule.empty()) {
      writer.addText("ValidationRule", column.validationRule);
    }
  }
  return writer.finish();
}

Status addFirstRows(Pager& pager, double created) {
  std::vector<Object> all = {{tablesId, rootId, "Tables", ObjectKind::container, systemFlag},
                             {databasesId, rootId, "Databases", ObjectKind::container, systemFlag},
                             {relationshipsId, rootId, "Relationships", ObjectKind::container, systemFlag},
                             {databaseId, databasesId, "MSysDb", ObjectKind::database, systemFlag}};
  PageNumber page = catalogPage;
  for (const NewTable& table : systemTables()) {
    all.push_back({page++, tablesId, table.name, ObjectKind::table, systemFlag});
  }
  Status done;
  for (std::size_t i = 0; i < all.size() && done; ++i) {
    const bool database = all[i].kind == ObjectKind::database;
    done = addObject(pager, all[i], created, database ? databaseProperties() : Value::Bytes());
  }
  return done;
}

}  // namespace

Status makeSystemTables(Pager& pager, double created) {
  constexpr const char* full = "the file cannot be written";
  Transaction transaction(pager);
  if (!transaction.begun()) {
    return transaction.begun();
  }
  const auto tables = systemTables();
  for (PageNumber i = 0; i < tables.size(); ++i) {
    if (allocatePage(pager) != catalogPage + i) {
      return {Failure::full, full};
    }
  }
  MapAllocator maps(pager);
  for (PageNumber i = 0; i < tables.size(); ++i) {
    if (!writeDefinition(pager, catalogPage + i, tables[i], TableKind::system, maps)) {
      return {Failure::full, full};
    }
  }
  Status done = addFirstRows(pager, created);
  return done ? transaction.commit() : done;
}

Status enterTable(Pager& pager, PageNumber page, const NewTable& table, double created) {
  return addObject(pager, {page, tablesId, table.name, ObjectKind::table, 0}, created,
                   tableProperties(table));
}

Status enterRelation(Pager& pager, const NewRelation& relation, double created) {
  constexpr int cascadesUpdates = 0x100;
  constexpr int cascadesDeletes = 0x1000;
  constexpr int setsNull = 0x2000;
  const auto relations = openSystemTable(pager, relationsPage);
  const auto catalog = readCatalog(pager);
  if (!relations || !catalog) {
    return {Failure::damaged, "the system tables are damaged"};
  }
  const int flags = (relation.cascadeUpdates ? cascadesUpdates : 0) |
                    (relation.onDelete == OnDelete::cascade   ? cascadesDeletes
                     : relation.onDelete == OnDelete::setNull ? setsNull
                                                              : 0);
  Status done;
  for (std::size_t i = 0; done && i < relation.childColumns.size(); ++i) {
    done = addRow(*relations, {{"szRelationship", relation.name},
                               {"grbit", flags},
                               {"ccolumn", static_cast<int>(relation.childColumns.size())},
                               {"icolumn", static_cast<int>(i)},
                               {"szObject", relation.child},
                               {"szColumn", relation.childColumns[i]},
                               {"szReferencedObject", relation.parent},
                               {"szReferencedColumn", relation.parentColumns[i]}});
  }
  const auto others = std::ranges::count(*catalog, ObjectKind::relation, &CatalogEntry::kind);
  const std::uint32_t id = firstOtherId + static_cast<std::uint32_t>(others);
  return done ? addObject(pager, {id, relationshipsId, relation.name, ObjectKind::relation, 0}, created, {})
              : done;
}

}  // namespace veltrano::access
