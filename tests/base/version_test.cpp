#include "veltrano/version.h"

#include <gtest/gtest.h>

#include <string>

namespace veltrano {
namespace {

TEST(Version, IsTheProjects) {
  EXPECT_STREQ(versionText, VELTRANO_PROJECT_VERSION);
  EXPECT_EQ(
      std::to_string(versionMajor) + "." + std::to_string(versionMinor) + "." + std::to_string(versionPatch),
      VELTRANO_PROJECT_VERSION);
}

}  // namespace
}  // namespace veltrano
