#include <gtest/gtest.h>

#include "storm.h"

namespace veltrano::access {
namespace {

// Encrypted, too, with pages of which all bytes after a changed one change, and with pages of which only blocks do.
TEST(Crash, LeavesAStateThatTheFileHad) {
  for (const std::string label :
       {"", "agile, AES-192, SHA-1, 2 rounds", "AES-256, no rounds", "RC4, 40 bits"}) {
    Storm storm(label.empty() ? nullptr : &encryptedSample(label));
    const unsigned times = label.empty() ? 12 : 4;
    for (unsigned seed = 0; seed < times; ++seed) {
      for (const Disaster disaster : {Disaster::death, Disaster::powerFailure, Disaster::fullDisk}) {
        ASSERT_EQ(storm.run(seed, disaster), "")
            << label << ", disaster " << static_cast<int>(disaster) << ", seed " << seed;
      }
    }
    EXPECT_GT(storm.journalsApplied, static_cast<int>(times));
    EXPECT_GT(storm.refusals, static_cast<int>(times));
    EXPECT_GT(storm.diedTwice, static_cast<int>(times) / 4);
  }
}

}  // namespace
}  // namespace veltrano::access
