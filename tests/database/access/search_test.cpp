#include "database/access/search/indexed_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "database/access/index/tree.h"
#include "database/access/schema/catalog.h"
#include "harness.h"

namespace veltrano::access {
namespace {

constexpr const char* longText =
    "0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789"
    "0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789"
    "0123456789012345678901234567890123456789012345678901234";  // 255 characters: what a key holds

// Texts that are equal in one respect and differ in another: case, accents, blanks, ignored characters, kana.
std::vector<Value> textPool(std::initializer_list<const char*> longEnds) {
  std::vector<Value> pool;
  for (const char* text : {"",
                           "a",
                           "A",
                           "a b",
                           "A B",
                           "a b  ",
                           "a-b",
                           "-ab",
                           "ab",
                           "AB",
                           "it's",
                           "its",
                           "\u00e9",
                           "\u00c9",
                           "e\u0301",
                           "e",
                           "\u00df",
                           "ss",
                           "SS",
                           "\u1e9e",
                           "\u3042",
                           "\u30a2",
                           "\u3041",
                           "\U0001F600",
                           "K",
                           "\u212a",
                           "k",
                           "\u00e5",
                           "\u212b",
                           "\u00c5",
                           "\u03c3",
                           "\u03c2",
                           "\u03a3",
                           "i",
                           "\u0130",
                           "\u0131",
                           "I",
                           "\u01c5",
                           "\u01c6",
                           "\u0436",
                           "\u0416",
                           "\u10d0",
                           "\u1c90",
                           "a\u00adb",
                           "\xED\xA0\x80",
                           "\u2160",
                           "\u2170",
                           "True",
                           "1",
                           "01",
                           "1.0",
                           "\u24b6",
                           "\u24d0",
                           "\u0301a\u0301",
                           "a\u0301\u0327"}) {
    pool.emplace_back(std::string(text));
  }
  for (const char* end : longEnds) {
    pool.emplace_back(std::string(longText) + end);
  }
  pool.emplace_back(std::string("a\0b", 3));
  return pool;
}

std::vector<Value> realPool() {
  std::vector<Value> pool;
  for (const double value : {0.0, 0.1, 0.3, 1e-5, 100.0, 123456789.125, 1.5e30, 9.99999999999999e22}) {
    for (const double near : {value, std::nextafter(value, 1e38), std::nextafter(value, -1.0), -value}) {
      pool.emplace_back(near);
    }
  }
  return pool;
}

std::vector<Value> singlePool() {
  std::vector<Value> pool;
  for (const float value : {0.0F, 0.1F, 1e-5F, 100.0F, 8388609.0F, 16777216.0F, 1.5e38F, 1e-42F}) {
    for (const float near : {value, std::nextafter(value, 3e38F), std::nextafter(value, -1.0F), -value}) {
      pool.emplace_back(near);
    }
  }
  return pool;
}

std::vector<Value> datePool() {
  std::vector<Value> pool;
  for (const double day :
       {0.0, 0.25, -0.25, 0.9999999, -0.9999999, 1.0, -1.0, -1.9999999, 1.9999999, 2.0, 3.0, 2.9999999,
        40000.5, 40000.5000001, 40000.4999999, -30000.25, 2958465.9999999}) {
    pool.emplace_back(Date{day});
  }
  return pool;
}

std::vector<Value> textsOf(std::initializer_list<const char*> texts) {
  std::vector<Value> pool;
  for (const char* text : texts) {
    pool.emplace_back(std::string(text));
  }
  return pool;
}

struct Field {
  NewColumn column;
  std::vector<Value> pool;
};

const std::vector<Field>& fields() {
  static const std::vector<Field> all = {
      {{.name = "Text"}, textPool({""})},
      {{.name = "Wide", .compressed = false}, textPool({""})},
      {{.name = "Memo", .type = ColumnType::memo}, textPool({"", "x", "X", "y"})},
      {{.name = "Byte", .type = ColumnType::byte}, textsOf({"0", "1", "200", "255"})},
      {{.name = "Integer", .type = ColumnType::integer}, textsOf({"0", "-1", "1", "32767", "-32768"})},
      {{.name = "Long", .type = ColumnType::longInteger}, textsOf({"0", "-1", "10", "2147483647"})},
      {{.name = "Currency", .type = ColumnType::currency}, textsOf({"0", "12.5", "-12.5", "0.0001", "1"})},
      {{.name = "Single", .type = ColumnType::single}, singlePool()},
      {{.name = "Real", .type = ColumnType::real}, realPool()},
      {{.name = "Moment", .type = ColumnType::dateTime}, datePool()},
      {{.name = "Guid", .type = ColumnType::guid},
       textsOf({"{00112233-4455-6677-8899-AABBCCDDEEFF}", "{00112233-4455-6677-8899-AABBCCDDEEF0}"})},
      {{.name = "Decimal", .type = ColumnType::numeric, .precision = 20, .scale = 3},
       textsOf({"0", "-1", "1.5", "1.005", "12345678901234567.125"})},
      {{.name = "Flag", .type = ColumnType::boolean}, {Value(true), Value(false)}},
      {{.name = "Raw", .type = ColumnType::binary, .size = 20}, textsOf({"a", "A", "\u00e9", "ab"})},
  };
  return all;
}

// How the records are ordered, and how their columns are indexed.
struct Shape {
  const char* name;
  std::vector<NewIndexColumn> primaryKey;
  bool ascending;
  bool severalColumns;
  std::uint8_t orderVersion;
};

NewTable tableOf(const Shape& shape) {
  NewTable table = {.name = "Rows",
                    .columns = {{.name = "ID", .type = ColumnType::longInteger},
                                {.name = "Kind", .type = ColumnType::integer}}};
  if (!shape.primaryKey.empty()) {
    table.indexes = {{.name = "P", .columns = shape.primaryKey, .primary = true}};
  }
  for (const Field& field : fields()) {
    table.columns.push_back(field.column);
    NewIndex index = {.name = "By" + field.column.name, .columns = {{field.column.name, shape.ascending}}};
    if (shape.severalColumns) {
      index.columns.push_back({"ID", false});
      index.ignoreNulls = true;
      index.unique = true;
    }
    table.indexes.push_back(std::move(index));
  }
  return table;
}

class Search : public testing::TestWithParam<Shape> {
 protected:
  void SetUp() override {
    makeDatabase(folder_ / "a.mdb", {tableOf(GetParam())});
    file_.emplace(folder_ / "a.mdb");
    definition_ = *findTable(file_->pager(), "Rows");
    for (Column& column : definition_.columns) {
      column.language = 1033;
      column.orderVersion = GetParam().orderVersion;
    }
    rows_ = file_->table(definition_);
    other_ = file_->table(definition_);
  }
  int number(std::size_t below) { return static_cast<int>(random_() % below); }

