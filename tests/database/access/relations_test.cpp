#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/usage_map.h"
#include "database/values/text_matcher.h"
#include "harness.h"

namespace veltrano::access {
namespace {

NewColumn number(const char* name, bool required = false) {
  return {.name = name, .type = ColumnType::longInteger, .required = required};
}
NewTable keyed(const char* name, std::vector<NewColumn> columns) {
  const std::string key = columns[0].name;
  return {.name = name,
          .columns = std::move(columns),
          .indexes = {{.name = "P", .columns = {{key}}, .primary = true}}};
}
Status add(AccessRecordset& recordset, const std::vector<std::pair<const char*, Value>>& fields) {
  recordset.addNew();
  for (const auto& [name, value] : fields) {
    EXPECT_TRUE(recordset.write(name, value)) << name;
  }
  return recordset.update();
}
std::string column(AccessRecordset& recordset, const char* name) {
  std::string all;
  for (recordset.moveFirst(); recordset.atEnd() == false; recordset.moveNext()) {
    all += read(recordset, name) + " ";
  }
  return all;
}

class Relations : public testing::Test {
 protected:
  void make(const std::vector<NewTable>& tables, const std::vector<NewRelation>& relations,
            std::uint32_t cachePages = 4096) {
    makeDatabase(file_, tables, {.relations = relations});
    opened_.emplace(file_, nullptr, cachePages);
  }
  AccessRecordset& table(const std::string& name) {
    auto& known = tables_[name];
    if (!known) {
      known = opened_->table(name);
    }
    return *known;
  }
  Folder folder_;
  std::filesystem::path file_ = folder_ / "a.mdb";
  std::optional<OpenedFile> opened_;
  std::map<std::string, std::unique_ptr<AccessRecordset>> tables_;
};

// Customers, their orders and the lines of these: other recordsets stand on records that go, and the memos go as well.
TEST_F(Relations, GoThroughLevelsAndTellOtherRecordsets) {
  make({keyed("Lines", {number("ID"), number("Order"), {.name = "Note", .type = ColumnType::memo}}),
        keyed("Orders", {number("ID"), number("Customer")}), keyed("Customers", {number("ID")})},
       {{"A", "Customers", {"ID"}, "Orders", {"Customer"}, true, OnDelete::cascade},
        {"B", "Orders", {"ID"}, "Lines", {"Order"}, true, OnDelete::cascade}});
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
  ASSERT_TRUE(stays->find("ID", TextMatcher("200", CaseRule::exact)));
  table("Orders").moveFirst();
  ASSERT_TRUE(table("Orders").edit());
  ASSERT_TRUE(table("Orders").write("ID", 30));
  ASSERT_TRUE(table("Orders").update());
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
  EXPECT_EQ(opened_->check(), "");
}

// Thousands of levels in one table, with a cache that holds a small part of what changes.
TEST_F(Relations, GoAsDeepAsThereAreRecords) {
  constexpr int levels = 3000;
  make({keyed("T", {number("ID"), number("Up"), {.name = "Text", .compressed = false}})},
       {{"R", "T", {"ID"}, "T", {"Up"}, true, OnDelete::cascade}}, 16);
  for (int id = 1; id <= levels; ++id) {
    ASSERT_TRUE(
        add(table("T"),
            {{"ID", id}, {"Up", id > 1 ? Value(id - 1) : Value(Null{})}, {"Text", std::string(100, 'x')}}));
  }
  ASSERT_TRUE(add(table("T"), {{"ID", 9999}, {"Up", 9999}})) << "a record may be its own parent";
  ASSERT_TRUE(table("T").moveFirst());
  ASSERT_TRUE(table("T").remove());
  EXPECT_EQ(column(table("T"), "ID"), "9999 ");
  table("T").moveFirst();
  ASSERT_TRUE(table("T").edit() && table("T").write("ID", 5) && table("T").update());
  EXPECT_EQ(column(table("T"), "Up"), "5 ");
  EXPECT_EQ(opened_->check(), "");
  table("T").moveFirst();
  ASSERT_TRUE(table("T").remove());
  EXPECT_EQ(column(table("T"), "ID"), "");
}

// The columns of the key are exchanged on the way: each change would cause the next.
TEST_F(Relations, EndInACircle) {
  NewTable pairs = {.name = "T",
                    .columns = {number("A"), number("B")},
                    .indexes = {{.name = "U", .columns = {{"A"}, {"B"}}, .unique = true}}};
  make({pairs}, {{"Circle", "T", {"A", "B"}, "T", {"B", "A"}, true, OnDelete::cascade}});
  ASSERT_TRUE(add(table("T"), {{"A", 1}, {"B", 1}}));
  table("T").moveFirst();
  ASSERT_TRUE(table("T").edit() && table("T").write("A", 2));
  const Status done = table("T").update();
  EXPECT_FALSE(done);
  EXPECT_NE(done.reason().find("Circle"), std::string::npos) << done.reason();
  EXPECT_EQ(column(table("T"), "A"), "1 ");
  table("T").moveFirst();
  EXPECT_TRUE(table("T").remove());
  EXPECT_EQ(opened_->check(), "");
}

// One of a record's relations would leave a child alone that another one deletes.
TEST_F(Relations, AreCheckedWhenAllHaveBeenFollowed) {
  make({keyed("A", {number("ID")}), keyed("B", {number("ID"), number("A")}),
        keyed("C", {number("ID"), number("A"), number("B")})},
       {{"AB", "A", {"ID"}, "B", {"A"}, false, OnDelete::cascade},
        {"BC", "B", {"ID"}, "C", {"B"}, false, OnDelete::refuse},
        {"AC", "A", {"ID"}, "C", {"A"}, false, OnDelete::cascade}});
  ASSERT_TRUE(add(table("A"), {{"ID", 1}}) && add(table("A"), {{"ID", 2}}));
  ASSERT_TRUE(add(table("B"), {{"ID", 1}, {"A", 1}}) && add(table("B"), {{"ID", 2}, {"A", 2}}));
  ASSERT_TRUE(add(table("C"), {{"ID", 1}, {"A", 1}, {"B", 1}}));
  ASSERT_TRUE(add(table("C"), {{"ID", 2}, {"A", 1}, {"B", 2}}));
  table("A").moveLast();
  EXPECT_FALSE(table("A").remove()) << "C 2 depends on B 2";
  EXPECT_EQ(column(table("B"), "ID"), "1 2 ");
  table("A").moveFirst();
  EXPECT_TRUE(table("A").remove());
  EXPECT_EQ(column(table("B"), "ID") + column(table("C"), "ID"), "2 ");
  EXPECT_EQ(opened_->check(), "");
}

// Some nulls in a key ask for a parent with the same nulls; a primary key has none.
TEST_F(Relations, TakeNullsAsPartOfAKey) {
  NewTable unique = {.name = "U",
                     .columns = {number("A"), number("B")},
                     .indexes = {{.name = "U", .columns = {{"A"}, {"B"}}, .unique = true}}};
  NewTable primary = unique;
  primary.name = "P";
  primary.indexes[0].primary = true;
  make({unique,
        primary,
        {.name = "OfU", .columns = {number("A"), number("B")}},
        {.name = "OfP", .columns = {number("A"), number("B")}}},
       {{"RU", "U", {"A", "B"}, "OfU", {"A", "B"}}, {"RP", "P", {"A", "B"}, "OfP", {"A", "B"}}});
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
  EXPECT_EQ(opened_->check(), "");
}

// Keys are the same if the index says so. What the children cannot take, the parent does not get.
TEST_F(Relations, RefuseWhatTheChildrenCannotHold) {
  NewTable names = {.name = "Names",
                    .columns = {{.name = "Name", .size = 20}},
                    .indexes = {{.name = "P", .columns = {{"Name", false}}, .primary = true}}};
  make({names, keyed("Short", {number("ID"), {.name = "Name", .size = 5}}),
        keyed("Needed", {number("ID"), {.name = "Name", .size = 9, .required = true}})},
       {{"RS", "Names", {"Name"}, "Short", {"Name"}, true, OnDelete::setNull},
        {"RN", "Names", {"Name"}, "Needed", {"Name"}, true, OnDelete::setNull}});
  ASSERT_TRUE(add(table("Names"), {{"Name", "Anna"}}) && add(table("Names"), {{"Name", "Bert"}}));
  EXPECT_TRUE(add(table("Short"), {{"ID", 1}, {"Name", "ANNA "}}));
  EXPECT_TRUE(add(table("Needed"), {{"ID", 1}, {"Name", "bert"}}));
  const auto rename = [&](const char* from, const char* to) {
    table("Names").moveFirst();
    EXPECT_TRUE(table("Names").find("Name", TextMatcher(from, CaseRule::exact)));
    EXPECT_TRUE(table("Names").edit() && table("Names").write("Name", to));
    return static_cast<bool>(table("Names").update());
  };
  EXPECT_FALSE(rename("Anna", "Annabel"));
  EXPECT_TRUE(rename("Anna", "aNNA"));
  EXPECT_EQ(column(table("Short"), "Name"), "ANNA  ") << "still the same key";
  EXPECT_TRUE(rename("aNNA", "Ann\xC3\xA9"));
  EXPECT_EQ(column(table("Short"), "Name"), "Ann\xC3\xA9 ");
  table("Names").moveFirst();
  EXPECT_FALSE(table("Names").remove()) << "the name is needed";
  EXPECT_EQ(column(table("Names"), "Name"), "Bert Ann\xC3\xA9 ");
  EXPECT_EQ(opened_->check(), "");
}

// A child whose key is numbered by the engine follows its parent all the same.
TEST_F(Relations, KeepTheAutonumber) {
  NewTable child = keyed("Child", {number("ID")});
  child.columns[0].autoNumber = true;
  make({keyed("Parent", {number("ID")}), child},
       {{"R", "Parent", {"ID"}, "Child", {"ID"}, true, OnDelete::cascade}});
  EXPECT_FALSE(add(table("Child"), {}));
  ASSERT_TRUE(add(table("Parent"), {{"ID", 2}}) && add(table("Parent"), {{"ID", 21}}));
  ASSERT_TRUE(add(table("Child"), {}));
  table("Parent").moveFirst();
  ASSERT_TRUE(table("Parent").edit() && table("Parent").write("ID", 20) && table("Parent").update());
  EXPECT_EQ(column(table("Child"), "ID"), "20 ");
  ASSERT_TRUE(add(table("Child"), {}));
  EXPECT_EQ(column(table("Child"), "ID"), "20 21 ");
  EXPECT_EQ(opened_->check(), "");
}

// --- Files of other programs

// The logical index record of a relation: role, other index, other table, cascades.
TEST_F(Relations, OfUnknownKindsAreReadOnly) {
  const auto build = [&] {
    std::filesystem::remove(file_);
    make({keyed("Parent", {number("ID")}), keyed("Child", {number("ID"), number("Up")})},
         {{"Rel", "Parent", {"ID"}, "Child", {"Up"}, true, OnDelete::cascade}});
    EXPECT_TRUE(add(table("Parent"), {{"ID", 1}}));
    const PageNumber child = findTable(opened_->pager(), "Child")->page;
    tables_.clear();
    opened_.reset();
    // In the parent's record the number of the child's table follows the role and the number of its index.
    const std::string bytes = readWholeFile(file_).value();
    return bytes.find(std::string{1, 1, 0, 0, 0, static_cast<char>(child), 0, 0, 0, 1, 1, 2});
  };
  struct Patch {
    std::size_t at;
    char byte;
    const char* reason;
  };
  constexpr std::size_t role = 0;
  constexpr std::size_t otherIndex = 1;
  constexpr std::size_t otherTable = 5;
  constexpr std::size_t updates = 9;
  constexpr std::size_t deletes = 10;
  for (const Patch& patch :
       {Patch{role, 3, "unknown kind"}, Patch{updates, 8, "unknown kind"}, Patch{deletes, 4, "unknown kind"},
        Patch{otherTable, 99, "not in this file"}, Patch{otherTable, 2, "does not have it"},
        Patch{otherIndex, 7, "does not have it"}}) {
    const std::size_t at = build();
    std::string bytes = readWholeFile(file_).value();
    ASSERT_LT(at, bytes.size());
    bytes[at + patch.at] = patch.byte;
    replaceFile(file_, bytes);
    opened_.emplace(file_);
    const Status refused = table("Parent").addNew();
    EXPECT_NE(refused.reason().find(patch.reason), std::string::npos) << patch.at << ": " << refused.reason();
    table("Parent").moveFirst();
    EXPECT_FALSE(table("Parent").edit() || table("Parent").remove());
    EXPECT_EQ(column(table("Parent"), "ID"), "1 ");
    tables_.clear();
    opened_.reset();
  }
}

// The children would need more pages than a file can have.
TEST_F(Relations, LeaveAFullFileAsItWas) {
  const NewColumn name = {.name = "Name", .size = 250, .compressed = false};
  make({keyed("Names", {name}), keyed("Child", {number("ID"), name})},
       {{"R", "Names", {"Name"}, "Child", {"Name"}, true, OnDelete::cascade}});
  ASSERT_TRUE(add(table("Names"), {{"Name", "a"}}));
  for (int id = 0; id < 200; ++id) {
    ASSERT_TRUE(add(table("Child"), {{"ID", id}, {"Name", "a"}}));
  }
  tables_.clear();
  opened_.reset();
  std::filesystem::resize_file(file_, maximumFileSize(Version::jet4));
  opened_.emplace(file_);
  {
    Transaction transaction(opened_->pager());
    UsageMap free(opened_->pager(), globalMap);
    for (PageNumber page = 0; page < 32736; ++page) {
      free.remove(page);
    }
    ASSERT_TRUE(transaction.commit());
  }
  ASSERT_TRUE(table("Names").edit() && table("Names").write("Name", std::string(250, 'x')));
  EXPECT_FALSE(table("Names").update());
  EXPECT_EQ(column(table("Child"), "Name").size(), 400U);
  EXPECT_EQ(column(table("Names"), "Name"), "a ");
  EXPECT_EQ(opened_->check(), "");
  table("Names").moveFirst();
  EXPECT_TRUE(table("Names").remove());
  EXPECT_EQ(column(table("Child"), "Name"), "");
  EXPECT_EQ(opened_->check(), "");
}

}  // namespace
}  // namespace veltrano::access
