#include "harness.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "base/files/paths.h"
#include "database/access/authoring/schema_text.h"
#include "database/access/check/database_check.h"
#include "database/access/engine.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/usage_map.h"
#include "database/values/text_matcher.h"
#include "tests/split.h"

namespace veltrano::access {

ByteList bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

std::vector<NewTable> tablesOf(std::string_view schema) {
  std::string text(schema);
  std::replace(text.begin(), text.end(), ';', '\n');
  auto tables = parseSchema(text);
  EXPECT_TRUE(tables) << tables.status().reason();
  return *std::move(tables);
}

NewTable tableOf(std::string_view schema) {
  return tablesOf(schema).front();
}

const NewTable& peopleTable() {
  static const NewTable people = [] {
    NewTable table = tableOf(
        "table People; ID long; Name text(60); Plain text(60); Code text(12); Notes memo; Picture ole;"
        "Raw binary(40); Born datetime; Amount currency; Ratio double; Small single; Price decimal(12,3);"
        "Flag boolean; Tiny byte; Count integer; Path text; Mark guid;"
        "primary PrimaryKey (ID); index ByName (Name, Born desc); unique ByCode (Code) ignorenulls;"
        "index ByNotes (Notes desc); index ByPath (Path); index ByAmount (Amount desc) ignorenulls;"
        "index ByPrice (Price, Flag, Mark, Raw)");
    table.columns[2].compressed = false;
    return table;
  }();
  return people;
}

NewTable plainTable() {
  NewTable table = peopleTable();
  table.name = "Plain";
  table.indexes.clear();
  return table;
}

NewTable smallTable() {
  return tableOf(
      "table Small; ID autonumber; Name text(5) required; Note memo nonempty default =\"new\";"
      "Code text(10); Tiny byte; Flag boolean; Mark autoguid;"
      "primary PrimaryKey (ID); unique Code (Code) ignorenulls");
}

namespace {

Status finish(Recordset& recordset, const Values& values) {
  for (const auto& [field, value] : values) {
    EXPECT_TRUE(recordset.write(field, value)) << field;
  }
  return recordset.update();
}

}  // namespace

Status add(Recordset& recordset, const Values& values) {
  const Status begun = recordset.addNew();
  return begun ? finish(recordset, values) : begun;
}

Status change(Recordset& recordset, const Values& values) {
  const Status begun = recordset.edit();
  return begun ? finish(recordset, values) : begun;
}

void stand(Recordset& recordset, std::string_view field, const std::string& text) {
  recordset.moveFirst();
  EXPECT_TRUE(recordset.find(field, TextMatcher(text, CaseRule::exact))) << field << " = " << text;
}

std::string read(Recordset& recordset, std::string_view field) {
  std::string text = "not replaced";
  return recordset.readText(field, text) ? text : "(" + text + ")";
}

std::string readFields(Recordset& recordset, const std::vector<std::string>& fields) {
  std::string all;
  for (const std::string& field : fields) {
    all += read(recordset, field);
  }
  return all;
}

std::string readAll(Recordset& recordset, const std::vector<std::string>& fields) {
  std::string all;
  for (recordset.moveFirst(); recordset.atEnd() == false; recordset.moveNext()) {
    all += (all.empty() ? "" : " ") + readFields(recordset, fields);
  }
  return all;
}

std::unique_ptr<Database> open(const std::filesystem::path& file,
                               const std::optional<std::string>& password) {
  const auto connect =
      password ? std::optional(std::string(passwordConnectPrefix) + *password) : std::nullopt;
  auto database = makeAccessEngine()->openDatabase(pathToUtf8(file), connect);
  return database ? *std::move(database) : nullptr;
}

void makeDatabase(const std::filesystem::path& file, const std::vector<NewTable>& tables,
                  const NewDatabase& options) {
  const Status made = createDatabase(file, tables, options);
  ASSERT_TRUE(made) << made.reason();
}

void useUp(Pager& pager, PageNumber end) {
  UsageMap free(pager, globalMap);
  for (PageNumber page = 0; page < end; ++page) {
    free.remove(page);
  }
}

void fillToTheEnd(const std::filesystem::path& file) {
  std::filesystem::resize_file(file, maximumFileSize(Version::jet4));
  const OpenedFile opened(file);
  Transaction transaction(opened.pager());
  useUp(opened.pager(), 32736);
  ASSERT_TRUE(transaction.commit());
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

void DatabaseTest::make(const std::vector<NewTable>& tables, const NewDatabase& options,
                        std::uint32_t cachePages) {
  makeDatabase(file_, tables, options);
  opened_.emplace(file_, nullptr, cachePages);
}

void DatabaseTest::close() {
  tables_.clear();
  opened_.reset();
}

void DatabaseTest::reopen() {
  close();
  opened_.emplace(file_);
}

AccessRecordset& DatabaseTest::table(const std::string& name) {
  auto& known = tables_[name];
  if (!known) {
    known = opened_->table(name.substr(0, name.find('\'')));
  }
  return *known;
}

namespace {

Status act(AccessRecordset& rows, const std::string& verb, Values values) {
  Status done;
  bool known = !values.empty();
  const auto step = [&](std::string_view verbs, Status (AccessRecordset::*make)()) {
    if (verbs.find(verb) != std::string_view::npos) {
      known = true;
      done = done ? (rows.*make)() : done;
    }
  };
  if (verb == "stand" || verb == "change" || (verb == "delete" && !values.empty())) {
    stand(rows, values.at(0).first, *values.at(0).second.as<std::string>());
    values.erase(values.begin());
  }
  step("add new", &AccessRecordset::addNew);
  step("change edit", &AccessRecordset::edit);
  for (std::size_t i = 0; i < values.size() && done; ++i) {
    done = rows.write(values[i].first, values[i].second);
  }
  step("add change update", &AccessRecordset::update);
  step("delete", &AccessRecordset::remove);
  step("first", &AccessRecordset::moveFirst);
  step("last", &AccessRecordset::moveLast);
  step("next", &AccessRecordset::moveNext);
  EXPECT_TRUE(known) << verb;
  return done;
}

}  // namespace

void DatabaseTest::play(const std::string& scene) {
  std::string steps = scene;
  std::ranges::replace(steps, ';', '\n');
  for (const std::string& line : tests::split(steps, '\n')) {
    const std::size_t colon = std::min((line + " ").find(": "), line.size());
    const std::string expected = line.substr(std::min(colon + 2, line.size()));
    std::istringstream words(line.substr(0, colon));
    std::string verb;
    std::string name;
    words >> verb >> name;
    std::vector<std::string> fields;
    Values values;
    for (std::string word; words >> word;) {
      const std::size_t equals = word.find('=');
      fields.push_back(word.substr(0, equals));
      std::replace(word.begin(), word.end(), '_', ' ');
      const std::string value = word.substr(equals + 1);
      values.emplace_back(fields.back(), value == "-" ? Value(Null{}) : Value(value));
    }
    if (verb == "all" || verb == "read") {
      EXPECT_EQ(verb == "all" ? readAll(table(name), fields) : readFields(table(name), fields), expected)
          << line;
    } else if (!verb.empty()) {
      const bool refused = verb[0] == '!';
      const Status done = act(table(name), verb.substr(refused ? 1 : 0), values);
      EXPECT_EQ(static_cast<bool>(done), !refused) << line << ": " << done.reason();
      EXPECT_NE(done.reason().find(expected), std::string::npos) << line << ": " << done.reason();
    }
  }
  EXPECT_EQ(check(), "") << scene;
}

std::string difference(AccessRecordset& recordset, const Model& model, bool ordered) {
  Model found;
  for (recordset.moveFirst(); recordset.atEnd() == false; recordset.moveNext()) {
    Record record;
    for (const NewColumn& column : peopleTable().columns) {
      std::string text;
      record[column.name] = recordset.readText(column.name, text) ? std::optional(text) : std::nullopt;
    }
    const int id = std::stoi(*record["ID"]);
    if (!found.emplace(id, std::move(record)).second || (ordered && found.rbegin()->first != id)) {
      return std::to_string(id) + " is not where it belongs";
    }
  }
  for (const auto& [id, record] : model) {
    for (const auto& [name, value] : record) {
      if (found[id][name] != value) {
        return std::to_string(id) + "." + name + ": '" + found[id][name].value_or("null").substr(0, 60) +
               "' instead of '" + value.value_or("null").substr(0, 60) + "'";
      }
    }
  }
  return found.size() == model.size() ? "" : std::to_string(found.size()) + " records";
}

// Letters of one, two, three and four bytes in UTF-8; upper and lower case; the ends of what may be
// compressed.
std::string RandomWork::randomText(int most) {
  static const char* const letters[] = {"a",      "B",      "c",      "z",         "0",      "-",
                                        " x",     "'",      "\u00e9", "\u00ff",    "\u00df", "\u017b",
                                        "\u03a9", "\u20ac", "\u3042", "\U0001F600"};
  const int kinds = number(3) == 0 ? 16 : 8;
  std::string text;
  for (int length = number(most + 1); length > 0; --length) {
    text += letters[number(kinds)];
  }
  return text;
}

// A value as the text that is written, and that must be read again.
std::optional<std::string> RandomWork::randomValue(const NewColumn& column) {
  // A digit takes the place of each #; ~ is a random text of up to so many letters.
  static const std::map<std::string, std::string> forms = {
      {"Name", "~30"},
      {"Plain", "~30"},
      {"Notes", "~20|~60|~3000|~9000"},
      {"Code", "c1##|c2##"},
      {"Raw", "#|######|########################################"},
      {"Born", "1###-02-1# 04:05:0#|2###-02-1# 04:05:00"},
      {"Tiny", "1##|2#|0"},
      {"Count", "1####|-1####|2#"},
      {"Flag", "True|False"},
      {"Mark", "{0011223#-4455-6677-8899-AABBCCDDEEF#}"},
  };
  if (column.type != ColumnType::boolean && number(6) == 0) {
    return std::nullopt;
  }
  if (column.name == "Path" || column.name == "Picture") {
    const int folder = number(12);
    const int length = column.name == "Path" ? 20 + 17 * folder : number(9000);
    return std::string(static_cast<std::size_t>(length), static_cast<char>('a' + folder)) + "/" +
           std::to_string(number(1000));
  }
  const auto known = forms.find(column.name);
  const auto itsForms =
      tests::split(known != forms.end() ? known->second : "1###|-2##.25|3#.5|-1|4###.75", '|');
  std::string text = itsForms[random_() % itsForms.size()];
  if (text[0] == '~') {
    return randomText(std::stoi(text.substr(1)));
  }
  for (char& c : text) {
    c = c == '#' ? static_cast<char>('0' + number(10)) : c;
  }
  return text;
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
  stand(recordset, "ID", std::to_string(chosen->first));
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

void fillAtRandom(AccessRecordset& recordset, unsigned seed, int changes, Model& model) {
  RandomWork work(seed);
  for (Model after; changes > 0; --changes) {
    if (work.step(recordset, model, after)) {
      std::swap(model, after);
    }
  }
}

}  // namespace veltrano::access
