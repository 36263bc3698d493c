#include <gtest/gtest.h>

#include "database/values/text_matcher.h"
#include "harness.h"

namespace veltrano::access {
namespace {

// Rows as long as a page, so that a deleted one's page, and with it its place, goes to the next that is added.
class TakenPlaces : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    NewTable table = {.name = "T",
                      .columns = {{.name = "ID", .type = ColumnType::longInteger}, {.name = "Name"}}};
    for (int i = 0; i < 7; ++i) {
      table.columns.push_back({.name = "B" + std::to_string(i), .type = ColumnType::binary, .size = 510});
    }
    if (GetParam()) {
      table.indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}};
    }
    makeDatabase(folder_ / "a.mdb", {table});
    database_ = open(folder_ / "a.mdb");
    a_ = openTable(*database_, "T");
    b_ = openTable(*database_, "T");
    add(*a_, 1, "one");
    add(*a_, 2, "two");
    a_->moveLast();
    b_->moveLast();
  }
  static void add(Recordset& recordset, int id, const char* name) {
    recordset.addNew();
    recordset.write("ID", id);
    recordset.write("Name", name);
    for (int i = 0; i < 7; ++i) {
      recordset.write("B" + std::to_string(i), std::string(500, 'x'));
    }
    EXPECT_TRUE(recordset.update());
  }
  std::string names() {
    std::string all;
    for (b_->moveFirst(); b_->atEnd() == false; b_->moveNext()) {
      all += read(*b_, "Name") + " ";
    }
    return all;
  }

  Folder folder_;
  std::unique_ptr<Database> database_;
  std::unique_ptr<Recordset> a_, b_;
};

TEST_P(TakenPlaces, BelongToAnotherRecord) {
  for (const int id : {2, 3}) {
    for (Recordset* deleting : {b_.get(), a_.get()}) {
      SCOPED_TRACE(std::to_string(id) + (deleting == a_.get() ? " with one recordset" : " with two"));
      a_->edit();
      a_->write("Name", "changed");
      EXPECT_TRUE(deleting->remove());
      add(*deleting, id, "NEW");
      EXPECT_FALSE(a_->update());
      EXPECT_EQ(read(*a_, "Name"), "()");
      EXPECT_FALSE(a_->edit() || a_->remove());
      EXPECT_EQ(a_->atEnd(), false);
      EXPECT_TRUE(a_->moveNext());
      EXPECT_EQ(read(*a_, "Name"), "NEW");
      EXPECT_EQ(names(), "one NEW ");
      b_->moveLast();
      a_->moveLast();
    }
  }
}

TEST_P(TakenPlaces, AreMetInAWalkThatChangedKeys) {
  a_->moveFirst();
  a_->edit();
  a_->write("ID", 8);
  EXPECT_TRUE(a_->update());
  b_->moveFirst();
  EXPECT_TRUE(b_->find("ID", TextMatcher("8", CaseRule::exact)) && b_->remove());
  add(*b_, 9, "NEW");
  std::string met;
  for (a_->moveNext(); a_->atEnd() == false; a_->moveNext()) {
    met += read(*a_, "Name") + " ";
  }
  EXPECT_EQ(met, GetParam() ? "two NEW " : "NEW two ");
}

INSTANTIATE_TEST_SUITE_P(Tables, TakenPlaces, testing::Bool(),
                         [](const auto& one) { return one.param ? "WithAPrimaryKey" : "InStorageOrder"; });

}  // namespace
}  // namespace veltrano::access
