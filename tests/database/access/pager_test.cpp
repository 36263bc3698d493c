// What the pager writes, when, and what the next opener makes of it.

#include "database/access/storage/pager.h"

#include <gmock/gmock.h>
#include <tuple>

#include "base/files/whole.h"
#include "harness.h"
#include "simulated_disk.h"

namespace veltrano::access {
namespace {

using testing::ElementsAre;

constexpr PageNumber somePage = 3;

class PagerTest : public testing::Test {
 protected:
  void SetUp() override {
    makeDatabase(folder_ / "a.mdb", {peopleTable()});
    base_ = readWholeFile(folder_ / "a.mdb").value();
    disk_.put("a.mdb", base_);
    open();
  }
  void open(std::uint32_t cachePages = 4096) {
    auto opened = Pager::open("a.mdb", {.cachePages = cachePages, .files = &disk_});
    ASSERT_TRUE(opened) << opened.status().reason();
    pager_ = *std::move(opened);
  }
  /// Changes the last byte of a page.
  bool put(std::uint8_t value, PageNumber page = somePage) {
    Transaction transaction(*pager_);
    const MutableBytes bytes = pager_->edit(page);
    return !bytes.empty() && (bytes[pageSize - 1] = value, transaction.commit());
  }
  std::uint8_t got(PageNumber page = somePage) { return pager_->read(page).bytes()[pageSize - 1]; }
  bool append(int pages) {
    Transaction transaction(*pager_);
    for (int i = 0; i < pages; ++i) {
      const PageNumber page = pager_->append();
      if (page == noPage) {
        return false;
      }
      pager_->edit(page)[pageSize - 1] = static_cast<std::uint8_t>(page % 251 + 1);
    }
    return static_cast<bool>(transaction.commit());
  }
  /// The process dies.
  void die() {
    disk_.dieAfter(-1);
    pager_.reset();
    disk_.revive();
    disk_.calls.clear();
  }
  /// Another process opens the file of one that has died.
  void open(const std::string& database, const std::string& journal) {
    die();
    disk_.put("a.mdb", database);
    disk_.put("a.mdb-journal", journal);
    open();
  }

