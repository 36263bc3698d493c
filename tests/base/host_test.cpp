#include "base/os/host.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/files/whole.h"
#include "base/os/clock.h"
#include "tests/temporary_folder.h"
#include "veltrano/installed.h"
#include "veltrano/version.h"

namespace veltrano {
namespace {

using tests::TemporaryFolder;

TEST(Version, IsTheProjects) {
  EXPECT_STREQ(versionText, VELTRANO_PROJECT_VERSION);
  const std::string parts =
      std::to_string(versionMajor) + "." + std::to_string(versionMinor) + "." + std::to_string(versionPatch);
  EXPECT_EQ(parts, VELTRANO_PROJECT_VERSION);
}

TEST(Host, FindsMetricsOfAnInstallationWhereNoneLieBesideTheProgram) {
  EXPECT_EQ(metricsFolder(), libraryFolder());
  const TemporaryFolder folder;
  const auto shared = folder / "share/metrics";
  setMetricsFolder((folder / "include/veltrano/installed.h/../../../share/metrics").string().c_str());
  std::filesystem::create_directories(shared);
  EXPECT_EQ(metricsFolder(), libraryFolder()) << "an empty folder has no metrics";
  ASSERT_TRUE(replaceFile(shared / "Courier.afm", ""));
  // On Windows they always lie beside the library.
  EXPECT_EQ(metricsFolder(), std::filesystem::path::preferred_separator == '/' ? shared : libraryFolder());
}

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

}  // namespace
}  // namespace veltrano
