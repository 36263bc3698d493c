#include <gtest/gtest.h>

#include "database/access/rules/evaluation.h"
#include "database/access/rules/parser.h"
#include "database/access/schema/catalog.h"
#include "database/values/text_matcher.h"
#include "harness.h"

namespace veltrano::access {
namespace {

NewTable table() {
  return {.name = "Things",
          .columns = {{.name = "N", .type = ColumnType::longInteger},
                      {.name = "Other N", .type = ColumnType::real},
                      {.name = "T"},
                      {.name = "M", .type = ColumnType::memo},
                      {.name = "D", .type = ColumnType::dateTime},
                      {.name = "F", .type = ColumnType::boolean},
                      {.name = "C", .type = ColumnType::currency},
                      {.name = "S", .type = ColumnType::single},
                      {.name = "G", .type = ColumnType::guid}}};
}

// One record of the table, of which each rule sees what was written last.
class Rules : public testing::Test {
 protected:
  void SetUp() override {
    makeDatabase(folder_ / "a.mdb", {table()});
    file_.emplace(folder_ / "a.mdb");
    table_.emplace(file_->pager(), *findTable(file_->pager(), "Things"));
    rows_ = file_->table("Things");
  }
  // "kept", "violated", or why the rule is not understood.
  std::string judge(const std::string& rule, const std::string& field) {
    const TableDefinition& definition = table_->definition();
    const Column* column = definition.find(field);
    const auto place = column == nullptr
                           ? std::nullopt
                           : std::optional(static_cast<std::size_t>(column - definition.columns.data()));
    const auto node = parseRule(rule, definition, place, TextOrder::generalLegacy);
    if (!node) {
      return node.status().reason();
    }
    const auto row = table_->fetch(*table_->from({}));
    return keepsRule(*node, *table_, table_->view(*row), TextOrder::generalLegacy) ? "kept" : "violated";
  }
  void store(const std::vector<std::pair<std::string, std::string>>& values) {
    rows_->moveFirst();
    if (rows_->atEnd() == false) {
      rows_->remove();
    }
    rows_->addNew();
    for (const auto& [field, value] : values) {
      ASSERT_TRUE(rows_->write(field, Value(value))) << field;
    }
    ASSERT_TRUE(rows_->update());
  }

