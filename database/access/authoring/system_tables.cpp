#include "database/access/authoring/system_tables.h"

#include <array>

#include "base/text/code_page.h"
#include "database/access/authoring/definition_builder.h"
#include "database/access/schema/catalog.h"
#include "database/access/schema/field_codec.h"
#include "database/access/storage/allocator.h"
#include "database/access/table_writer.h"

namespace veltrano::access {

namespace {

// Containers have numbers of their own; a table's is the page of its definition.
constexpr std::uint32_t rootId = 0x0F000000;
constexpr std::uint32_t tablesId = 0x0F000001;
constexpr std::uint32_t databasesId = 0x0F000002;
constexpr std::uint32_t relationshipsId = 0x0F000003;
constexpr std::uint32_t databaseId = 0x10000000;
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

struct FieldValue {
  const char* name;
  Value value;
};

// Adds a row to an open table, within the transaction of the caller.
bool addRow(const Table& table, const TableIndexes& indexes, const std::vector<FieldValue>& fields,
            std::string& reason) {
  std::vector<Draft> drafts(table.definition().columns.size());
  for (const FieldValue& field : fields) {
    const Column* column = table.definition().find(field.name);
    const auto cell = column != nullptr ? valueToCell(*column, field.value) : std::nullopt;
    if (!cell) {
      reason = "the system tables lack a column";
      return false;
    }
    Draft& draft = drafts[static_cast<std::size_t>(column - table.definition().columns.data())];
    draft = {{false, *cell}, true};
  }
  const auto row = TableWriter(table, indexes).insertInTransaction(drafts);
  if (!row) {
    reason = row.status().reason();
  }
  return static_cast<bool>(row);
}

// A table of the system, open for adding rows.
struct SystemTable {
  Table table;
  TableIndexes indexes;
};

std::optional<SystemTable> openSystemTable(Pager& pager, PageNumber page, std::string& reason) {
  auto definition = readTableDefinition(pager, page);
  if (!definition) {
    reason = "a system table is damaged";
    return std::nullopt;
  }
  Table table(pager, std::move(*definition));
  auto indexes = TableIndexes::create(table);
  if (!indexes) {
    reason = indexes.status().reason();
    return std::nullopt;
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

bool addObject(const SystemTable& objects, const Object& object, double created,
               const Value::Bytes& properties, std::string& reason) {
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
  return addRow(objects.table, objects.indexes, fields, reason);
}

bool addRights(const SystemTable& rights, std::uint32_t object, bool inheritable, std::string& reason) {
  return addRow(rights.table, rights.indexes,
                {{"ObjectId", asLong(object)},
                 {"SID", owner()},
                 {"ACM", asLong(fullAccess)},
                 {"FInheritable", inheritable}},
                reason);
}

// --- Properties; properties.cpp shows the bytes

class PropertyWriter {
 public:
  // Begins the properties of a column, or of the object itself.
  void begin(std::uint16_t kind, const std::string& name) {
    finishChunk();
    kind_ = kind;
    put32(static_cast<std::uint32_t>(6 + 2 * utf8ToUtf16(name).size()));
    putText(name);
  }
  void add(const char* name, std::uint8_t type, Bytes value) {
    const std::size_t index = indexOf(name);
    put16(8 + value.size());
    chunk_.push_back(0);
    chunk_.push_back(type);
    put16(index);
    put16(value.size());
    chunk_.insert(chunk_.end(), value.begin(), value.end());
  }
  void addFlag(const char* name, bool value) {
    const std::uint8_t byte = value ? 0xFF : 0;
    add(name, 1, Bytes(&byte, 1));
  }
  void addText(const char* name, const std::string& value) {
    const std::size_t before = chunk_.size();
    putText(value);
    const std::vector<std::uint8_t> bytes(chunk_.begin() + static_cast<std::ptrdiff_t>(before) + 2,
                                          chunk_.end());
    chunk_.resize(before);
    add(name, 10, bytes);
  }
  // All of it; empty when nothing was begun.
  Value::Bytes finish() {
    finishChunk();
    if (names_.empty()) {
      return {};
    }
    for (const std::string& name : names_) {
      putText(name);
    }
    Value::Bytes all = {'M', 'R', '2', 0};
    appendChunk(all, 0x80, chunk_);
    all.insert(all.end(), chunks_.begin(), chunks_.end());
    return all;
  }

 private:
  void put16(std::size_t value) {
    chunk_.push_back(static_cast<std::uint8_t>(value));
    chunk_.push_back(static_cast<std::uint8_t>(value >> 8));
  }
  void put32(std::uint32_t value) {
    put16(value);
    put16(value >> 16);
  }
  void putText(const std::string& text) {
    const std::u16string units = utf8ToUtf16(text);
    put16(2 * units.size());
    for (const char16_t unit : units) {
      put16(unit);
    }
  }
  std::size_t indexOf(const char* name) {
    std::size_t i = 0;
    while (i < names_.size() && names_[i] != name) {
      ++i;
    }
    if (i == names_.size()) {
      names_.emplace_back(name);
    }
    return i;
  }
  void finishChunk() {
    if (!chunk_.empty()) {
      appendChunk(chunks_, kind_, chunk_);
      chunk_.clear();
    }
  }
  static void appendChunk(Value::Bytes& all, std::uint16_t kind, const Value::Bytes& body) {
    std::array<std::uint8_t, 6> head = {};
    store32(head.data(), static_cast<std::uint32_t>(head.size() + body.size()));
    store16(head.data() + 4, kind);
    all.insert(all.end(), head.begin(), head.end());
    all.insert(all.end(), body.begin(), body.end());
  }

  Value::Bytes chunks_;
  Value::Bytes chunk_;
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
  for (const NewColumn& column : table.columns) {
    if (!column.required && column.allowZeroLength && column.defaultValue.empty()) {
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
  }
  return writer.finish();
}

bool addFirstRows(Pager& pager, double created, std::string& reason) {
  const auto objects = openSystemTable(pager, catalogPage, reason);
  const auto rights = openSystemTable(pager, catalogPage + 1, reason);
  if (!objects || !rights) {
    return false;
  }
  std::vector<Object> all = {{tablesId, rootId, "Tables", ObjectKind::container, systemFlag},
                             {databasesId, rootId, "Databases", ObjectKind::container, systemFlag},
                             {relationshipsId, rootId, "Relationships", ObjectKind::container, systemFlag},
                             {databaseId, databasesId, "MSysDb", ObjectKind::database, systemFlag}};
  PageNumber page = catalogPage;
  for (const NewTable& table : systemTables()) {
    all.push_back({page++, tablesId, table.name, ObjectKind::table, systemFlag});
  }
  for (const Object& object : all) {
    const bool database = object.kind == ObjectKind::database;
    const bool container = object.kind == ObjectKind::container;
    if (!addObject(*objects, object, created, database ? databaseProperties() : Value::Bytes(), reason) ||
        !addRights(*rights, object.id, container, reason)) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool makeSystemTables(Pager& pager, double created, std::string& reason) {
  Transaction transaction(pager);
  reason = "the file cannot be written";
  const auto tables = systemTables();
  for (std::size_t i = 0; i < tables.size() && transaction; ++i) {
    if (allocatePage(pager) != catalogPage + static_cast<PageNumber>(i)) {
      return false;
    }
  }
  MapAllocator maps(pager);
  for (std::size_t i = 0; i < tables.size(); ++i) {
    const PageNumber page = catalogPage + static_cast<PageNumber>(i);
    if (!transaction || !writeDefinition(pager, page, tables[i], TableKind::system, maps)) {
      return false;
    }
  }
  return addFirstRows(pager, created, reason) && transaction.commit();
}

bool enterTable(Pager& pager, PageNumber page, const NewTable& table, double created, std::string& reason) {
  const auto objects = openSystemTable(pager, catalogPage, reason);
  const auto rights = openSystemTable(pager, catalogPage + 1, reason);
  return objects && rights &&
         addObject(*objects, {page, tablesId, table.name, ObjectKind::table, 0}, created,
                   tableProperties(table), reason) &&
         addRights(*rights, page, false, reason);
}

}  // namespace veltrano::access
