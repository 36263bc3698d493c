// VeltranoMDB over the embedded engine: what its members promise, and several objects on one file.

#include "veltrano/mdb.h"

#include <gtest/gtest.h>

#include <thread>

#include "base/files/paths.h"
#include "database/access/authoring/create_database.h"
#include "database/access/authoring/schema_text.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

/// A database with a password and two tables: "People" (key and name) and "Kinds" (a field of each type).
class VeltranoMdb : public testing::Test {
 protected:
  void SetUp() override {
    const auto tables = access::parseSchema(
        "table People\n N long\n Name text\n primary Key (N)\n"
        "table Kinds\n Numeric decimal(18,4)\n Cash currency\n Single single\n Double double\n"
        " Moment datetime\n Words text\n [Long words] memo");
    ASSERT_TRUE(tables) << tables.status().reason();
    const Status made = access::createDatabase(file_, *tables, {.password = "secret"});
    ASSERT_TRUE(made) << made.reason();
    ASSERT_TRUE(first_.OpenDB(name(), "somebody", "secret") && first_.OpenTable("People"));
  }

  [[nodiscard]] std::string name() const { return pathToUtf8(file_); }
  static void add(VeltranoMDB& mdb, int number, const Value& name = Null()) {
    mdb.AddNew();
    mdb.WriteRecord("N", number);
    EXPECT_FALSE(mdb.WriteRecord("Name", name)) << "false although it was written";
    mdb.Update();
  }

  const tests::TemporaryFolder folder_;
  const std::filesystem::path file_ = folder_ / "a.mdb";
  VeltranoMDB first_;
  VeltranoMDB second_;
};

TEST_F(VeltranoMdb, DoesNothingWithoutAnOpenTable) {
  const auto callAll = [](VeltranoMDB& mdb) {
    mdb.MoveFirst();
    mdb.MoveNext();
    mdb.MoveLast();
    mdb.Edit();
    mdb.Delete();
    add(mdb, 1, "x");
    EXPECT_EQ(mdb.ReadRecord_String("N"), "");
    EXPECT_FALSE(mdb.Eof());
    EXPECT_FALSE(mdb.FindRecord("N", "1", 0));
    mdb.CloseTable();
  };
  callAll(second_);
  EXPECT_FALSE(second_.OpenTable("People"));
  second_.CloseDatabase();
  first_.CloseTable();
  callAll(first_);
  first_.CloseDatabase();
  callAll(first_);
  EXPECT_FALSE(first_.OpenTable("People"));
}

TEST_F(VeltranoMdb, FindsRecords) {
  EXPECT_FALSE(first_.FindRecord("Name", "", 0)) << "an empty table";
  int number = 0;
  for (const Value& person :
       {Value("Miller"), Value(Null()), Value("Smith"), Value("smith"), Value(""), Value("Sm\xC3\xADth")}) {
    add(first_, ++number, person);
  }
  const struct {
    const char* value;
    std::int16_t caseSensitive;
    const char* found;  ///< its number; empty: none
  } cases[] = {
      {"smith", 0, "3"}, {"smith", -1, "4"},       {"SMITH", 0, "3"},
      {"SMITH", -1, ""}, {"smith", 1, "3"},  // only -1 is true
      {"", -1, "5"},                         // passes over the null before it
      {"Smit", 0, ""},   {"SM\xC3\x8DTH", 0, "6"}, {"SM\xC3\x8DTH", -1, ""},
  };
  for (const auto& c : cases) {
    first_.MoveLast();
    EXPECT_EQ(first_.FindRecord("Name", c.value, c.caseSensitive), *c.found != '\0') << c.value;
    EXPECT_EQ(first_.Eof(), *c.found == '\0') << c.value;
    EXPECT_EQ(first_.ReadRecord_String("N"), c.found) << c.value;
  }
  EXPECT_FALSE(first_.FindRecord("Unknown", "", 0));
  EXPECT_TRUE(first_.Eof());
}