  Folder folder_;
  std::optional<OpenedFile> file_;
  std::optional<Table> table_;
  std::unique_ptr<AccessRecordset> rows_;
};

constexpr const char* null = nullptr;

// Values of the rule's field that keep it and that violate it.
TEST_F(Rules, OfFieldsAreChecked) {
  const struct {
    const char* field;
    const char* rule;
    std::vector<const char*> kept;
    std::vector<const char*> violated;
  } cases[] = {
      {"N", ">=0 And <150", {"0", "149", null}, {"-1", "150"}},
      {"N", "=5", {"5", null}, {"6"}},
      {"N", "5", {"5", null}, {"6"}},
      {"N", "0 Or >100", {"0", "101"}, {"1", "100"}},
      {"N", "<>0", {"1", null}, {"0"}},
      {"N", "> 1e2", {"101"}, {"100"}},
      {"N", ">-5", {"-4"}, {"-5"}},
      {"N", "<= -(2 + 3)", {"-5"}, {"-4"}},
      {"N", "Between 1 And 9", {"1", "9", null}, {"0", "10"}},
      {"N", "between 9 and 1", {"1", "9"}, {"0", "10"}},
      {"N", "Between 1 And 3 Or Between 7 And 9", {"3", "7"}, {"5"}},
      {"N", "Not Between 1 And 9", {"0", null}, {"5"}},
      {"N", "In (1, 3, 5)", {"3", null}, {"2"}},
      {"N", "Not In (1,3)", {"2"}, {"3"}},
      {"N", "In (1, Null)", {"1", "2"}, {}},
      {"N", "Is Not Null", {"0"}, {null}},
      {"N", "Is Null Or >0", {null, "1"}, {"0"}},
      {"N", "Not (>5 Or <0)", {"0", "5", null}, {"6", "-1"}},
      {"N", "Not Not >5", {"6"}, {"5"}},
      {"N", "[N]>5", {"6"}, {"5"}},
      {"N", "([N]+1)>5", {"5"}, {"4"}},
      {"N", "[Things].[N]>5 And [Things]![N]<9", {"6"}, {"5", "9"}},
      {"N", "IsNull([N]) Or [N]-1>5", {null, "7"}, {"6"}},
      {"N", "Like \"1#\"", {"10", null}, {"1", "20"}},
      {"N", "Len([N])=2", {"10", "-1", null}, {"1"}},
      {"N", "<>Null", {"1", null}, {}},
      {"C", ">=0.05", {"0.05"}, {"0.0499"}},
      {"S", "<=0.1", {"0.1"}, {"0.2"}},
      {"Other N", "Between 0.5 And .75", {"0.5", "0.75"}, {"0.8"}},
      {"T", "\"USA\" Or \"Canada\"", {"usa", "Canada  ", null}, {"UK", ""}},
      {"T", "In ('a','it''s')", {"A", "it's"}, {"b"}},
      {"T", "<>\"\"", {"x", null}, {"", " "}},
      {"T", ">=\"b\" And <\"d\"", {"b", "C", "\u00e7a"}, {"a", "d"}},
      {"T", "Not \"x\"", {"y", null}, {"X"}},
      {"T", "Like \"A*\"", {"a", "Abc", null}, {"ba", ""}},
      {"T", "Like \"?*@?*.?*\"", {"a@b.c", "me@x.y.org"}, {"@b.c", "a@b", "a@b."}},
      {"T", "Like \"[A-Z]##\"", {"q12", "\u00e912"}, {"112", "q1", "q123"}},
      {"T", "Not Like \"*[!0-9]*\"", {"0123", "", null}, {"12a"}},
      {"T", "Like \"[!abc]*[*]\"", {"x*"}, {"a*", "x"}},
      {"T", "Like \"[]x[-]\"", {"x-"}, {"x"}},
      {"T", "Like \"*a*b*c*\"", {"abc", "xaxxbxbxcx"}, {"acb"}},
      {"T", "Is Null Or Not Like \"* *\"", {null, "ab"}, {"a b"}},
      {"T", "Len([T])=5", {"12345", null}, {"1234"}},
      {"T", "Len(T)<=3", {"\u00e9\u00e9\u00e9"}, {"1234"}},
      {"M", "Like \"*x\"", {"yyx"}, {"xy"}},
      {"D", ">=#1/31/2000#", {"2000-01-31", null}, {"2000-01-30 23:59:59"}},
      {"D", "Between #2000-01-01# And #12/31/2000 11:59:59 PM#", {"2000-12-31 23:59:59"}, {"2001-01-01"}},
      {"D", "<=Date()", {"2020-01-01"}, {"2999-01-01"}},
      {"D", ">Now()-1", {"2999-01-01"}, {"2020-01-01"}},
      {"D", "<=Date()+30 And >Time()", {"2020-01-01"}, {"2999-01-01", "00:00:00"}},
      {"F", "True", {"True"}, {"False"}},
      {"F", "=No", {"False"}, {"True"}},
      {"F", "[F]", {"True"}, {"False"}},
      {"F", "-1", {"True"}, {"False"}},
      {"G", "Is Not Null", {"{00112233-4455-6677-8899-AABBCCDDEEFF}"}, {null}},
  };
  for (const auto& [field, rule, kept, violated] : cases) {
    for (const auto& [values, expected] : {std::pair(kept, "kept"), std::pair(violated, "violated")}) {
      for (const char* value : values) {
        ASSERT_NO_FATAL_FAILURE(store(value != null
                                          ? std::vector{std::pair(std::string(field), std::string(value))}
                                          : std::vector<std::pair<std::string, std::string>>{}));
        EXPECT_EQ(judge(rule, field), expected)
            << field << ": " << rule << " of " << (value != null ? value : "null");
      }
    }
  }
}

TEST_F(Rules, OfTablesAreChecked) {
  ASSERT_NO_FATAL_FAILURE(store(
      {{"N", "5"}, {"Other N", "5.5"}, {"T", "abc"}, {"M", "ABC "}, {"D", "2000-01-31"}, {"F", "True"}}));
  const std::pair<const char*, const char*> cases[] = {
      {"[Other N]>=[N]", "kept"},      {"[Other N]<[N]", "violated"},
      {"[T]=[M] And F", "kept"},       {"[C] Is Not Null Or [N]>4", "kept"},
      {"[C]>1 And [N]>5", "violated"}, {"[C]>1 Or [N]>5", "kept"},  // null
      {"([C]>1) = True", "kept"},      {"[D]-#1/1/2000#=30", "kept"},
      {"([N]>4)=[F]", "kept"},         {"Not [F]", "violated"},
      {"False", "violated"},
  };
  for (const auto& [rule, expected] : cases) {
    EXPECT_EQ(judge(rule, ""), expected) << rule;
  }
}

TEST_F(Rules, ThatAreNotUnderstoodAreRefused) {
  const std::pair<const char*, const char*> cases[] = {
      {"Year([D])>2000", "the function Year is not known"},
      {"DLookUp(\"x\",\"y\")=1", "the function DLookUp is not known"},
      {"[N]>", "it ends too early"},
      {"", "it ends too early"},
      {"[Missing]>1", "the field Missing does not exist"},
      {"[Forms]![A]>1", "it is about another table"},
      {"[N]>1 [T]", "\"T\" is not understood"},
      {"[N]*2>1", "\"*2>1\" is not understood"},
      {"[F] Xor [F]", "\"Xor\" is not understood"},
      {"[N]=\"1\"", "it compares values of different types"},
      {"[T]>5", "it compares values of different types"},
      {"[G]=[G]", "it compares values of different types"},
      {"[N]", "a value stands where a condition belongs"},
      {"[N]+[T]=1", "it adds what is not a number"},
      {"[T] Like \"[a\"", "the pattern \"[a\" is not valid"},
      {"[T] Like \"[z-a]\"", "the pattern \"[z-a]\" is not valid"},
      {"[T] Like [M]", "it compares with a pattern what is not a text"},
      {"[D] Like \"2*\"", "it compares with a pattern what is not a text"},
      {"[D]>#x#", "\"#x#\" is not a date"},
      {"[N]>1e999", "a number is too large"},
      {"[T]=\"x", "\"\"x\" is not understood"},
      {"([N]>1", "\")\" is missing"},
      {"[N] Between 1 Or 2", "\"And\" is missing"},
      {"[N] In 1", "\"(\" is missing"},
      {"[N] Not 1", "\"Not\" is not understood"},
      {"[N] Is 1", "\"Null\" is missing"},
      {">1", "\">\" is not understood"},
  };
  for (const auto& [rule, why] : cases) {
    EXPECT_EQ(judge(rule, ""), why) << rule;
  }
  EXPECT_EQ(judge(std::string(5000, '('), ""), "it is too long");
  EXPECT_EQ(judge(std::string(1000, '(') + "1", "N"), "it is nested too deeply");
  EXPECT_EQ(judge(std::string(1000, '-') + "1", "N"), "it is nested too deeply");
  const auto withoutOrder = parseRule("\"a\"", table_->definition(), 2, std::nullopt);
  EXPECT_EQ(withoutOrder.status().reason(), "the order of the database's texts is not known");
}

// --- In the engine

TEST(Validation, RefusesRecordsAndLeavesTheEditAlive) {
  const Folder folder;
  NewTable people = {
      .name = "People",
      .columns = {{.name = "ID", .type = ColumnType::longInteger},
                  {.name = "Age", .type = ColumnType::integer, .validationRule = ">=0 And <150"},
                  {.name = "Name", .validationRule = "Is Not Null"},
                  {.name = "Until", .type = ColumnType::integer}},
      .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}},
      .validationRule = "[Until]>=[Age]"};
  makeDatabase(folder / "a.mdb", {people});
  OpenedFile file(folder / "a.mdb");
  const auto rows = file.table("People");
  rows->addNew();
  rows->write("ID", 1);
  rows->write("Age", 200);
  EXPECT_EQ(rows->update().reason(), "the validation rule of the field Age, >=0 And <150, is violated");
  rows->write("Age", 20);
  EXPECT_EQ(rows->update().reason(), "the validation rule of the field Name, Is Not Null, is violated");
  rows->write("Name", "x");
  rows->write("Until", 10);
  EXPECT_EQ(rows->update().reason(), "the validation rule of the table, [Until]>=[Age], is violated");
  rows->write("Until", 30);
  EXPECT_TRUE(rows->update());

