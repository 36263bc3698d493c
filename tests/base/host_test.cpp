#include "base/host.h"

#include <gtest/gtest.h>

#include "base/clock.h"
#include "base/files.h"

namespace veltrano {
namespace {

TEST(Host, NamesThisProgram) {
  EXPECT_EQ(hostApplicationName(), "base_test");
  const auto files = listFiles(libraryFolder());
  ASSERT_TRUE(files);
  EXPECT_NE(
      std::count_if(files->begin(), files->end(), [](const auto& f) { return f.stem() == "base_test"; }), 0);
}

TEST(Clock, TimeOfDayAndDateAgree) {
  const LocalTime before = localTime();
  const float seconds = secondsSinceMidnight();
  const LocalTime after = localTime();
  const auto ofDay = [](const LocalTime& t) {
    return static_cast<float>((t.hour * 60 + t.minute) * 60 + t.second);
  };
  EXPECT_GE(before.year, 2026);
  if (before.day == after.day) {
    EXPECT_GE(seconds, ofDay(before));
    EXPECT_LT(seconds, ofDay(after) + 1);
  }
}

}  // namespace
}  // namespace veltrano
