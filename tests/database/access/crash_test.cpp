#include <gtest/gtest.h>

#include "storm.h"

namespace veltrano::access {
namespace {

class Crash : public testing::Test {
 protected:
  void strike(Storm& storm, unsigned times) {
    for (unsigned seed = 0; seed < times; ++seed) {
      for (const Disaster disaster : {Disaster::death, Disaster::powerFailure, Disaster::fullDisk}) {
        ASSERT_EQ(storm.run(seed, disaster), "")
            << "disaster " << static_cast<int>(disaster) << ", seed " << seed;
      }
    }
    EXPECT_GT(storm.journalsApplied, static_cast<int>(times));
    EXPECT_GT(storm.refusals, static_cast<int>(times));
  }
};

TEST_F(Crash, LeavesAStateThatTheFileHad) {
  Storm storm;
  strike(storm, 12);
  EXPECT_GT(storm.diedTwice, 3);
}

// With pages of which all bytes after a changed one change, and with pages of which only blocks do.
TEST_F(Crash, LeavesEncryptedFilesWholeAndSecret) {
  for (const char* label : {"agile, AES-192, SHA-1, 2 rounds", "AES-256, no rounds", "RC4, 40 bits"}) {
    SCOPED_TRACE(label);
    Storm storm(&encryptedSample(label));
    strike(storm, 4);
  }
}

}  // namespace
}  // namespace veltrano::access
