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
  const auto shared = folder.path() / "share/veltranoframework/metrics";
  setMetricsFolder((folder.path() / "include/veltrano/installed.h/../../../share/veltranoframework/metrics")
                       .string()
                       .c_str());
  std::filesystem::create_directories(shared);
  EXPECT_EQ(metricsFolder(), libraryFolder()) << "an empty folder has no metrics";
  ASSERT_TRUE(replaceFile(shared / "Courier.afm", ""));
  // On Windows they always lie beside the library.
  const bool portable = std::filesystem::path::preferred_separator == '/';
  EXPECT_EQ(metricsFolder(), portable ? shared : libraryFolder());
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
  const double hundredths = std::round(static_cast<double>(seconds) * 100);
  EXPECT_EQ(seconds, static_cast<float>(hundredths / 100)) << "steps of a hundredth";
}

}  // namespace
}  // namespace veltrano