  void addRow() {
    rows_->addNew();
    rows_->write("ID", (next_ += 7919) % 10007);
    rows_->write("Kind", number(3));
    for (const Field& field : fields()) {
      const bool null = number(5) == 0;
      ASSERT_TRUE(rows_->write(
          field.column.name,
          null ? Value(Null{}) : field.pool[static_cast<std::size_t>(number(field.pool.size()))]))
          << field.column.name;
    }
    const Status done = rows_->update();
    ASSERT_TRUE(done) << done.reason();
  }
  // Changes, through the other recordset, a record here and there.
  void changeSome() {
    for (other_->moveFirst(); other_->atEnd() == false; other_->moveNext()) {
      if (number(6) == 0) {
        ASSERT_TRUE(other_->remove());
      } else if (const Field& field = fields()[static_cast<std::size_t>(number(fields().size()))];
                 number(3) == 0) {
        other_->edit();
        other_->write(field.column.name, field.pool.front());
        ASSERT_TRUE(other_->update());
      }
    }
  }
  // The record on which a search ends: the scan of every record's text against what the engine does.
  void compare(const std::string& field, const std::string& text) {
    for (const CaseRule rule : {CaseRule::exact, CaseRule::lowered}) {
      const TextMatcher matcher(text, rule);
      rows_->moveFirst();
      const bool expected = rows_->Recordset::find(field, matcher);
      const std::string record = read(*rows_, "ID");
      rows_->moveNext();
      const std::string following = read(*rows_, "ID");
      rows_->moveFirst();
      ASSERT_EQ(rows_->find(field, matcher), expected) << field << ", " << text;
      ASSERT_EQ(read(*rows_, "ID"), record) << field << ", " << text;
      rows_->moveNext();
      ASSERT_EQ(read(*rows_, "ID"), following) << field << ", " << text;
    }
  }
  void compareAll() {
    for (const Field& field : fields()) {
      std::set<std::string> texts = {"", "no such value", "1", "0", "-0", "00", "+1", "true", "1,5", "1e-05"};
      for (rows_->moveFirst(); rows_->atEnd() == false; rows_->moveNext()) {
        texts.insert(read(*rows_, field.column.name));
      }
      for (const std::string& text : texts) {
        ASSERT_NO_FATAL_FAILURE(compare(field.column.name, text));
      }
      for (const char* end : {"0", " ", ".0"}) {
        ASSERT_NO_FATAL_FAILURE(compare(field.column.name, *texts.rbegin() + end));
      }
    }
    ASSERT_NO_FATAL_FAILURE(compare("Kind", "2"));
  }

