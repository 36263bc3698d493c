#include "harness.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "database/access/check/database_check.h"
#include "database/access/engine.h"
#include "database/access/schema/catalog.h"
#include "database/values/text_matcher.h"

namespace veltrano::access {

NewTable peopleTable() {
  return {.name = "People",
          .columns = {{.name = "ID", .type = ColumnType::longInteger},
                      {.name = "Name", .type = ColumnType::text, .size = 60},
                      {.name = "Plain", .type = ColumnType::text, .size = 60, .compressed = false},
                      {.name = "Code", .type = ColumnType::text, .size = 12},
                      {.name = "Notes", .type = ColumnType::memo},
                      {.name = "Picture", .type = ColumnType::ole},
                      {.name = "Raw", .type = ColumnType::binary, .size = 40},
                      {.name = "Born", .type = ColumnType::dateTime},
                      {.name = "Amount", .type = ColumnType::currency},
                      {.name = "Ratio", .type = ColumnType::real},
                      {.name = "Small", .type = ColumnType::single},
                      {.name = "Price", .type = ColumnType::numeric, .precision = 12, .scale = 3},
                      {.name = "Flag", .type = ColumnType::boolean},
                      {.name = "Tiny", .type = ColumnType::byte},
                      {.name = "Count", .type = ColumnType::integer},
                      {.name = "Path"},
                      {.name = "Mark", .type = ColumnType::guid}},
          .indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
                      {.name = "ByName", .columns = {{"Name"}, {"Born", false}}},
                      {.name = "ByCode", .columns = {{"Code"}}, .unique = true, .ignoreNulls = true},
                      {.name = "ByNotes", .columns = {{"Notes", false}}},
                      {.name = "ByPath", .columns = {{"Path"}}},
                      {.name = "ByAmount", .columns = {{"Amount", false}}, .ignoreNulls = true},
                      {.name = "ByPrice", .columns = {{"Price"}, {"Flag"}, {"Mark"}, {"Raw"}}}}};
}

NewTable plainTable() {
  NewTable table = peopleTable();
  table.name = "Plain";
  table.indexes.clear();
  return table;
}

