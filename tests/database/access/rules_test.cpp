#include "database/access/rules/evaluation.h"
#include "database/access/rules/parser.h"
#include "database/access/schema/catalog.h"
#include "harness.h"

namespace veltrano::access {
namespace {

// One record of a table, of which each rule sees what was written last.
class Rules : public DatabaseTest {
 protected:
  void SetUp() override {
    make(tablesOf(
        "table Things; N long; [Other N] double; T text; M memo; D datetime; F boolean; C currency; S single;"
        "G guid"));
    table_.emplace(pager(), *findTable(pager(), "Things"));
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
  void store(const Values& values) {
    AccessRecordset& rows = table("Things");
    if (rows.moveFirst()) {
      rows.remove();
    }
    ASSERT_TRUE(add(rows, values));
  }

  std::optional<Table> table_;
};

const char* const none = nullptr;  // a null

// Values of the rule's field that keep it and that violate it.
TEST_F(Rules, OfFieldsAreChecked) {
  const struct {
    const char* field;
    const char* rule;
    std::vector<const char*> kept;
    std::vector<const char*> violated;
  } cases[] = {
      {"N", ">=0 And <150", {"0", "149", none}, {"-1", "150"}},
      {"N", "=5", {"5", none}, {"6"}},
      {"N", "0 Or >100", {"0", "101"}, {"1", "100"}},
      {"N", "<>0", {"1", none}, {"0"}},
      {"N", "> 1e2", {"101"}, {"100"}},
      {"N", "<= -(2 + 3)", {"-5"}, {"-4"}},
      {"N", "Between 1 And 9", {"1", "9", none}, {"0", "10"}},
      {"N", "between 9 and 1", {"1", "9"}, {"0", "10"}},
      {"N", "Between 1 And 3 Or Between 7 And 9", {"3", "7"}, {"5"}},
      {"N", "Not Between 1 And 9", {"0", none}, {"5"}},
      {"N", "In (1, 3, 5)", {"3", none}, {"2"}},
      {"N", "In (1, Null)", {"1", "2"}, {}},
      {"N", "Not (>5 Or <0)", {"0", "5", none}, {"6", "-1"}},
      {"N", "[N]>5", {"6"}, {"5"}},
      {"N", "([N]+1)>5", {"5"}, {"4"}},
      {"N", "[Things].[N]>5 And [Things]![N]<9", {"6"}, {"5", "9"}},
      {"N", "IsNull([N]) Or [N]-1>5", {none, "7"}, {"6"}},
      {"N", "Like \"1#\"", {"10", none}, {"1", "20"}},
      {"N", "Len([N])=2", {"10", "-1", none}, {"1"}},
      {"N", "<>Null", {"1", none}, {}},
      {"C", ">=0.05", {"0.05"}, {"0.0499"}},
      {"S", "<=0.1", {"0.1"}, {"0.2"}},
      {"Other N", "Between 0.5 And .75", {"0.5", "0.75"}, {"0.8"}},
      {"T", "\"USA\" Or \"Canada\"", {"usa", "Canada  ", none}, {"UK", ""}},
      {"T", "In ('a','it''s')", {"A", "it's"}, {"b"}},
      {"T", ">=\"b\" And <\"d\"", {"b", "C", "\u00e7a"}, {"a", "d"}},
      {"T", "Not \"x\"", {"y", none}, {"X"}},
      {"T", "Like \"A*\"", {"a", "Abc", none}, {"ba", ""}},
      {"T", "Like \"?*@?*.?*\"", {"a@b.c", "me@x.y.org"}, {"@b.c", "a@b", "a@b."}},
      {"T", "Like \"[A-Z]##\"", {"q12", "\u00e912"}, {"112", "q1", "q123"}},
      {"T", "Not Like \"*[!0-9]*\"", {"0123", "", none}, {"12a"}},
      {"T", "Like \"[!abc]*[*]\"", {"x*"}, {"a*", "x"}},
      {"T", "Like \"[]x[-]\"", {"x-"}, {"x"}},
      {"T", "Like \"*a*b*c*\"", {"abc", "xaxxbxbxcx"}, {"acb"}},
      {"T", "Len(T)=4", {"\u00e9\u00e9\u00e9\u00e9", none}, {"123"}},
      {"M", "Like \"*x\"", {"yyx"}, {"xy"}},
      {"D", ">=#1/31/2000#", {"2000-01-31", none}, {"2000-01-30 23:59:59"}},
      {"D", "Between #2000-01-01# And #12/31/2000 11:59:59 PM#", {"2000-12-31 23:59:59"}, {"2001-01-01"}},
      {"D", "<=Date()", {"2020-01-01"}, {"2999-01-01"}},
      {"D", ">Now()-1", {"2999-01-01"}, {"2020-01-01"}},
      {"D", "<=Date()+30 And >Time()", {"2020-01-01"}, {"2999-01-01", "00:00:00"}},
      {"F", "True", {"True"}, {"False"}},
      {"G", "Is Not Null", {"{00112233-4455-6677-8899-AABBCCDDEEFF}"}, {none}},
  };
  for (const auto& [field, rule, kept, violated] : cases) {
    for (const auto& [values, expected] : {std::pair(kept, "kept"), std::pair(violated, "violated")}) {
      for (const char* value : values) {
        ASSERT_NO_FATAL_FAILURE(store(value != none ? Values{{field, value}} : Values()));
        EXPECT_EQ(judge(rule, field), expected)
            << field << ": " << rule << " of " << (value != none ? value : "null");
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
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"the function Year is not known", {"Year([D])>2000"}},
      {"it ends too early", {"[N]>", ""}},
      {"the field Missing does not exist", {"[Missing]>1"}},
      {"it is about another table", {"[Forms]![A]>1"}},
      {"it compares values of different types", {"[N]=\"1\"", "[T]>5", "[G]=[G]"}},
      {"a value stands where a condition belongs", {"[N]"}},
      {"it adds what is not a number", {"[N]+[T]=1"}},
      {"the pattern \"[a\" is not valid", {"[T] Like \"[a\""}},
      {"it compares with a pattern what is not a text", {"[T] Like [M]", "[D] Like \"2*\""}},
      {"\"#x#\" is not a date", {"[D]>#x#"}},
      {"\"T\" is not understood", {"[N]>1 [T]"}},
      {"\"Not\" is not understood", {"[N] Not 1"}},
      {"\">\" is not understood", {">1"}},
      {"\")\" is missing", {"([N]>1"}},
      {"\"And\" is missing", {"[N] Between 1 Or 2"}},
  };
  for (const auto& [why, rules] : cases) {
    for (const char* rule : rules) {
      EXPECT_EQ(judge(rule, ""), why) << rule;
    }
  }
  EXPECT_EQ(judge(std::string(5000, '('), ""), "it is too long");
  EXPECT_EQ(judge(std::string(1000, '(') + "1", "N"), "it is nested too deeply");
  EXPECT_EQ(judge(std::string(1000, '-') + "1", "N"), "it is nested too deeply");
  const auto withoutOrder = parseRule("\"a\"", table_->definition(), 2, std::nullopt);
  EXPECT_EQ(withoutOrder.status().reason(), "the order of the database's texts is not known");
}

// --- In the engine

using Validation = DatabaseTest;

TEST_F(Validation, RefusesRecordsAndLeavesTheEditAlive) {
  NewTable people = tableOf("table People; ID long; Age integer; Name text; Until integer; primary P (ID)");
  people.columns[1].validationRule = ">=0 And <150";
  people.columns[2].validationRule = "Is Not Null";
  people.validationRule = "[Until]>=[Age]";
  make({people});
  play(R"(
      !add People ID=1 Age=200: the validation rule of the field Age, >=0 And <150, is violated
      write People Age=20
      !update People: the validation rule of the field Name, Is Not Null, is violated
      write People Name=x Until=10
      !update People: the validation rule of the table, [Until]>=[Age], is violated
      write People Until=30; update People; !change People ID=1 Age=-1: Age
      read People Age: -1
      write People Age=31; !update People: table
      write People Until=31; update People; all People Age Until: 3131)");
}

TEST_F(Validation, LeavesFieldsAloneThatAnEditDoesNotAssign) {
  make(tablesOf("table People; Age text; Name text"));
  TableDefinition definition = *findTable(pager(), "People");
  play("add People Age=old");
  // A rule that came later than the record.
  definition.columns[0].validationRule = "Like \"#*\"";
  const auto after = opened_->table(definition);
  EXPECT_TRUE(change(*after, {{"Name", "x"}}));
  EXPECT_FALSE(change(*after, {{"Age", "new"}}));
}

TEST_F(Validation, ReachesTheRecordsThatACascadeChanges) {
  auto tables = tablesOf(
      "table Parent; ID long; primary P (ID)\n"
      "table Child; Up long\n table Odd; Age long");
  tables[1].columns[0].validationRule = "<10";
  tables[2].columns[0].validationRule = "Odd([Age])";
  make(tables, {.relations = {{"Rel", "Parent", {"ID"}, "Child", {"Up"}, true}}});
  play(R"(
      add Parent ID=1; add Child Up=1
      !change Parent ID=1 ID=10: the relation Rel: the validation rule of the field Up, <10, is violated
      change Parent ID=1 ID=9; all Child Up: 9
      !new Odd: of the field Age, Odd([Age]), cannot be checked: the function Odd is not known)");
}

}  // namespace
}  // namespace veltrano::access