  Folder folder_;
  std::optional<OpenedFile> file_;
  TableDefinition definition_;
  std::unique_ptr<AccessRecordset> rows_, other_;
  std::mt19937 random_{1};
  int next_ = 0;
};

TEST_P(Search, FindsWhatReadingEveryRecordFinds) {
  ASSERT_NO_FATAL_FAILURE(compareAll());
  for (const int rows : {40, 110}) {
    for (int i = 0; i < rows; ++i) {
      ASSERT_NO_FATAL_FAILURE(addRow());
    }
    ASSERT_NO_FATAL_FAILURE(compareAll());
    ASSERT_NO_FATAL_FAILURE(changeSome());
  }
  ASSERT_NO_FATAL_FAILURE(compareAll());
  if (GetParam().orderVersion == 0) {  // what the file itself says
    EXPECT_EQ(file_->check(), "");
  }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Search,
                         testing::Values(Shape{"Storage", {}, true, false, 0},
                                         Shape{"Key", {{"ID"}}, true, true, 1},
                                         Shape{"KeyDown", {{"ID", false}}, false, false, 0},
                                         Shape{"KeyOfTwo", {{"Kind"}, {"ID"}}, false, true, 1}),
                         [](const auto& one) { return std::string(one.param.name); });

// --- What goes through the index

struct Lookup {
  const char* field;
  const char* text;
  CaseRule rule;
  const char* answer;  // the ID; "-" for none; "?" if only the records can tell
};

class IndexedSearchTest : public testing::Test {
 protected:
  void SetUp() override {
    makeDatabase(folder_ / "a.mdb", {tableOf({"", {{"ID", true}}, true, false, 0})});
    file_.emplace(folder_ / "a.mdb");
    const auto rows = file_->table("Rows");
    for (int id = 1; id <= 200; ++id) {
      rows->addNew();
      rows->write("ID", id);
      rows->write("Text", "Name " + std::to_string(id));
      rows->write("Memo", "\u212a" + std::to_string(id));
      for (const char* field : {"Integer", "Long", "Decimal", "Currency", "Single", "Real"}) {
        rows->write(field, id);
      }
      rows->write("Moment", Date{id / 2.0});
      rows->write("Flag", id > 190);
      ASSERT_TRUE(rows->update());
    }
    table_.emplace(file_->pager(), *findTable(file_->pager(), "Rows"));
  }
  std::string answerOf(const char* field, const char* text, CaseRule rule) {
    const TableDefinition& definition = table_->definition();
    const auto answer =
        searchIndexes(*table_, definition.primaryKey(), *definition.find(field), TextMatcher(text, rule));
    if (!answer || !answer->row) {
      return answer ? "-" : "?";
    }
    const auto row = table_->fetch(*answer->row);
    return std::to_string(load32(table_->view(*row).cell(*definition.find("ID"))->data()));
  }
  const Index& indexOn(const char* name) {
    for (const Index& index : table_->definition().indexes) {
      if (index.name == name) {
        return index;
      }
    }
    ADD_FAILURE() << name;
    return table_->definition().indexes.front();
  }