TEST_F(VeltranoMdb, StoresEveryKindAndTakesItsTextAgain) {
  ASSERT_TRUE(first_.OpenTable("Kinds"));
  const std::string surrogates = "\xED\xA0\xBDx\xED\xB8\x80";
  const struct {
    const char* field;
    Value value;
    std::string text;
  } cases[] = {
      {"Numeric", Decimal{false, {0xA630F34E, 0x1B69B4B, 0, 0}, 4}, "12345678901234.5678"},
      {"Numeric", "99999999999999.9999", "99999999999999.9999"},
      {"Cash", Decimal{true, {125, 0, 0, 0}, 1}, "-12.5"},
      {"Single", 0.1F, "0.1"},
      {"Single", 1.0F / 3, "0.3333333"},
      {"Double", 0.1F, "0.1"},
      {"Double", 1e-5, "1E-05"},
      {"Moment", Date{46347.586805555555}, "2026-11-21 14:05:00"},
      {"Moment", Date{0.75}, "18:00:00"},
      {"Words", 0.1F, "0.1"},
      {"Words", surrogates, surrogates},
      {"Long words", surrogates, surrogates},
  };
  for (const auto& [field, value, text] : cases) {
    for (const Value& given : {value, Value(text)}) {  // written again as it was read
      first_.AddNew();
      first_.WriteRecord(field, given);
      first_.Update();
      first_.MoveLast();
      EXPECT_EQ(first_.ReadRecord_String(field), text);
      EXPECT_TRUE(first_.FindRecord(field, text, 0)) << field;
    }
  }
  first_.AddNew();
  for (const char* field : {"Words", "Long words"}) {
    EXPECT_FALSE(first_.WriteRecord(field, "\xEF\xBB\xBFtext")) << "the file would read it as compressed";
  }
}

TEST_F(VeltranoMdb, TwoObjectsShareTheFileOfOneUser) {
  for (int i = 1; i <= 3; ++i) {
    add(first_, i);
  }
  first_.MoveFirst();
  ASSERT_TRUE(second_.OpenDB(name(), "", "secret") && second_.OpenTable("People"));
  first_.Delete();
  EXPECT_EQ(second_.ReadRecord_String("N"), "") << "deleted by the other";
  second_.MoveLast();
  add(first_, 7);
  second_.MoveNext();
  EXPECT_EQ(second_.ReadRecord_String("N"), "7");
  const auto opensElsewhere = [this] {
    bool opened = false;
    std::thread([&] { opened = VeltranoMDB().OpenDB(name(), "", "secret"); }).join();
    return opened;
  };
  EXPECT_FALSE(opensElsewhere());
  first_.CloseDatabase();
  first_.MoveFirst();
  EXPECT_EQ(first_.ReadRecord_String("N"), "");
  EXPECT_EQ(second_.ReadRecord_String("N"), "7") << "closing one leaves the other";
  EXPECT_FALSE(first_.OpenDB(name()) || first_.OpenDB(name(), "secret", "wrong"));
  EXPECT_FALSE(opensElsewhere());
  EXPECT_TRUE(first_.OpenDB(name(), "", "secret"));
  EXPECT_FALSE(second_.OpenDB(name(), "", "wrong") || second_.OpenDB(name() + "x") ||
               second_.OpenTable("Nobody"));
  EXPECT_EQ(second_.ReadRecord_String("N"), "7") << "what is open stays if an open fails";
  EXPECT_TRUE(second_.OpenDB(name(), "", "secret"));
  EXPECT_EQ(second_.ReadRecord_String("N"), "7") << "the table stays until another one is opened";
  ASSERT_TRUE(second_.OpenTable("KINDS"));
  EXPECT_TRUE(second_.Eof());
  first_.CloseDatabase();
  second_.CloseDatabase();
  EXPECT_TRUE(opensElsewhere());
}

}  // namespace
}  // namespace veltrano
