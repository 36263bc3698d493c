#include "database/access/search/indexed_search.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

#include "database/access/index/tree.h"
#include "database/access/schema/catalog.h"
#include "harness.h"
#include "tests/split.h"

namespace veltrano::access {
namespace {

using Pool = std::vector<Value>;

Pool textsOf(std::string_view texts) {
  const auto all = tests::split(texts, '|');
  return {all.begin(), all.end()};
}

// Texts that are equal in one respect and differ in another: case, accents, blanks, ignored characters, kana; and some
// with these ends after what a key holds.
Pool textPool(const std::vector<std::string>& longEnds) {
  Pool pool = textsOf(
      "|a|A|a b|A B|a b  "
      "|a-b|-ab|ab|AB|it's|its|\u00e9|\u00c9|e\u0301|e|\u00df|ss|SS|\u1e9e|\u3042|\u30a2|\u3041|"
      "\U0001F600|K|\u212a|k|\u00e5|\u212b|\u00c5|\u03c3|\u03c2|\u03a3|i|\u0130|\u0131|I|\u01c5|\u01c6|"
      "\u0436|"
      "\u0416|\u10d0|\u1c90|a\u00adb|\xED\xA0\x80|\u2160|\u2170|True|1|01|1.0|\u24b6|\u24d0|\u0301a\u0301|"
      "a\u0301\u0327");
  for (const std::string& end : longEnds) {
    pool.emplace_back(std::string(255, '7') + end);
  }
  pool.emplace_back(std::string("a\0b", 3));
  return pool;
}

// The numbers, their neighbours and their negatives.
template <typename Real>
Pool realPool(const std::vector<Real>& values) {
  Pool pool;
  for (const Real value : values) {
    for (const Real near :
         {value, std::nextafter(value, Real(3e38)), std::nextafter(value, Real(-1)), -value}) {
      pool.emplace_back(near);
    }
  }
  return pool;
}

Pool datePool(const std::vector<double>& days) {
  Pool pool;
  std::ranges::transform(days, std::back_inserter(pool), [](double day) { return Date{day}; });
  return pool;
}

// The columns, each with an index, and what they hold.
const char* const columnsOfRows =
    "table Rows; ID long; Kind integer; Text text; Wide text; Memo memo; Byte byte; Integer integer; Long "
    "long;"
    "Currency currency; Single single; Real double; Moment datetime; Guid guid; Decimal decimal(20,3);"
    "Flag boolean; Raw binary(20)";

const std::vector<std::pair<std::string, Pool>>& pools() {
  static const std::vector<std::pair<std::string, Pool>> all = {
      {"Text", textPool({""})},
      {"Wide", textPool({""})},
      {"Memo", textPool({"", "x", "X", "y"})},
      {"Byte", textsOf("0|1|200|255")},
      {"Integer", textsOf("0|-1|1|32767|-32768")},
      {"Long", textsOf("0|-1|10|2147483647")},
      {"Currency", textsOf("0|12.5|-12.5|0.0001|1")},
      {"Single", realPool<float>({0.0F, 0.1F, 1e-5F, 100.0F, 8388609.0F, 16777216.0F, 1.5e38F, 1e-42F})},
      {"Real", realPool<double>({0.0, 0.1, 0.3, 1e-5, 100.0, 123456789.125, 1.5e30, 9.99999999999999e22})},
      {"Moment", datePool({0.0, 0.25, 0.9999999, 1.0, 1.9999999, 2.0, 2.9999999, 3.0, 40000.4999999, 40000.5,
                           40000.5000001, 2958465.9999999, -0.25, -0.9999999, -1.0, -1.9999999, -30000.25})},
      {"Guid", textsOf("{00112233-4455-6677-8899-AABBCCDDEEFF}|{00112233-4455-6677-8899-AABBCCDDEEF0}")},
      {"Decimal", textsOf("0|-1|1.5|1.005|12345678901234567.125")},
      {"Flag", textsOf("True|False")},
      {"Raw", textsOf("a|A|\u00e9|ab")},
  };
  return all;
}

// How the records are ordered, and how their columns are indexed.
struct Layout {
  const char* name;
  std::string primaryKey;
  bool ascending;
  bool severalColumns;
  std::uint8_t orderVersion;
};

NewTable layoutTable(const Layout& layout) {
  std::string text = columnsOfRows;
  text += layout.primaryKey.empty() ? "" : "; primary P (" + layout.primaryKey + ")";
  for (const auto& [field, pool] : pools()) {
    text += layout.severalColumns ? "; unique By" : "; index By";
    text.append(field).append(" (").append(field).append(layout.ascending ? "" : " desc");
    text += layout.severalColumns ? ", ID desc) ignorenulls" : ")";
  }
  NewTable table = tableOf(text);
  table.columns[3].compressed = false;
  return table;
}

class Search : public DatabaseTest, public testing::WithParamInterface<Layout> {
 protected:
  void SetUp() override {
    make({layoutTable(GetParam())});
    definition_ = *findTable(pager(), "Rows");
    for (Column& column : definition_.columns) {
      column.language = 1033;
      column.orderVersion = GetParam().orderVersion;
    }
    rows_ = opened_->table(definition_);
    other_ = opened_->table(definition_);
  }
  std::size_t number(std::size_t below) { return random_() % below; }