namespace {

std::string utf8Of(const std::filesystem::path& path) {
  const auto text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace

std::unique_ptr<Database> open(const std::filesystem::path& file,
                               const std::optional<std::string>& password) {
  const auto connect =
      password ? std::optional(std::string(passwordConnectPrefix) + *password) : std::nullopt;
  auto database = makeAccessEngine()->openDatabase(utf8Of(file), connect);
  return database ? *std::move(database) : nullptr;
}

std::unique_ptr<Recordset> openTable(Database& database, const std::string& name) {
  auto table = database.openTable(name);
  return table ? *std::move(table) : nullptr;
}

std::string read(Recordset& recordset, const std::string& field) {
  std::string text = "not replaced";
  return recordset.readText(field, text) ? text : "(" + text + ")";
}

NewTable smallTable() {
  return {.name = "Peo\xC5\xBCle",
          .columns = {{.name = "ID", .type = ColumnType::longInteger, .autoNumber = true},
                      {.name = "Name", .type = ColumnType::text, .size = 5, .required = true},
                      {.name = "Note",
                       .type = ColumnType::memo,
                       .allowZeroLength = false,
                       .defaultValue = "=\"new\""},
                      {.name = "Code", .type = ColumnType::text, .size = 10},
                      {.name = "Tiny", .type = ColumnType::byte},
                      {.name = "Flag", .type = ColumnType::boolean},
                      {.name = "Mark", .type = ColumnType::guid, .autoNumber = true}},
          .indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
                      {.name = "Code", .columns = {{"Code"}}, .unique = true, .ignoreNulls = true}}};
}

void makeDatabase(const std::filesystem::path& file, const std::vector<NewTable>& tables,
                  const NewDatabase& options) {
  const Status made = createDatabase(file, tables, options);
  ASSERT_TRUE(made) << made.reason();
}

OpenedFile::OpenedFile(const std::filesystem::path& file, FileSystem* files, std::uint32_t cachePages,
                       const std::string& password)
    : file_(std::make_shared<OpenFile>()) {
  auto pager = Pager::open(file, {.password = password, .cachePages = cachePages, .files = files});
  reason_ = pager.status().reason();
  if (pager) {
    file_->pager = *std::move(pager);
  }
}

OpenedFile::~OpenedFile() {
  while (!file_->recordsets.empty()) {
    file_->recordsets.back()->close();
  }
}

std::unique_ptr<AccessRecordset> OpenedFile::table(const std::string& name) {
  auto definition = findTable(pager(), name);
  return definition ? table(*std::move(definition)) : nullptr;
}

std::unique_ptr<AccessRecordset> OpenedFile::table(TableDefinition definition) {
  return std::make_unique<AccessRecordset>(file_, std::move(definition));
}

std::string OpenedFile::check() const {
  return checkDatabase(pager(), CheckCounters::yes);
}

std::vector<Record> readAll(AccessRecordset& recordset) {
  std::vector<Record> records;
  std::string text;
  recordset.moveFirst();
  while (recordset.atEnd() == false) {
    Record record;
    for (const NewColumn& column : peopleTable().columns) {
      record[column.name] = recordset.readText(column.name, text) ? std::optional(text) : std::nullopt;
    }
    records.push_back(std::move(record));
    recordset.moveNext();
  }
  return records;
}

std::string difference(std::vector<Record> found, const Model& model, bool ordered) {
  if (!ordered) {
    std::sort(found.begin(), found.end(), [](const Record& a, const Record& b) {
      return std::stoi(*a.at("ID")) < std::stoi(*b.at("ID"));
    });
  }
  if (found.size() != model.size()) {
    return std::to_string(found.size()) + " records instead of " + std::to_string(model.size());
  }
  const auto shown = [](const std::optional<std::string>& value) {
    return value ? "'" + value->substr(0, 60) + "' (" + std::to_string(value->size()) + ")"
                 : std::string("null");
  };
  auto at = found.begin();
  for (const auto& [id, record] : model) {
    for (const auto& [name, value] : record) {
      if (at->at(name) != value) {
        return std::to_string(id) + "." + name + ": " + shown(at->at(name)) + " instead of " + shown(value);
      }
    }
    ++at;
  }
  return "";
}

// Letters of one, two, three and four bytes in UTF-8; upper and lower case; the ends of what may be
// compressed.
std::string RandomWork::randomText(int most) {
  static const char* const letters[] = {
      "a",
      "B",
      "c",
      "z",
      "0",
      "-",
      " x",
      "'",
      "\xC3\xA9",
      "\xC3\xBF",
      "\xC3\x9F",
      "\xC5\xBB",
      "\xCE\xA9",
      "\xE2\x82\xAC",
      "\xE3\x81\x82",
      "\xF0\x9F\x98\x80",
  };
  const int kinds = number(3) == 0 ? 16 : 8;
  std::string text;
  for (int length = number(most + 1); length > 0; --length) {
    text += letters[number(kinds)];
  }
  return text;
}

// A value as the text that is written, and that must be read again.
std::optional<std::string> RandomWork::randomValue(const NewColumn& column) {
  static const std::array<const char*, 4> fractions = {"", ".25", ".5", ".75"};
  const auto fraction = [&] { return fractions[static_cast<std::size_t>(number(4))]; };
  if (column.type != ColumnType::boolean && number(6) == 0) {
    return std::nullopt;
  }
  switch (column.type) {
    case ColumnType::text:
      if (column.name == "Path") {
        const int folder = number(12);
        return std::string(20 + 17 * static_cast<std::size_t>(folder), static_cast<char>('a' + folder)) +
               "/" + std::to_string(number(1000));
      }
      return column.name == "Code" ? "c" + std::to_string(number(400)) : randomText(column.size / 2);
    case ColumnType::memo: {
      const std::array<int, 4> lengths = {20, 60, 3000, 9000};
      return randomText(lengths[static_cast<std::size_t>(number(4))]);
    }
    case ColumnType::ole:
    case ColumnType::binary:
      return std::string(static_cast<std::size_t>(number(column.type == ColumnType::ole ? 9000 : 40) + 1),
                         static_cast<char>('a' + number(26)));
    case ColumnType::dateTime:
      return std::to_string(1000 + number(1900)) + "-02-1" + std::to_string(number(10)) + " 04:05:0" +
             std::to_string(number(10));
    case ColumnType::numeric:
    case ColumnType::currency:
    case ColumnType::real:
    case ColumnType::single:
      return (number(2) == 0 ? "-" : "") + std::to_string(1 + number(9999)) + fraction();
    case ColumnType::boolean:
      return number(2) == 0 ? "True" : "False";
    case ColumnType::byte:
      return std::to_string(number(256));
    case ColumnType::guid:
      return "{0011223" + std::to_string(number(10)) + "-4455-6677-8899-AABBCCDDEEF" +
             std::to_string(number(10)) + "}";
    default:
      return std::to_string(number(20000) - 10000);
  }
}

void RandomWork::assignSome(AccessRecordset& recordset, Record& record) {
  for (const NewColumn& column : peopleTable().columns) {
    if (column.name == "ID" || number(3) == 0) {
      continue;
    }
    const auto value = randomValue(column);
    recordset.write(column.name, value ? Value(*value) : Value(Null{}));
    record[column.name] = value;
  }
}

int RandomWork::randomId(const Model& before) {
  int id = number(4000) - 2000;
  while (!repeatsIds && before.contains(id)) {
    ++id;
  }
  return id;
}

bool RandomWork::step(AccessRecordset& recordset, const Model& before, Model& after) {
  after = before;
  added_ = number(10) < addsOfTen || before.empty();
  if (added_) {
    const int id = randomId(before);
    Record record;
    for (const NewColumn& column : peopleTable().columns) {
      record[column.name] =
          column.type == ColumnType::boolean ? std::optional<std::string>("False") : std::nullopt;
    }
    record["ID"] = std::to_string(id);
    recordset.addNew();
    recordset.write("ID", Value(id));
    assignSome(recordset, record);
    after[id] = std::move(record);
    return static_cast<bool>(recordset.update());
  }
  const auto chosen = std::next(before.begin(), number(static_cast<int>(before.size())));
  recordset.moveFirst();
  EXPECT_TRUE(recordset.find("ID", TextMatcher(std::to_string(chosen->first), CaseRule::exact)));
  if (number(5) < 2) {
    after.erase(chosen->first);
    return static_cast<bool>(recordset.remove());
  }
  recordset.edit();
  Record record = chosen->second;
  assignSome(recordset, record);
  if (number(4) == 0) {
    const int id = randomId(before);
    recordset.write("ID", Value(id));
    record["ID"] = std::to_string(id);
    after.erase(chosen->first);
    after[id] = std::move(record);
  } else {
    after[chosen->first] = std::move(record);
  }
  return static_cast<bool>(recordset.update());
}

}  // namespace veltrano::access