  Folder folder_;
  std::optional<OpenedFile> file_;
  std::optional<Table> table_;
};

TEST_F(IndexedSearchTest, IsUsedWhereEqualTextsHaveEqualKeys) {
  constexpr auto exact = CaseRule::exact;
  constexpr auto lowered = CaseRule::lowered;
  const Lookup lookups[] = {
      {"ID", "117", exact, "117"},        {"ID", "0117", exact, "-"},
      {"ID", "9999999999", exact, "?"},   {"ID", "x", exact, "?"},
      {"Text", "Name 50", exact, "50"},   {"Text", "NAME 50", exact, "-"},
      {"Text", "NAME 50", lowered, "50"}, {"Text", "Name 50 ", lowered, "-"},
      {"Memo", "\u212a7", exact, "7"},    {"Memo", "k7", lowered, "7"},
      {"Memo", "kkkkk", lowered, "?"},  // too many keys
      {"Integer", "60", exact, "60"},     {"Decimal", "60", exact, "60"},
      {"Decimal", "0", exact, "?"},  // minus zero has another key
      {"Currency", "60", exact, "60"},    {"Single", "60", lowered, "60"},
      {"Single", "1E-42", exact, "?"},    {"Real", "60", exact, "60"},
      {"Real", "0", exact, "-"},          {"Moment", "1900-02-18 12:00:00", exact, "101"},
      {"Moment", "12:00:00", exact, "?"},                                 // before 1900
      {"Flag", "True", exact, "191"},     {"Flag", "False", exact, "?"},  // too many
      {"Raw", "a", exact, "?"},           {"Kind", "1", exact, "?"},      // no index
  };
  for (const auto& [field, text, rule, answer] : lookups) {
    EXPECT_EQ(answerOf(field, text, rule), answer) << field << " = " << text;
  }
}

TEST_F(IndexedSearchTest, LeavesADamagedIndexAlone) {
  EXPECT_EQ(answerOf("Long", "7", CaseRule::exact), "7");
  const Index& index = indexOn("ByLong");
  // The entry of 7 leads to the record with 8, which does not hold the key.
  const std::vector<std::uint8_t> key = {0x7F, 0x80, 0, 0, 7};
  const auto rowOf = [this](const char* id) {
    const TableDefinition& definition = table_->definition();
    return *searchIndexes(*table_, definition.primaryKey(), *definition.find("ID"),
                          TextMatcher(id, CaseRule::exact))
                ->row;
  };
  const auto pageOfRoot = [&] { return file_->pager().edit(index.root); };
  {
    Transaction transaction(file_->pager());
    IndexTree tree(file_->pager(), table_->definition().page, index);
    bool newKey = false;
    ASSERT_TRUE(tree.remove({key, rowOf("7")}) && tree.insert({key, rowOf("8")}, newKey));
    ASSERT_TRUE(transaction.commit());
  }
  EXPECT_EQ(answerOf("Long", "7", CaseRule::exact), "?");
  const auto rows = file_->table("Rows");
  EXPECT_TRUE(rows->find("Long", TextMatcher("7", CaseRule::exact)));
  EXPECT_EQ(read(*rows, "ID"), "7");
  {
    Transaction transaction(file_->pager());
    pageOfRoot()[0] = 0;
    ASSERT_TRUE(transaction.commit());
  }
  EXPECT_EQ(answerOf("Long", "9", CaseRule::exact), "?");
  rows->moveFirst();
  EXPECT_TRUE(rows->find("Long", TextMatcher("9", CaseRule::exact)));
}

}  // namespace
}  // namespace veltrano::access
