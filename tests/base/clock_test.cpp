#include "base/os/clock.h"

#include <gtest/gtest.h>

#include <cmath>

#include "veltrano/version.h"

namespace veltrano {
namespace {

TEST(Clock, TimeOfDayAndDateAgree) {
  const LocalTime before = localTime();
  const float seconds = secondsSinceMidnight();
  const LocalTime after = localTime();
  const auto ofDay = [](const LocalTime& t) {
    return static_cast<float>((t.hour * 60 + t.minute) * 60 + t.second);
  };
  EXPECT_GE(before.year, 2026);
  EXPECT_TRUE(before.day != after.day || (seconds >= ofDay(before) && seconds < ofDay(after) + 1)) << seconds;
  const double hundredths = std::round(static_cast<double>(seconds) * 100);
  EXPECT_EQ(seconds, static_cast<float>(hundredths / 100)) << "steps of a hundredth";
}

TEST(Version, IsTheProjects) {
  const auto dotted = [](int number) { return std::to_string(number) + "."; };
  EXPECT_EQ(dotted(versionMajor) + dotted(versionMinor) + dotted(versionPatch), VELTRANO_PROJECT_VERSION ".");
  EXPECT_STREQ(versionText, VELTRANO_PROJECT_VERSION);
}

}  // namespace
}  // namespace veltrano
