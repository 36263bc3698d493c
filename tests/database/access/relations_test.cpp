#include <gmock/gmock.h>

#include <tuple>

#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "harness.h"

namespace veltrano::access {
namespace {

using Relations = DatabaseTest;

std::string column(AccessRecordset& recordset, const char* name) {
  return readAll(recordset, {name});
}

// Customers, their orders and the lines of these: other recordsets stand on records that go, and the memos go as well.
TEST_F(Relations, GoThroughLevelsAndTellOtherRecordsets) {
  make(tablesOf("table Lines; ID long; Order long; Note memo; primary P (ID)\n"
                "table Orders; ID long; Customer long; primary P (ID)\n"
                "table Customers; ID long; primary P (ID)"),
       {.relations = {{"A", "Customers", {"ID"}, "Orders", {"Customer"}, true, OnDelete::cascade},
                      {"B", "Orders", {"ID"}, "Lines", {"Order"}, true, OnDelete::cascade}}});
  for (const int customer : {1, 2}) {
    ASSERT_TRUE(add(table("Customers"), {{"ID", customer}}));
    for (int order = 10 * customer; order < 10 * customer + 3; ++order) {
      ASSERT_TRUE(add(table("Orders"), {{"ID", order}, {"Customer", customer}}));
      for (int line = 10 * order; line < 10 * order + 2; ++line) {
        ASSERT_TRUE(add(table("Lines"), {{"ID", line}, {"Order", order}, {"Note", std::string(9000, 'x')}}));
      }
    }
  }
  const auto gone = opened_->table("Lines");
  const auto stays = opened_->table("Lines");
  stand(*stays, "ID", "200");
  table("Orders").moveFirst();
  ASSERT_TRUE(change(table("Orders"), {{"ID", 30}}));
  EXPECT_EQ(read(*gone, "Order"), "30");
  table("Customers").moveFirst();
  ASSERT_TRUE(gone->edit());
  ASSERT_TRUE(table("Customers").remove());
  EXPECT_FALSE(gone->update());
  EXPECT_EQ(read(*gone, "ID"), "()");
  EXPECT_EQ(read(*stays, "ID"), "200");
  ASSERT_TRUE(gone->moveNext());
  EXPECT_EQ(read(*gone, "ID"), "200");
  EXPECT_EQ(column(table("Orders"), "ID"), "20 21 22 ");
  EXPECT_EQ(column(table("Lines"), "ID"), "200 201 210 211 220 221 ");
  EXPECT_EQ(check(), "");
}

// Thousands of levels in one table, with a cache that holds a small part of what changes.
TEST_F(Relations, GoAsDeepAsThereAreRecords) {
  constexpr int levels = 3000;
  make(tablesOf("table T; ID long; Up long; Picture binary(200); primary P (ID)"),
       {.relations = {{"R", "T", {"ID"}, "T", {"Up"}, true, OnDelete::cascade}}}, 16);
  AccessRecordset& rows = table("T");
  for (int id = 1; id <= levels; ++id) {
    ASSERT_TRUE(add(
        rows,
        {{"ID", id}, {"Up", id > 1 ? Value(id - 1) : Value(Null{})}, {"Picture", std::string(200, 'x')}}));
  }
  ASSERT_TRUE(add(rows, {{"ID", 9999}, {"Up", 9999}})) << "a record may be its own parent";
  ASSERT_TRUE(rows.moveFirst() && rows.remove());
  EXPECT_EQ(column(rows, "ID"), "9999 ");
  rows.moveFirst();
  ASSERT_TRUE(change(rows, {{"ID", 5}}));
  EXPECT_EQ(column(rows, "Up"), "5 ");
  for (int id = 6; id < 50; ++id) {
    rows.moveFirst();
    ASSERT_TRUE(change(rows, {{"ID", id}})) << "changes of an Update before are no circle";
  }
  EXPECT_EQ(column(rows, "Up"), "49 ");
  EXPECT_EQ(check(), "");
  ASSERT_TRUE(rows.moveFirst() && rows.remove());
  EXPECT_EQ(column(rows, "ID"), "");
}

// The record is its own parent with the columns exchanged: a change of one alone would leave it without.
TEST_F(Relations, MayExchangeTheColumnsOfAKey) {
  make(tablesOf("table T; A long; B long; unique U (A, B)"),
       {.relations = {{"Exchange", "T", {"A", "B"}, "T", {"B", "A"}, true, OnDelete::cascade}}});
  ASSERT_TRUE(add(table("T"), {{"A", 1}, {"B", 1}}));
  table("T").moveFirst();
  EXPECT_THAT(change(table("T"), {{"A", 2}}).reason(), testing::HasSubstr("the relation Exchange: "));
  EXPECT_EQ(column(table("T"), "A"), "1 ");
  table("T").moveFirst();
  EXPECT_TRUE(table("T").remove());
  EXPECT_EQ(check(), "");
}

// The first of the records that are deleted on the way is free to go, the second is not.
TEST_F(Relations, CheckEveryKeyThatGoes) {
  make(tablesOf("table A; ID long; primary P (ID)\n"
                "table B; ID long; A long; primary P (ID)\n"
                "table C; ID long; B long; primary P (ID)"),
       {.relations = {{"AB", "A", {"ID"}, "B", {"A"}, false, OnDelete::cascade},
                      {"BC", "B", {"ID"}, "C", {"B"}, false, OnDelete::refuse}}});
  ASSERT_TRUE(add(table("A"), {{"ID", 1}}));
  ASSERT_TRUE(add(table("B"), {{"ID", 1}, {"A", 1}}) && add(table("B"), {{"ID", 2}, {"A", 1}}));
  ASSERT_TRUE(add(table("C"), {{"ID", 1}, {"B", 2}}));
  table("A").moveFirst();
  EXPECT_FALSE(table("A").remove());
  EXPECT_EQ(column(table("B"), "ID"), "1 2 ");
}

// One of a record's relations would leave a child alone that another one deletes.
TEST_F(Relations, AreCheckedWhenAllHaveBeenFollowed) {
  make(tablesOf("table A; ID long; primary P (ID)\n"
                "table B; ID long; A long; primary P (ID)\n"
                "table C; ID long; A long; B long; primary P (ID)"),
       {.relations = {{"AB", "A", {"ID"}, "B", {"A"}, false, OnDelete::cascade},
                      {"BC", "B", {"ID"}, "C", {"B"}, false, OnDelete::refuse},
                      {"AC", "A", {"ID"}, "C", {"A"}, false, OnDelete::cascade}}});
  for (const int id : {1, 2}) {
    ASSERT_TRUE(add(table("A"), {{"ID", id}}) && add(table("B"), {{"ID", id}, {"A", id}}));
    ASSERT_TRUE(add(table("C"), {{"ID", id}, {"A", 1}, {"B", id}}));
  }
  table("A").moveLast();
  EXPECT_FALSE(table("A").remove()) << "C 2 depends on B 2";
  EXPECT_EQ(column(table("B"), "ID"), "1 2 ");
  table("A").moveFirst();
  EXPECT_TRUE(table("A").remove());
  EXPECT_EQ(column(table("B"), "ID") + column(table("C"), "ID"), "2 ");
  EXPECT_EQ(check(), "");
}

// Some nulls in a key ask for a parent with the same nulls; a primary key has none.
TEST_F(Relations, TakeNullsAsPartOfAKey) {
  make(tablesOf("table U; A long; B long; unique U (A, B)\n"
                "table P; A long; B long; primary U (A, B)\n"
                "table OfU; A long; B long\n"
                "table OfP; A long; B long"),
       {.relations = {{"RU", "U", {"A", "B"}, "OfU", {"A", "B"}},
                      {"RP", "P", {"A", "B"}, "OfP", {"A", "B"}}}});
  ASSERT_TRUE(add(table("U"), {{"A", 1}}) && add(table("U"), {{"A", 1}, {"B", 2}}) && add(table("U"), {}));
  ASSERT_TRUE(add(table("P"), {{"A", 1}, {"B", 2}}));
  for (const auto& [child, some] : {std::pair("OfU", true), {"OfP", false}}) {
    EXPECT_TRUE(add(table(child), {})) << child;
    EXPECT_TRUE(add(table(child), {{"A", 1}, {"B", 2}})) << child;
    EXPECT_EQ(static_cast<bool>(add(table(child), {{"A", 1}})), some) << child;
    EXPECT_FALSE(add(table(child), {{"B", 2}})) << child;
  }
  table("U").moveFirst();
  EXPECT_FALSE(table("U").remove());
  table("U").moveLast();
  EXPECT_TRUE(table("U").remove()) << "nobody depends on nulls";
  EXPECT_EQ(check(), "");
}

// Keys are the same if the index says so. What the children cannot take, the parent does not get.
TEST_F(Relations, RefuseWhatTheChildrenCannotHold) {
  make(tablesOf("table Names; Name text(20); primary P (Name desc)\n"
                "table Short; ID long; Name text(5); primary P (ID)\n"
                "table Needed; ID long; Name text(9) required; primary P (ID)"),
       {.relations = {{"RS", "Names", {"Name"}, "Short", {"Name"}, true, OnDelete::setNull},
                      {"RN", "Names", {"Name"}, "Needed", {"Name"}, true, OnDelete::setNull}}});
  ASSERT_TRUE(add(table("Names"), {{"Name", "Anna"}}) && add(table("Names"), {{"Name", "Bert"}}));
  EXPECT_TRUE(add(table("Short"), {{"ID", 1}, {"Name", "ANNA "}}));
  EXPECT_TRUE(add(table("Needed"), {{"ID", 1}, {"Name", "bert"}}));
  const auto rename = [&](const char* from, const char* to) {
    stand(table("Names"), "Name", from);
    return static_cast<bool>(change(table("Names"), {{"Name", to}}));
  };
  EXPECT_FALSE(rename("Anna", "Annabel"));
  EXPECT_TRUE(rename("Anna", "aNNA"));
  EXPECT_EQ(column(table("Short"), "Name"), "ANNA  ") << "still the same key";
  EXPECT_TRUE(rename("aNNA", "Ann\u00e9"));
  EXPECT_EQ(column(table("Short"), "Name"), "Ann\u00e9 ");
  table("Names").moveFirst();
  EXPECT_FALSE(table("Names").remove()) << "the name is needed";
  EXPECT_EQ(column(table("Names"), "Name"), "Bert Ann\u00e9 ");
  EXPECT_EQ(check(), "");
}

// A child whose key is numbered by the engine follows its parent all the same.
TEST_F(Relations, KeepTheAutonumber) {
  make(tablesOf("table Parent; ID long; primary P (ID)\n"
                "table Child; ID autonumber; primary P (ID)"),
       {.relations = {{"R", "Parent", {"ID"}, "Child", {"ID"}, true, OnDelete::cascade}}});
  EXPECT_FALSE(add(table("Child"), {}));
  ASSERT_TRUE(add(table("Parent"), {{"ID", 2}}) && add(table("Parent"), {{"ID", 21}}));
  ASSERT_TRUE(add(table("Child"), {}));
  table("Parent").moveFirst();
  ASSERT_TRUE(change(table("Parent"), {{"ID", 20}}));
  EXPECT_EQ(column(table("Child"), "ID"), "20 ");
  ASSERT_TRUE(add(table("Child"), {}));
  EXPECT_EQ(column(table("Child"), "ID"), "20 21 ");
  EXPECT_EQ(check(), "");
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
  constexpr std::size_t role = 0;
  constexpr std::size_t otherIndex = 1;
  constexpr std::size_t otherTable = 5;
  constexpr std::size_t updates = 9;
  constexpr std::size_t deletes = 10;
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
    EXPECT_EQ(column(table("Parent"), "ID"), "1 ");
    close();
  }
}

// The children would need more pages than a file can have.
TEST_F(Relations, LeaveAFullFileAsItWas) {
  std::vector<NewTable> tables = tablesOf(
      "table Names; Name text(250); primary P (Name)\n"
      "table Child; Name text(250); ID long; primary P (ID)");
  tables[0].columns[0].compressed = tables[1].columns[0].compressed = false;
  make(tables, {.relations = {{"R", "Names", {"Name"}, "Child", {"Name"}, true, OnDelete::cascade}}});
  ASSERT_TRUE(add(table("Names"), {{"Name", "a"}}));
  for (int id = 0; id < 200; ++id) {
    ASSERT_TRUE(add(table("Child"), {{"ID", id}, {"Name", "a"}}));
  }
  close();
  fillToTheEnd(file_);
  reopen();
  ASSERT_TRUE(table("Names").edit() && table("Names").write("Name", std::string(250, 'x')));
  EXPECT_FALSE(table("Names").update());
  EXPECT_EQ(column(table("Child"), "Name").size(), 400U);
  EXPECT_EQ(column(table("Names"), "Name"), "a ");
  EXPECT_EQ(check(), "");
  table("Names").moveFirst();
  EXPECT_TRUE(table("Names").remove());
  EXPECT_EQ(column(table("Child"), "Name"), "");
  EXPECT_EQ(check(), "");
}

}  // namespace
}  // namespace veltrano::access
