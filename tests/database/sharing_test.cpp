// Several objects and users of VeltranoMDB on one file.

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "database/access/authoring/create_database.h"
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
  first_.Delete();
  EXPECT_EQ(second_.ReadRecord_String("N"), "") << "deleted by the other";
  second_.MoveLast();
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

TEST_F(AccessSharing, ACopyIsAnotherFile) {
  const auto copy = temporaryFile("veltrano_sharing_copy.mdb");
  second_.CloseDatabase();
  first_.CloseDatabase();
  std::filesystem::copy_file(file_, copy);
  ASSERT_TRUE(first_.OpenDB(name(), "", "p") && first_.OpenTable("A"));
  ASSERT_TRUE(second_.OpenDB(utf8(copy), "", "p") && second_.OpenTable("A"));
  first_.Delete();
  EXPECT_EQ(second_.ReadRecord_String("N"), "1");
  second_.CloseDatabase();
  std::filesystem::remove(copy);
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
