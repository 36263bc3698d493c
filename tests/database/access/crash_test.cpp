#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "harness.h"
#include "simulated_disk.h"
#include "storm.h"

namespace veltrano::access {
namespace {

TEST(Crash, LeavesAStateThatTheFileHad) {
  Storm storm;
  for (unsigned seed = 0; seed < 60; ++seed) {
    ASSERT_EQ(storm.run(seed, Disaster::death), "") << "death, seed " << seed;
    ASSERT_EQ(storm.run(seed, Disaster::powerFailure), "") << "power failure, seed " << seed;
  }
  EXPECT_GT(storm.journalsApplied, 80);
  EXPECT_GT(storm.diedTwice, 15);
}

// With pages of which all bytes after a changed one change, and with pages of which only blocks do.
TEST(Crash, LeavesEncryptedFilesWholeAndSecret) {
  for (const char* label : {"agile, AES-192, SHA-1, 2 rounds", "AES-256, no rounds", "RC4, 40 bits"}) {
    Storm storm(&encryptedSample(label));
    for (unsigned seed = 0; seed < 10; ++seed) {
      ASSERT_EQ(storm.run(seed, Disaster::death), "") << label << ", death, seed " << seed;
      ASSERT_EQ(storm.run(seed, Disaster::powerFailure), "") << label << ", power failure, seed " << seed;
    }
    EXPECT_GT(storm.journalsApplied, 10) << label;
  }
}

// A full disk refuses the change, and nothing else. What was promised before is in the file when there is room
// again.
TEST(Crash, FullDiskRefusesTheChange) {
  const Folder folder;
  makeDatabase(folder / "base.mdb", {peopleTable()});
  const std::string base = readWholeFile(folder / "base.mdb").value();
  for (int room = 0; room < 24; ++room) {
    SimulatedDisk disk;
    disk.put("a.mdb", base);
    Model model;
    int refused = 0;
    {
      OpenedFile opened("a.mdb", &disk);
      const auto recordset = opened.table("People");
      disk.fillAfter(room);
      RandomWork work(static_cast<unsigned>(room % 3));
      for (int i = 0; i < 40; ++i) {
        Model after;
        const bool done = work.step(*recordset, model, after);
        model = done ? std::move(after) : model;
        refused += done ? 0 : 1;
      }
      ASSERT_EQ(difference(readAll(*recordset), model, true), "") << "full after " << room;
      ASSERT_EQ(opened.check(), "") << "full after " << room;
    }
    EXPECT_GT(refused, 0) << "full after " << room;
    disk.revive();
    OpenedFile again("a.mdb", &disk);
    ASSERT_TRUE(again.opened()) << again.reason();
    ASSERT_EQ(difference(readAll(*again.table("People")), model, true), "") << "full after " << room;
    ASSERT_EQ(again.check(), "") << "full after " << room;
  }
}

}  // namespace
}  // namespace veltrano::access
