// Thousands of random changes through VeltranoMDB, against a model in memory.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>
#include <thread>

#include "database/access/check.h"
#include "database/access/create_database.h"
#include "database/veltrano_mdb.h"

namespace veltrano {
namespace {

using access::ColumnType;

std::filesystem::path temporaryFile(const char* name) {
  auto file = std::filesystem::temp_directory_path() / name;
  std::filesystem::remove(file);
  return file;
}

std::string utf8(const std::filesystem::path& path) {
  const auto text = path.u8string();
  return {text.begin(), text.end()};
}

/// A value and the text that it reads as.
struct Sample {
  Value value;
  std::string text;
};

class Oracle {
 public:
  Oracle(std::uint32_t seed, bool keyedByCode) : random_(seed), keyedByCode_(keyedByCode) {
    std::string reason;
    EXPECT_TRUE(access::createDatabase(file_, {}, reason)) << reason;
    const access::NewIndex byId = {
        .name = "ById", .columns = {{.name = "ID"}}, .primary = !keyedByCode, .unique = true};
    const access::NewIndex byCode = {.name = "ByCode",
                                     .columns = {{.name = "Code"}},
                                     .primary = keyedByCode,
                                     .unique = true,
                                     .ignoreNulls = !keyedByCode};
    EXPECT_TRUE(access::createTable(
        file_,
        {.name = "Things",
         .columns = {{.name = "ID", .type = ColumnType::longInteger, .autoNumber = true},
                     {.name = "Code", .type = ColumnType::text, .size = 8},
                     {.name = "Name", .type = ColumnType::text, .size = 80},
                     {.name = "Flag", .type = ColumnType::boolean},
                     {.name = "Price", .type = ColumnType::currency},
                     {.name = "Born", .type = ColumnType::dateTime},
                     {.name = "Share", .type = ColumnType::numeric, .precision = 12, .scale = 3},
                     {.name = "Note", .type = ColumnType::memo}},
         .indexes = {byId,
                     byCode,
                     {.name = "ByName", .columns = {{.name = "Name", .ascending = false}}},
                     {.name = "ByFlag", .columns = {{.name = "Flag"}, {.name = "Born", .ascending = false}}},
                     {.name = "ByPrice", .columns = {{.name = "Price"}}, .ignoreNulls = true},
                     {.name = "ByShare", .columns = {{.name = "Share"}}}}},
        reason))
        << reason;
    open();
  }
  ~Oracle() {
    close();
    std::filesystem::remove(file_);
  }
  Oracle(const Oracle&) = delete;
  Oracle& operator=(const Oracle&) = delete;

  void run(int operations) {
    for (int i = 1; i <= operations && !testing::Test::HasFatalFailure(); ++i) {
      const std::uint32_t kind = below(10);
      if (rows_.empty() || kind < (rows_.size() < 400 ? 5U : 3U)) {
        add();
      } else if (kind < 8) {
        change();
      } else {
        remove();
      }
      if (i % 500 == 0) {
        compareAll();
        close();
        ASSERT_EQ(problems(), "") << "after " << i;
        open();
      }
    }
  }

 private:
  using Row = std::map<std::string, Sample>;  // nulls are missing

  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

  void open() {
    ASSERT_TRUE(mdb_.OpenDB(utf8(file_)));
    ASSERT_TRUE(mdb_.OpenTable("things"));
  }
  void close() {
    mdb_.CloseTable();
    mdb_.CloseDatabase();
  }

  /// What is wrong with the closed file.
  [[nodiscard]] std::string problems() const {
    std::string reason;
    const auto pager = access::Pager::open(file_, {}, reason);
    return pager ? access::checkDatabase(*pager, access::CheckCounters::yes) : reason;
  }

  std::string letters(std::uint32_t most, std::uint32_t different) {
    static const char* const alphabet[] = {"a", "b", "c", "E",      "\u00e9", "\u00c5",
                                           "-", " ", "x", "\u0141", "\u65e5"};
    std::string text;
    for (std::uint32_t left = below(most + 1); left > 0; --left) {
      text += alphabet[below(different)];
    }
    return text;
  }