  rows->moveFirst();
  rows->edit();
  rows->write("Age", -1);
  EXPECT_FALSE(rows->update());
  EXPECT_EQ(read(*rows, "Age"), "-1") << "the edit lives on";
  rows->write("Age", 31);
  EXPECT_FALSE(rows->update());
  rows->write("Until", 31);
  EXPECT_TRUE(rows->update());
  EXPECT_EQ(read(*rows, "Age") + read(*rows, "Until"), "3131");
  EXPECT_EQ(file.check(), "");
}

TEST(Validation, LeavesFieldsAloneThatAnEditDoesNotAssign) {
  const Folder folder;
  NewTable people = {.name = "People", .columns = {{.name = "Age"}, {.name = "Name"}}};
  makeDatabase(folder / "a.mdb", {people});
  OpenedFile file(folder / "a.mdb");
  TableDefinition definition = *findTable(file.pager(), "People");
  const auto before = file.table(definition);
  before->addNew();
  before->write("Age", "old");
  EXPECT_TRUE(before->update());
  // A rule that came later than the record.
  definition.columns[0].validationRule = "Like \"#*\"";
  const auto after = file.table(definition);
  after->edit();
  after->write("Name", "x");
  EXPECT_TRUE(after->update());
  after->edit();
  after->write("Age", "new");
  EXPECT_FALSE(after->update());
}

