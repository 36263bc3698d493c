#include "database/veltrano_mdb.h"

#include <gtest/gtest.h>

#include "database/access/authoring/create_database.h"
#include "database/database_engine.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

/// An engine of one database "people.mdb" (password "secret" or none) with the tables "People" and "Empty",
/// in memory, that writes down what it is asked for.
class MemoryEngine final : public DatabaseEngine {
 public:
  std::string log;
  std::vector<std::optional<std::string>> names{"Miller", std::nullopt, "Smith", "smith", ""};

  class Table final : public Recordset {
   public:
    Table(MemoryEngine& engine, bool empty) : engine_(engine), count_(empty ? 0 : engine.names.size()) {}
    bool moveFirst() override { return note("first"), move(0); }
    bool moveLast() override { return note("last"), move(count_ - 1); }
    bool moveNext() override { return at_ < count_ ? move(at_ + 1) : fail("at end"); }
    std::optional<bool> atEnd() override { return closed_ ? std::nullopt : std::optional(at_ >= count_); }
    bool edit() override { return note("edit"); }
    bool addNew() override { return note("add"); }
    bool update() override { return note("update"); }
    bool remove() override { return note("delete"); }
    bool readText(std::string_view field, std::string& text) override {
      text = "unspecified after a failure";
      if (closed_ || at_ >= count_ || field != "Name" || !engine_.names[at_]) {
        return fail("no value");
      }
      text = *engine_.names[at_];
      return true;
    }
    bool write(std::string_view field, const Value& value) override {
      return note("write " + std::string(field) + "=" + value.toText().value_or("?"));
    }
    bool close() override {
      closed_ = true;
      return note("close");
    }

   private:
    bool note(const std::string& what) {
      engine_.log += what + ";";
      return true;
    }
    bool move(std::size_t to) {
      at_ = to;
      return true;
    }
    MemoryEngine& engine_;
    std::size_t count_;
    std::size_t at_ = 0;
    bool closed_ = false;
  };

  class File final : public Database {
   public:
    explicit File(MemoryEngine& engine) : engine_(engine) {}
    std::unique_ptr<Recordset> openTable(std::string_view table) override {
      if (table != "People" && table != "Empty") {
        fail("no such table");
        return nullptr;
      }
      return std::make_unique<Table>(engine_, table == "Empty");
    }
    bool close() override {
      engine_.log += "close database;";
      return true;
    }

   private:
    MemoryEngine& engine_;
  };

  std::unique_ptr<Database> openDatabase(std::string_view fileName, std::optional<std::string_view> connect,
                                         std::string& reason) override {
    log += "open " + std::string(fileName) + "|" + std::string(connect.value_or("-")) + ";";
    if (fileName != "people.mdb" || (connect && *connect != "MS Access;PWD=secret")) {
      reason = "refused";
      return nullptr;
    }
    return std::make_unique<File>(*this);
  }
};

TEST(VeltranoMdb, OpensWithAndWithoutPassword) {
  MemoryEngine engine;
  VeltranoMDB mdb(engine);
  EXPECT_TRUE(mdb.OpenDB("people.mdb"));
  EXPECT_TRUE(mdb.OpenDB("people.mdb", "somebody", "secret"));
  EXPECT_FALSE(mdb.OpenDB("people.mdb", "secret", "wrong"));
  EXPECT_FALSE(mdb.OpenDB("other.mdb"));
  EXPECT_EQ(engine.log,
            "open people.mdb|-;open people.mdb|MS Access;PWD=secret;open people.mdb|MS Access;PWD=wrong;"
            "open other.mdb|-;");
  EXPECT_TRUE(mdb.OpenTable("People")) << "a failed open must leave the database opened before";
}