  Folder folder_;
  std::string base_;
  SimulatedDisk disk_;
  std::unique_ptr<Pager> pager_;
};

TEST_F(PagerTest, WaitsForTheDiskAtCheckpointsOnly) {
  disk_.calls.clear();
  EXPECT_TRUE(put(1) && put(2));
  EXPECT_THAT(disk_.calls, ElementsAre("create a.mdb-journal", "write a.mdb-journal", "write a.mdb-journal"));
  EXPECT_EQ(disk_.content("a.mdb"), base_);
  disk_.calls.clear();
  EXPECT_TRUE(pager_->checkpoint());
  EXPECT_THAT(disk_.calls, ElementsAre("sync a.mdb-journal", "write a.mdb", "sync a.mdb",
                                       "write a.mdb-journal", "sync a.mdb-journal"));
  EXPECT_TRUE(pager_->checkpoint());
  pager_.reset();
  EXPECT_EQ(disk_.calls.size(), 6U) << "nothing was left to do";
  EXPECT_EQ(disk_.calls.back(), "remove a.mdb-journal");
}

TEST_F(PagerTest, RecoveryWaitsForTheDisk) {
  put(1);
  die();
  open();
  EXPECT_THAT(disk_.calls, ElementsAre("sync a.mdb-journal", "write a.mdb", "resize a.mdb", "sync a.mdb",
                                       "write a.mdb-journal", "sync a.mdb-journal", "remove a.mdb-journal",
                                       "create a.mdb-journal", "remove a.mdb-journal"))
      << "at last, whether a journal can be made is tried";
  EXPECT_EQ(got(), 1);
}

// Pages that did not fit into memory are in the file already, and in memory again when they are read.
TEST_F(PagerTest, ARollbackForgetsPagesThatWereWrittenEarlyAndRecoveryCutsThemOff) {
  pager_.reset();
  open(16);
  ASSERT_TRUE(append(300));
  const PageNumber next = pager_->pageCount();
  {
    const Transaction transaction(*pager_);
    for (int i = 0; i < 400; ++i) {
      pager_->edit(pager_->append())[pageSize - 1] = 255;
    }
    ASSERT_EQ(got(next), 255);
  }
  ASSERT_TRUE(append(1));
  ASSERT_EQ(got(next - 256), (next - 256) % 251 + 1);  // has the place of `next` among the pages found last
  EXPECT_EQ(got(next), next % 251 + 1);
  {
    const Transaction transaction(*pager_);
    while (disk_.content("a.mdb").size() < (next + 100) * pageSize) {
      ASSERT_NE(pager_->append(), noPage);
    }
    disk_.dieAfter(-1);
  }
  die();
  open();
  EXPECT_EQ(disk_.content("a.mdb").size(), (next + 1) * pageSize);
  EXPECT_EQ(got(next), next % 251 + 1);
}

// The first page that a transaction writes early has room for its half, which makes the file longer.
TEST_F(PagerTest, AFullDiskLeavesNoPartOfAPage) {
  for (int pages = 20; pages < 60; ++pages) {
    pager_.reset();
    disk_.put("a.mdb", base_);
    open(16);
    const PageNumber before = pager_->pageCount();
    disk_.fillAfter(2);
    const bool done = append(pages);
    pager_.reset();
    disk_.revive();
    open();
    EXPECT_EQ(pager_->pageCount(), before + static_cast<PageNumber>(done ? pages : 0)) << pages;
    EXPECT_TRUE(pager_->writable()) << pages;
  }
}

TEST_F(PagerTest, ADamagedRecordDoesNotCount) {
  put(1);
  const std::string first = disk_.content("a.mdb-journal");
  put(2);
  const std::string both = disk_.content("a.mdb-journal");
  const auto before = static_cast<std::uint8_t>(base_[(somePage + 1) * pageSize - 1]);
  for (std::size_t at = 0; at < both.size(); ++at) {
    std::string damaged = both;
    damaged[at] = static_cast<char>(damaged[at] ^ 1);
    open(base_, damaged);
    // The damaged record ends the journal.
    ASSERT_EQ(got(), at >= first.size() ? 1 : before) << "byte " << at;
  }
}

// A checkpoint makes its journal void; whatever part of the next one's beginning is written over it, the old
// records stay void.
TEST_F(PagerTest, TheNextRecordMayBeCutAnywhere) {
  put(1);
  ASSERT_TRUE(pager_->checkpoint());
  const std::string voided = disk_.content("a.mdb-journal");
  const std::string database = disk_.content("a.mdb");
  ASSERT_TRUE(put(2));
  const std::string next = disk_.content("a.mdb-journal");
  for (std::size_t cut = 0; cut <= next.size(); ++cut) {
    open(database, next.substr(0, cut) + voided.substr(std::min(cut, voided.size())));
    ASSERT_EQ(got(), cut == next.size() ? 2 : 1) << "cut after " << cut;
  }
}

// Another copy of the file has taken its place since the writer was killed.
TEST_F(PagerTest, AJournalOfAnotherFileIsLeftOut) {
  ASSERT_TRUE(append(2));
  const std::string appended = disk_.content("a.mdb-journal");
  ASSERT_TRUE(put(1));
  const std::string changed = disk_.content("a.mdb-journal");
  makeDatabase(folder_ / "b.mdb", {peopleTable()}, {.created = 40000});
  std::string edited = base_;
  edited[(somePage + 1) * pageSize - 1] = 77;
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"longer", appended, base_ + std::string(50 * pageSize, 'x')},
      {"shorter", appended, base_.substr(0, base_.size() - pageSize)},
      {"edited", changed, edited},
      {"other header", changed, readWholeFile(folder_ / "b.mdb").value()}};
  for (const auto& [name, journal, database] : cases) {
    open(database, journal);
    EXPECT_EQ(disk_.content("a.mdb"), database) << name;
    EXPECT_FALSE(disk_.exists("a.mdb-journal")) << name;
  }
}

TEST_F(PagerTest, NeedsAJournalToWriteAndToReadAfterADeath) {
  EXPECT_TRUE(pager_->writable());
  pager_.reset();
  disk_.takesFiles = false;
  open();
  EXPECT_FALSE(pager_->writable());
  pager_.reset();
  disk_.takesFiles = true;
  open();
  put(1);
  die();
  EXPECT_FALSE(Pager::open("a.mdb", {.readOnly = true, .files = &disk_}));
  open();
  pager_.reset();
  EXPECT_TRUE(Pager::open("a.mdb", {.readOnly = true, .files = &disk_}));
}

}  // namespace
}  // namespace veltrano::access
