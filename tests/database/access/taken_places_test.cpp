#include "harness.h"

namespace veltrano::access {
namespace {

// Rows as long as a page, so that a deleted one's page, and with it its place, goes to the next that is added.
class TakenPlaces : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    std::string schema = "table Parents; ID long; primary P (ID)\n table T; ID long; Name text; Up long";
    for (const auto& [field, value] : filling_) {
      schema += "; " + field + " binary(510)";
    }
    makeDatabase(folder_ / "a.mdb", tablesOf(schema + (GetParam() ? "; primary P (ID)" : "")),
                 {.relations = {{"R", "Parents", {"ID"}, "T", {"Up"}, true, OnDelete::cascade}}});
    database_ = open(folder_ / "a.mdb");
    a_ = openTable(*database_, "T");
    b_ = openTable(*database_, "T");
    addLong(*a_, 1, "one");
    addLong(*a_, 2, "two");
    a_->moveLast();
    b_->moveLast();
  }
  void addLong(Recordset& recordset, int id, const char* name, const Value& up = Null{}) {
    Values values = filling_;
    values.insert(values.end(), {{"ID", id}, {"Name", name}, {"Up", up}});
    EXPECT_TRUE(add(recordset, values));
  }

  const std::string long_ = std::string(500, 'x');
  const Values filling_ = {{"A", long_}, {"B", long_}, {"C", long_}, {"D", long_},
                           {"E", long_}, {"F", long_}, {"G", long_}};
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
      addLong(*deleting, id, "NEW");
      EXPECT_FALSE(a_->update());
      EXPECT_EQ(read(*a_, "Name"), "()");
      EXPECT_FALSE(a_->edit() || a_->remove());
      EXPECT_EQ(a_->atEnd(), false);
      EXPECT_TRUE(a_->moveNext());
      EXPECT_EQ(read(*a_, "Name"), "NEW");
      EXPECT_EQ(readAll(*b_, {"Name"}), "one NEW ");
      b_->moveLast();
      a_->moveLast();
    }
  }
}

TEST_P(TakenPlaces, OfRecordsThatACascadeDeletedAreTold) {
  const auto parents = openTable(*database_, "Parents");
  EXPECT_TRUE(add(*parents, {{"ID", 1}}) && add(*parents, {{"ID", 2}}));
  addLong(*a_, 3, "child", 1);
  stand(*a_, "ID", "3");
  EXPECT_TRUE(parents->moveFirst() && parents->remove());
  addLong(*b_, 4, "NEW");
  EXPECT_EQ(read(*a_, "Name"), "()");
  stand(*a_, "ID", "4");
  EXPECT_TRUE(parents->moveFirst() && parents->remove());
  EXPECT_EQ(read(*a_, "Name"), "NEW") << "nothing of it was deleted this time";
}

TEST_P(TakenPlaces, AreMetInAWalkThatChangedKeys) {
  a_->moveFirst();
  EXPECT_TRUE(change(*a_, {{"ID", 8}}));
  stand(*b_, "ID", "8");
  EXPECT_TRUE(b_->remove());
  addLong(*b_, 9, "NEW");
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