TEST(Validation, ReachesTheRecordsThatACascadeChanges) {
  const Folder folder;
  const NewColumn id = {.name = "ID", .type = ColumnType::longInteger};
  makeDatabase(
      folder / "a.mdb",
      {{.name = "Parent", .columns = {id}, .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}}},
       {.name = "Child",
        .columns = {{.name = "Up", .type = ColumnType::longInteger, .validationRule = "<10"}}}},
      {.relations = {{.name = "Rel",
                      .parent = "Parent",
                      .parentColumns = {"ID"},
                      .child = "Child",
                      .childColumns = {"Up"},
                      .cascadeUpdates = true}}});
  OpenedFile file(folder / "a.mdb");
  const auto parents = file.table("Parent");
  const auto children = file.table("Child");
  parents->addNew();
  parents->write("ID", 1);
  EXPECT_TRUE(parents->update());
  children->addNew();
  children->write("Up", 1);
  EXPECT_TRUE(children->update());
  parents->moveFirst();
  parents->edit();
  parents->write("ID", 10);
  EXPECT_EQ(parents->update().reason(),
            "the relation Rel: the validation rule of the field Up, <10, is violated");
  parents->write("ID", 9);
  EXPECT_TRUE(parents->update());
  children->moveFirst();
  EXPECT_EQ(read(*children, "Up"), "9");
}

TEST(Validation, WithARuleThatIsNotUnderstoodLeavesTheTableReadOnly) {
  const Folder folder;
  const NewTable people = {
      .name = "People",
      .columns = {{.name = "Age", .type = ColumnType::integer, .validationRule = "Odd([Age])"}}};
  makeDatabase(folder / "a.mdb", {people});
  const auto database = open(folder / "a.mdb");
  const auto rows = openTable(*database, "People");
  ASSERT_TRUE(rows);
  EXPECT_EQ(
      rows->addNew().reason(),
      "the validation rule of the field Age, Odd([Age]), cannot be checked: the function Odd is not known");
}

}  // namespace
}  // namespace veltrano::access