  Sample sampleFor(const std::string& field) {
    if (field == "Code") {
      std::string code(1, 'K');
      code += std::to_string(below(500));
      return {code, code};
    }
    if (field == "Flag") {
      const bool flag = below(2) != 0;
      return {flag, flag ? "True" : "False"};
    }
    if (field == "Price") {
      static const Sample prices[] = {
          {0.5, "0.5"}, {"-12.25", "-12.25"}, {1000000, "1000000"}, {Currency{1}, "0.0001"}};
      return prices[below(4)];
    }
    if (field == "Born") {
      static const Sample dates[] = {{"1969-07-20 20:17:40", "1969-07-20 20:17:40"},
                                     {Date{-1.5}, "1899-12-29 12:00:00"},
                                     {"2/29/2024", "2024-02-29"},
                                     {Date{0.25}, "06:00:00"}};
      return dates[below(4)];
    }
    if (field == "Share") {
      static const Sample shares[] = {
          {"-0.125", "-0.125"}, {7, "7"}, {"999999999.999", "999999999.999"}, {0, "0"}};
      return shares[below(4)];
    }
    const std::string text = field == "Name" ? letters(80, 11) : letters(below(8) == 0 ? 9000 : 100, 11);
    return {text, text};
  }

  /// Assigns some of the fields, nulls among them, and once in a while what must be refused.
  void assign(Row& row) {
    for (const char* field : {"Code", "Name", "Flag", "Price", "Born", "Share", "Note"}) {
      switch (below(4)) {
        case 0:
          break;
        case 1: {
          const bool flag = std::string_view(field) == "Flag";
          mdb_.WriteRecord(field, Null());
          row.erase(field);
          if (flag) {
            row[field] = {false, "False"};
          }
          break;
        }
        default:
          mdb_.WriteRecord(field, (row[field] = sampleFor(field)).value);
      }
    }
    mdb_.WriteRecord("Price", "dear");               // no number
    mdb_.WriteRecord("Name", std::string(81, 'x'));  // too long
    mdb_.WriteRecord("Share", "1e9");                // too many digits
    mdb_.WriteRecord("Nothing", 1);                  // no such field
  }

  bool mayStand(int id, const Row& row) const {
    const auto code = row.find("Code");
    if (code == row.end()) {
      return !keyedByCode_;
    }
    for (const auto& [other, fields] : rows_) {
      const auto its = fields.find("Code");
      if (other != id && its != fields.end() && its->second.text == code->second.text) {
        return false;
      }
    }
    return true;
  }

  void add() {
    mdb_.AddNew();
    const std::string number = mdb_.ReadRecord_String("ID");
    const int id = number.empty() ? 0 : std::stoi(number);
    ASSERT_GT(id, lastId_) << "numbers are never handed out twice";
    Row row = {{"Flag", {false, "False"}}};
    assign(row);
    mdb_.Update();
    if (mayStand(id, row)) {
      row["ID"] = {id, number};
      rows_[id] = std::move(row);
      lastId_ = id;
    }
  }

  void go(int id) {
    ASSERT_TRUE(mdb_.FindRecord("ID", std::to_string(id), below(2) != 0 ? -1 : 0));
    compare(rows_.at(id));
  }
  int randomId() { return std::next(rows_.begin(), below(static_cast<std::uint32_t>(rows_.size())))->first; }

  void change() {
    const int id = randomId();
    go(id);
    mdb_.Edit();
    Row row = rows_.at(id);
    assign(row);
    if (below(10) == 0) {
      mdb_.MoveNext();  // drops the edit
      return;
    }
    mdb_.Update();
    if (mayStand(id, row)) {
      rows_[id] = std::move(row);
    } else {
      go(id);  // the refused edit left the record alone
    }
  }

  void remove() {
    const int id = randomId();
    go(id);
    mdb_.Delete();
    rows_.erase(id);
    ASSERT_EQ(mdb_.ReadRecord_String("ID"), "");
  }

  void compare(const Row& row) {
    for (const char* field : {"ID", "Code", "Name", "Flag", "Price", "Born", "Share", "Note"}) {
      const auto sample = row.find(field);
      ASSERT_EQ(mdb_.ReadRecord_String(field), sample == row.end() ? "" : sample->second.text) << field;
    }
  }

