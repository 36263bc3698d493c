#include <gmock/gmock.h>

#include <regex>
#include <tuple>

#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "harness.h"

namespace veltrano::access {
namespace {

using Relations = DatabaseTest;

enum class Shape { oneColumn, twoColumns, ownParent };

class RelationMatrix : public DatabaseTest, public testing::WithParamInterface<std::tuple<Shape, OnDelete>> {
 protected:
  using Regex = std::regex;
  /// The step with the columns and the table of this shape.
  [[nodiscard]] std::string inShape(std::string step) const {
    if (shape_ == Shape::twoColumns) {
      step = std::regex_replace(step, Regex("(add Parent|change Parent ID=.) ID=(.)"), "$1 ID=$2 Text=t$2");
      step = std::regex_replace(step, Regex("Up=(\\d)"), "Up=$1 UpText=t$1");
      step = std::regex_replace(step, Regex("Up=-"), "Up=- UpText=-");
    }
    return shape_ == Shape::ownParent ? std::regex_replace(step, Regex("Parent"), "Child") : step;
  }
  /// Reads all: "1 2: 10>1 11>-" are the parents, and the children with their parents.
  [[nodiscard]] std::string state(const std::string& all) const {
    const bool two = shape_ == Shape::twoColumns;
    const std::string parents = all.substr(0, all.find(':'));
    std::string children = all.substr(parents.size() + 1);
    children = std::regex_replace(children, Regex(">(\\d)"), two ? "$1t$1" : "$1");
    children = std::regex_replace(children, Regex(">-"), two ? "()()" : "()");
    return shape_ == Shape::ownParent
               ? "\nall Child ID Up: " + std::regex_replace(parents, Regex("\\d"), "$&()") + children
               : "\nall Parent ID: " + parents + "\nall Child ID Up" + (two ? " UpText:" : ":") + children;
  }