TEST(VeltranoMdb, MembersDoNothingBeforeAndAfterAnOpenTable) {
  MemoryEngine engine;
  VeltranoMDB mdb(engine);
  const auto callAll = [&mdb] {
    mdb.MoveFirst();
    mdb.MoveNext();
    mdb.MoveLast();
    mdb.Edit();
    mdb.AddNew();
    mdb.Update();
    mdb.Delete();
    EXPECT_FALSE(mdb.WriteRecord("Name", "x"));
    EXPECT_EQ(mdb.ReadRecord_String("Name"), "");
    EXPECT_FALSE(mdb.Eof());
    EXPECT_FALSE(mdb.FindRecord("Name", "Smith", 0));
    mdb.CloseTable();
    mdb.CloseDatabase();
  };
  callAll();
  EXPECT_FALSE(mdb.OpenTable("People"));
  ASSERT_TRUE(mdb.OpenDB("people.mdb"));
  EXPECT_FALSE(mdb.OpenTable("Nobody"));
  mdb.MoveFirst();
  EXPECT_EQ(engine.log, "open people.mdb|-;");
  ASSERT_TRUE(mdb.OpenTable("People"));
  mdb.CloseTable();
  callAll();
}

TEST(VeltranoMdb, ForwardsEditing) {
  MemoryEngine engine;
  VeltranoMDB mdb(engine);
  ASSERT_TRUE(mdb.OpenDB("people.mdb") && mdb.OpenTable("People"));
  engine.log.clear();
  mdb.AddNew();
  EXPECT_FALSE(mdb.WriteRecord("Age", 41)) << "false although it was written";
  mdb.Update();
  mdb.MoveLast();
  mdb.Edit();
  mdb.Delete();
  mdb.CloseTable();
  mdb.CloseDatabase();
  EXPECT_EQ(engine.log, "add;write Age=41;update;last;edit;delete;close;close database;");
}

TEST(VeltranoMdb, FindsRecords) {
  MemoryEngine engine;
  VeltranoMDB mdb(engine);
  ASSERT_TRUE(mdb.OpenDB("people.mdb") && mdb.OpenTable("People"));
  const struct {
    const char* value;
    std::int16_t caseSensitive;
    std::optional<std::string> found;
  } cases[] = {
      {"smith", 0, "Smith"}, {"smith", -1, "smith"}, {"SMITH", 0, "Smith"},
      {"SMITH", -1, {}},     {"smith", 1, "Smith"},  // only -1 is true
      {"", -1, ""},                                  // passes over the null before it
      {"Smit", 0, {}},
  };
  for (const auto& c : cases) {
    mdb.MoveLast();
    EXPECT_EQ(mdb.FindRecord("Name", c.value, c.caseSensitive), c.found.has_value()) << c.value;
    EXPECT_EQ(mdb.Eof(), !c.found) << c.value;
    EXPECT_EQ(mdb.ReadRecord_String("Name"), c.found.value_or("")) << c.value;
  }
  EXPECT_FALSE(mdb.FindRecord("Unknown", "", 0));
  EXPECT_TRUE(mdb.Eof());
  ASSERT_TRUE(mdb.OpenTable("Empty"));
  EXPECT_FALSE(mdb.FindRecord("Name", "Smith", 0));
}

TEST(VeltranoMdb, StoresEveryKindAndTakesItsTextAgain) {
  using access::ColumnType;
  const tests::TemporaryFolder folder;
  const std::filesystem::path file = folder / "kinds.mdb";
  std::string reason;
  ASSERT_TRUE(access::createDatabase(file, {}, reason) &&
              access::createTable(
                  file,
                  {.name = "Kinds",
                   .columns = {{.name = "Numeric", .type = ColumnType::numeric, .precision = 18, .scale = 4},
                               {.name = "Cash", .type = ColumnType::currency},
                               {.name = "Single", .type = ColumnType::single},
                               {.name = "Double", .type = ColumnType::real},
                               {.name = "Moment", .type = ColumnType::dateTime},
                               {.name = "Words", .type = ColumnType::text},
                               {.name = "Long words", .type = ColumnType::memo}}},
                  reason))
      << reason;
  const auto name = file.u8string();
  VeltranoMDB mdb;
  ASSERT_TRUE(mdb.OpenDB({name.begin(), name.end()}) && mdb.OpenTable("Kinds"));
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
    mdb.AddNew();
    mdb.WriteRecord(field, value);
    mdb.Update();
    mdb.MoveLast();
    EXPECT_EQ(mdb.ReadRecord_String(field), text);
    EXPECT_TRUE(mdb.FindRecord(field, text, 0)) << field;
    mdb.AddNew();
    mdb.WriteRecord(field, text);
    mdb.Update();
    mdb.MoveLast();
    EXPECT_EQ(mdb.ReadRecord_String(field), text) << "written again as it was read";
  }
}

}  // namespace
}  // namespace veltrano