  void addRow() {
    Values values = {{"ID", (next_ += 7919) % 10007}, {"Kind", static_cast<int>(number(3))}};
    for (const auto& [field, pool] : pools()) {
      values.emplace_back(field, number(5) == 0 ? Value(Null{}) : pool[number(pool.size())]);
    }
    const Status done = add(*rows_, values);
    ASSERT_TRUE(done) << done.reason();
  }
  // Changes, through the other recordset, a record here and there.
  void changeSome() {
    for (other_->moveFirst(); other_->atEnd() == false; other_->moveNext()) {
      if (number(6) == 0) {
        ASSERT_TRUE(other_->remove());
      } else if (const auto& [field, pool] = pools()[number(pools().size())]; number(3) == 0) {
        ASSERT_TRUE(change(*other_, {{field, pool.front()}}));
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
    for (const auto& [field, pool] : pools()) {
      std::set<std::string> texts = {"", "no such value", "1", "0", "-0", "00", "+1", "true", "1,5", "1e-05"};
      for (rows_->moveFirst(); rows_->atEnd() == false; rows_->moveNext()) {
        texts.insert(read(*rows_, field));
      }
      for (const std::string& text : texts) {
        ASSERT_NO_FATAL_FAILURE(compare(field, text));
      }
      for (const char* end : {"0", " ", ".0"}) {
        ASSERT_NO_FATAL_FAILURE(compare(field, *texts.rbegin() + end));
      }
    }
    ASSERT_NO_FATAL_FAILURE(compare("Kind", "2"));
  }

  TableDefinition definition_;
  std::unique_ptr<AccessRecordset> rows_, other_;
  std::mt19937 random_{1};
  int next_ = 0;
};

TEST_P(Search, FindsWhatReadingEveryRecordFinds) {
  ASSERT_NO_FATAL_FAILURE(compareAll());
  for (const int rows : {40, 60}) {
    for (int i = 0; i < rows; ++i) {
      ASSERT_NO_FATAL_FAILURE(addRow());
    }
    ASSERT_NO_FATAL_FAILURE(compareAll());
    ASSERT_NO_FATAL_FAILURE(changeSome());
  }
  ASSERT_NO_FATAL_FAILURE(compareAll());
  if (GetParam().orderVersion == 0) {  // what the file itself says
    EXPECT_EQ(check(), "");
  }
}

INSTANTIATE_TEST_SUITE_P(Layouts, Search,
                         testing::Values(Layout{"Storage", "", true, false, 0},
                                         Layout{"Key", "ID", true, true, 1},
                                         Layout{"KeyDown", "ID desc", false, false, 0},
                                         Layout{"KeyOfTwo", "Kind, ID", false, true, 1}),
                         [](const auto& one) { return std::string(one.param.name); });

// --- What goes through the index

class IndexedSearchTest : public DatabaseTest {
 protected:
  void SetUp() override {
    make({layoutTable({"", "ID", true, false, 0})});
    for (int id = 1; id <= 200; ++id) {
      Values values = {
          {"ID", id}, {"Text", "Name " + std::to_string(id)}, {"Memo", "\u212a" + std::to_string(id)}};
      for (const char* field : {"Integer", "Long", "Decimal", "Currency", "Single", "Real"}) {
        values.emplace_back(field, id);
      }
      values.insert(values.end(), {{"Moment", Date{id / 2.0}}, {"Flag", id > 190}});
      ASSERT_TRUE(add(table("Rows"), values));
    }
    table_.emplace(pager(), *findTable(pager(), "Rows"));
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
  std::optional<Table> table_;
};

TEST_F(IndexedSearchTest, IsUsedWhereEqualTextsHaveEqualKeys) {
  constexpr auto exact = CaseRule::exact;
  constexpr auto lowered = CaseRule::lowered;
  // The ID that is found; "-" for none; "?" if only the records can tell.
  const std::tuple<const char*, const char*, CaseRule, const char*> lookups[] = {
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
  const Index& index = *std::ranges::find(table_->definition().indexes, "ByLong", &Index::name);
  // Another entry of 7, which comes first, leads to a record that does not hold the key.
  bool newKey = false;
  const ByteList key = {0x7F, 0x80, 0, 0, 7};
  IndexTree tree(pager(), table_->definition().page, index);
  const Transaction transaction(pager());
  ASSERT_TRUE(tree.insert({key, *table_->from({})}, newKey));
  EXPECT_EQ(answerOf("Long", "7", CaseRule::exact), "?");
  stand(table("Rows"), "Long", "7");
  EXPECT_EQ(read(table("Rows"), "ID"), "7");
  pager().edit(index.root)[0] = 0;
  EXPECT_EQ(answerOf("Long", "9", CaseRule::exact), "?");
  stand(table("Rows"), "Long", "9");
}

}  // namespace
}  // namespace veltrano::access