  Shape shape_ = std::get<0>(GetParam());
  OnDelete rule_ = std::get<1>(GetParam());
};

TEST_P(RelationMatrix, IsEnforced) {
  const std::string atFirst = "1 2 3: 10>1 11>1 12>2 13>-";
  // The state after each, by the rules refuse, cascade and set null, or under all of them; empty if it is refused.
  const std::pair<const char*, std::vector<std::string>> changes[] = {
      {"add Child ID=14 Up=2", {atFirst + " 14>2"}},
      {"add Child ID=14 Up=-", {atFirst + " 14>-"}},
      {"add Child ID=14 Up=9", {""}},
      {"add Parent ID=9", {"1 2 3 9: 10>1 11>1 12>2 13>-"}},
      {"change Child ID=12 Up=1", {"1 2 3: 10>1 11>1 12>1 13>-"}},
      {"change Child ID=12 Up=-", {"1 2 3: 10>1 11>1 12>- 13>-"}},
      {"change Child ID=12 Up=9", {""}},
      {"change Parent ID=1 ID=7", {"", "2 3 7: 10>7 11>7 12>2 13>-", ""}},
      {"change Parent ID=1 ID=2", {""}},
      {"change Parent ID=3 ID=7", {"1 2 7: 10>1 11>1 12>2 13>-"}},
      {"change Parent ID=1 Name=n", {atFirst}},
      {"delete Parent ID=1", {"", "2 3: 12>2 13>-", "2 3: 10>- 11>- 12>2 13>-"}},
      {"delete Parent ID=3", {"1 2: 10>1 11>1 12>2 13>-"}},
      {"delete Child ID=10", {"1 2 3: 11>1 12>2 13>-"}},
  };
  const bool two = shape_ == Shape::twoColumns;
  using Names = std::vector<std::string>;
  make(tablesOf("table Child; ID long; Up long; UpText text(30); Name text; primary P (ID)\n"
                "table Parent; ID long; Text text(20); Name text; primary P " +
                std::string(two ? "(ID, Text)" : "(ID)")),
       {.relations = {{"Rel", inShape("Parent"), two ? Names{"ID", "Text"} : Names{"ID"}, "Child",
                       two ? Names{"Up", "UpText"} : Names{"Up"}, rule_ == OnDelete::cascade, rule_}}});
  for (const char* step : {"add Parent ID=1", "add Parent ID=2", "add Parent ID=3", "add Child ID=10 Up=1",
                           "add Child ID=11 Up=1", "add Child ID=12 Up=2", "add Child ID=13"}) {
    play(inShape(step));
  }
  close();
  const std::string before = readWholeFile(file_).value();
  for (const auto& [change, results] : changes) {
    SCOPED_TRACE(change);
    replaceFile(file_, before);
    reopen();
    const std::string& after = results[results.size() > 1 ? static_cast<std::size_t>(rule_) : 0];
    const std::string reason =
        std::string_view(change).ends_with("ID=2") ? ": duplicate" : ": the relation Rel";
    play(after.empty() ? "!" + inShape(change) + reason + state(atFirst) : inShape(change) + state(after));
    close();
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, RelationMatrix,
    testing::Combine(testing::Values(Shape::oneColumn, Shape::twoColumns, Shape::ownParent),
                     testing::Values(OnDelete::refuse, OnDelete::cascade, OnDelete::setNull)));

// Customers, their orders and the lines of these: other recordsets stand on records that go, and the memos go as well.
TEST_F(Relations, GoThroughLevelsAndTellOtherRecordsets) {
  make(tablesOf("table Lines; ID long; Order long; Note memo; primary P (ID)\n"
                "table Orders; ID long; Customer long; primary P (ID)\n"
                "table Customers; ID long; primary P (ID)"),
       {.relations = {{"A", "Customers", {"ID"}, "Orders", {"Customer"}, true, OnDelete::cascade},
                      {"B", "Orders", {"ID"}, "Lines", {"Order"}, true, OnDelete::cascade}}});
  for (int line = 100; line < 230; line += line % 10 == 0 ? 1 : line % 100 == 21 ? 79 : 9) {
    if (line % 100 == 0) {
      add(table("Customers"), {{"ID", line / 100}});
    }
    if (line % 10 == 0) {
      add(table("Orders"), {{"ID", line / 10}, {"Customer", line / 100}});
    }
    add(table("Lines"), {{"ID", line}, {"Order", line / 10}, {"Note", std::string(9000, 'x')}});
  }
  play(R"(
      all Lines ID: 100 101 110 111 120 121 200 201 210 211 220 221
      first Lines; stand Lines' ID=200; change Orders ID=10 ID=30; read Lines Order: 30
      edit Lines; delete Customers ID=1; !update Lines; read Lines ID: ()
      read Lines' ID: 200
      next Lines; read Lines ID: 200
      all Orders ID: 20 21 22
      all Lines ID: 200 201 210 211 220 221)");
}

// Thousands of levels in one table, with a cache that holds a small part of what changes.
TEST_F(Relations, GoAsDeepAsThereAreRecords) {
  make(tablesOf("table T; ID long; Up long; Picture binary(200); primary P (ID)"),
       {.relations = {{"R", "T", {"ID"}, "T", {"Up"}, true, OnDelete::cascade}}}, 16);
  const std::string picture(200, 'x');
  for (int id = 1; id <= 3000; ++id) {
    ASSERT_TRUE(
        add(table("T"), {{"ID", id}, {"Up", id > 1 ? Value(id - 1) : Value(Null{})}, {"Picture", picture}}));
  }
  play(R"(
      add T ID=9999 Up=9999; delete T ID=1; all T ID: 9999
      change T ID=9999 ID=5; all T Up: 5)");
  for (int id = 5; id < 50; ++id) {
    stand(table("T"), "ID", std::to_string(id));
    ASSERT_TRUE(change(table("T"), {{"ID", id + 1}})) << "changes of an Update before are no circle";
  }
  play("all T Up: 50; delete T ID=50; all T ID: ");
}

// The record is its own parent with the columns exchanged: a change of one alone would leave it without.
TEST_F(Relations, MayExchangeTheColumnsOfAKey) {
  make(tablesOf("table T; A long; B long; unique U (A, B)"),
       {.relations = {{"Exchange", "T", {"A", "B"}, "T", {"B", "A"}, true, OnDelete::cascade}}});
  play(R"(
      add T A=1 B=1; !change T A=1 A=2: the relation Exchange: no record
      all T A: 1
      delete T A=1)");
}

// B follows A; C follows A, too, but holds on to B. Whether anybody is left alone shows when all have been followed.
TEST_F(Relations, AreCheckedForEveryKeyWhenAllHaveBeenFollowed) {
  make(tablesOf("table A; ID long; primary P (ID)\n"
                "table B; ID long; A long; primary P (ID)\n"
                "table C; ID long; A long; B long; primary P (ID)"),
       {.relations = {{"AB", "A", {"ID"}, "B", {"A"}, false, OnDelete::cascade},
                      {"BC", "B", {"ID"}, "C", {"B"}, false, OnDelete::refuse},
                      {"AC", "A", {"ID"}, "C", {"A"}, false, OnDelete::cascade}}});
  play(R"(
      add A ID=1; add A ID=2; add A ID=3; add B ID=1 A=1; add B ID=2 A=2; add B ID=3 A=3; add B ID=4 A=3
      add C ID=1 A=1 B=1; add C ID=2 A=1 B=2; add C ID=3 A=2 B=4; !delete A ID=2: the relation BC
      !delete A ID=3: the relation BC
      all B ID: 1 2 3 4
      delete A ID=1; all B ID: 2 3 4
      all C ID: 3)");
}

// Some nulls in a key ask for a parent with the same nulls; a primary key has none.
TEST_F(Relations, TakeNullsAsPartOfAKey) {
  make(tablesOf("table U; A long; B long; unique U (A, B)\n"
                "table P; A long; B long; primary U (A, B)\n"
                "table OfU; A long; B long\n"
                "table OfP; A long; B long"),
       {.relations = {{"RU", "U", {"A", "B"}, "OfU", {"A", "B"}},
                      {"RP", "P", {"A", "B"}, "OfP", {"A", "B"}}}});
  play(R"(
      add U A=1; add U A=1 B=2; add U A=-; add P A=1 B=2; add OfU A=-; add OfP A=-; add OfU A=1 B=2
      add OfP A=1 B=2; add OfU A=1; !add OfP A=1: the relation RP
      !add OfU B=2: the relation RU
      !add OfP B=2: the relation RP
      first U; !delete U: the relation RU
      last U; delete U)");
}

// Two columns, the parent's in their own order. A refused edit lives on, and can be corrected.
TEST_F(Relations, FollowKeysOfTwoColumns) {
  make(tablesOf("table Parent; ID long; Text text(20); primary P (ID desc, Text)\n"
                "table Child; ID long; Up long; UpText text(30); primary P (ID)"),
       {.relations = {{"R", "Parent", {"ID", "Text"}, "Child", {"Up", "UpText"}, true, OnDelete::setNull}}});
  play(R"(
      add Parent ID=1 Text=a; add Parent ID=2 Text=a; add Child ID=10 Up=1 UpText=a
      !add Child ID=11 Up=1 UpText=b: the relation R
      write Child UpText=A_; update Child; !change Child ID=11 Up=3: the relation R
      write Child Up=2; update Child; !change Parent ID=1 ID=2: duplicate
      change Parent ID=1 Text=c; change Parent ID=2 ID=7; all Child ID Up UpText: 101c 117a
      delete Parent ID=7; all Child ID Up UpText: 101c 11()())");
}

// Keys are the same if the index says so. What the children cannot take, the parent does not get.
TEST_F(Relations, RefuseWhatTheChildrenCannotHold) {
  make(tablesOf("table Names; Name text(20); primary P (Name desc)\n"
                "table Short; ID long; Name text(5); primary P (ID)\n"
                "table Needed; ID long; Name text(9) required; primary P (ID)"),
       {.relations = {{"RN", "Names", {"Name"}, "Needed", {"Name"}, true, OnDelete::setNull},
                      {"RS", "Names", {"Name"}, "Short", {"Name"}, true, OnDelete::setNull}}});
  play(R"(
      add Names Name=Anna; add Names Name=Bert; add Needed ID=1 Name=bert
      add Short ID=1 Name=ANNA_; add Short ID=2 Name=Bert; !change Names Name=Anna Name=Annabel: the relation RS
      change Names Name=Anna Name=aNNA; all Short Name ID: ANNA 1 Bert2
      change Names Name=aNNA Name=Anne; all Short Name: Anne Bert
      !delete Names Name=Bert: the relation RN
      change Names Name=Anne Name=Anne; all Short Name: Anne Bert
      all Names Name: Bert Anne)");
}

// A child whose key is numbered by the engine follows its parent all the same.
TEST_F(Relations, KeepTheAutonumber) {
  make(tablesOf("table Parent; ID long; primary P (ID)\n"
                "table Child; ID autonumber; Name text; primary P (ID)"),
       {.relations = {{"R", "Parent", {"ID"}, "Child", {"ID"}, true, OnDelete::cascade}}});
  play(R"(
      !add Child Name=nobody's
      add Parent ID=2; add Parent ID=21; add Child Name=a; change Parent ID=2 ID=20; all Child ID: 20
      add Child Name=b; all Child ID: 20 21)");
}

// The logical index record of a relation in the parent's definition, as other programs may have it: role, number of
// the other index, page of the other table, two cascades.
TEST_F(Relations, OfUnknownKindsAreReadOnly) {
  make(tablesOf("table Parent; ID long; primary P (ID)\n"
                "table Child; ID long; Up long; primary P (ID)"),
       {.relations = {{"Rel", "Parent", {"ID"}, "Child", {"Up"}, true, OnDelete::cascade}}});
  EXPECT_TRUE(add(table("Parent"), {{"ID", 1}}));
  const PageNumber child = findTable(pager(), "Child")->page;
  close();
  const std::string good = readWholeFile(file_).value();
  const std::size_t at = good.find(std::string{1, 1, 0, 0, 0, static_cast<char>(child), 0, 0, 0, 1, 1, 2});
  ASSERT_NE(at, std::string::npos);
  enum : std::size_t { role = 0, otherIndex = 1, otherTable = 5, updates = 9, deletes = 10 };
  const std::tuple<std::size_t, char, const char*> patches[] = {
      {role, 3, "unknown kind"},           {updates, 8, "unknown kind"},
      {deletes, 4, "unknown kind"},        {otherTable, 99, "not in this file"},
      {otherTable, 2, "does not have it"}, {otherIndex, 7, "does not have it"},
  };
  for (const auto& [field, byte, reason] : patches) {
    std::string bytes = good;
    bytes[at + field] = byte;
    replaceFile(file_, bytes);
    reopen();
    EXPECT_THAT(table("Parent").addNew().reason(), testing::HasSubstr(reason)) << field;
    table("Parent").moveFirst();
    EXPECT_FALSE(table("Parent").edit() || table("Parent").remove());
    EXPECT_EQ(read(table("Parent"), "ID"), "1");
    close();
  }
}

// Rows as long as a page, so that a deleted one's page, and with it its place, goes to the next that is added.
class TakenPlaces : public DatabaseTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    std::string schema = "table Parents; ID long; primary P (ID)\n table T; ID long; Name text; Up long";
    for (const char* field : {"A", "B", "C", "D", "E", "F", "G"}) {
      schema += std::string("; ") + field + " binary(510)";
      filling_ += std::string(" ") + field + "=" + std::string(500, 'x');
    }
    make(tablesOf(schema + (GetParam() ? "; primary P (ID)" : "")),
         {.relations = {{"R", "Parents", {"ID"}, "T", {"Up"}, true, OnDelete::cascade}}});
    playLong("+T ID=1 Name=one; +T ID=2 Name=two; last T; last T'");
  }
  /// In the scene "+" adds a long record.
  void playLong(std::string scene) {
    for (std::size_t at = scene.find('+'); at != std::string::npos; at = scene.find('+', at)) {
      scene.insert(std::min(scene.find_first_of(";\n", at), scene.size()), filling_);
      scene.replace(at, 1, "add ");
    }
    play(scene);
  }