  /// All records, in the order of the primary key.
  void compareAll() {
    std::map<std::pair<std::string, int>, int> order;
    for (const auto& [id, row] : rows_) {
      order[{keyedByCode_ ? row.at("Code").text : "", id}] = id;
    }
    mdb_.MoveFirst();
    for (const auto& [key, id] : order) {
      ASSERT_FALSE(mdb_.Eof());
      compare(rows_.at(id));
      mdb_.MoveNext();
    }
    ASSERT_TRUE(mdb_.Eof());
  }

  std::filesystem::path file_ = temporaryFile("veltrano_oracle_test.mdb");
  std::mt19937 random_;
  bool keyedByCode_;
  VeltranoMDB mdb_;
  std::map<int, Row> rows_;
  int lastId_ = 0;
};

TEST(AccessOracle, MatchesTheModelThroughRandomChanges) {
  for (const std::uint32_t seed : {1U, 2U}) {
    for (const bool keyedByCode : {false, true}) {
      SCOPED_TRACE("seed " + std::to_string(seed) + (keyedByCode ? ", keyed by text" : ", keyed by number"));
      Oracle(seed, keyedByCode).run(1500);
    }
  }
}

/// A database "Two" with two tables of three numbers each.
class AccessSharing : public testing::Test {
 protected:
  void SetUp() override {
    std::string reason;
    ASSERT_TRUE(access::createDatabase(file_, {.password = "p"}, reason)) << reason;
    for (const char* name : {"A", "B"}) {
      ASSERT_TRUE(
          access::createTable(file_,
                              {.name = name,
                               .columns = {{.name = "N", .type = ColumnType::longInteger}},
                               .indexes = {{.name = "Key", .columns = {{.name = "N"}}, .primary = true}}},
                              reason, "p"))
          << reason;
    }
    for (VeltranoMDB* mdb : {&first_, &second_}) {
      ASSERT_TRUE(mdb->OpenDB(name(), "", "p"));
    }
    ASSERT_TRUE(first_.OpenTable("A"));
    for (int i = 1; i <= 3; ++i) {
      add(first_, i);
    }
    first_.MoveFirst();
  }
  void TearDown() override {
    first_.CloseDatabase();
    second_.CloseDatabase();
    std::filesystem::remove(file_);
  }

  [[nodiscard]] std::string name() const { return utf8(file_); }
  static void add(VeltranoMDB& mdb, int number) {
    mdb.AddNew();
    mdb.WriteRecord("N", number);
    mdb.Update();
  }

  std::filesystem::path file_ = temporaryFile("veltrano_sharing_test.mdb");
  VeltranoMDB first_;
  VeltranoMDB second_;
};

TEST_F(AccessSharing, TwoObjectsSeeEachOthersChanges) {
  ASSERT_TRUE(second_.OpenTable("A"));
  EXPECT_EQ(second_.ReadRecord_String("N"), "1");
  first_.Delete();
  EXPECT_EQ(second_.ReadRecord_String("N"), "") << "deleted by the other";
  second_.MoveNext();
  EXPECT_EQ(second_.ReadRecord_String("N"), "2");
  second_.MoveNext();
  add(first_, 7);
  second_.MoveNext();
  EXPECT_EQ(second_.ReadRecord_String("N"), "7");
  ASSERT_TRUE(second_.OpenTable("B"));
  EXPECT_TRUE(second_.Eof());
}

TEST_F(AccessSharing, ClosingOneLeavesTheOther) {
  ASSERT_TRUE(second_.OpenTable("A"));
  first_.CloseDatabase();
  first_.MoveFirst();
  EXPECT_EQ(first_.ReadRecord_String("N"), "");
  EXPECT_EQ(second_.ReadRecord_String("N"), "1");
  EXPECT_FALSE(first_.OpenDB(name()));
  EXPECT_FALSE(first_.OpenDB(name(), "", "q"));
  EXPECT_TRUE(first_.OpenDB(name(), "", "p"));
}

TEST_F(AccessSharing, AnotherUserIsToldNo) {
  const auto opensElsewhere = [this] {
    bool opened = false;
    std::thread([&] {
      VeltranoMDB other;
      opened = other.OpenDB(name(), "", "p");
    }).join();
    return opened;
  };
  EXPECT_FALSE(opensElsewhere());
  first_.CloseDatabase();
  EXPECT_FALSE(opensElsewhere());
  second_.CloseDatabase();
  EXPECT_TRUE(opensElsewhere());
}

}  // namespace
}  // namespace veltrano