  std::string filling_;
};

TEST_P(TakenPlaces, BelongToAnotherRecord) {
  for (const char* id : {"2", "3"}) {
    for (const std::string deleting : {"T'", "T"}) {
      SCOPED_TRACE(deleting + " deletes " + id);
      playLong("edit T; write T Name=changed; delete " + deleting + "; +" + deleting + " Name=NEW ID=" + id +
               R"(
          !update T; read T Name: ()
          !edit T; !delete T; next T; read T Name: NEW
          all T' Name: one NEW
          last T'; last T)");
    }
  }
}

TEST_P(TakenPlaces, OfRecordsThatACascadeDeletedAreTold) {
  playLong(R"(
      add Parents ID=1; add Parents ID=2; +T ID=3 Name=child Up=1; stand T ID=3; delete Parents ID=1
      +T' ID=4 Name=NEW; read T Name: ()
      stand T ID=4; delete Parents ID=2; read T Name: NEW)");
}

TEST_P(TakenPlaces, AreMetInAWalkThatChangedKeys) {
  const auto& [first, second] = GetParam() ? std::pair("two", "NEW") : std::pair("NEW", "two");
  playLong(std::string("change T ID=1 ID=8; delete T' ID=8; +T' ID=9 Name=NEW; next T; read T Name: ") +
           first + "; next T; read T Name: " + second + "; next T; !next T");
}

INSTANTIATE_TEST_SUITE_P(Tables, TakenPlaces, testing::Bool(),
                         [](const auto& one) { return one.param ? "WithAPrimaryKey" : "InStorageOrder"; });

}  // namespace
}  // namespace veltrano::access
