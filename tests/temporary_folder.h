#ifndef VELTRANO_TESTS_TEMPORARY_FOLDER_H
#define VELTRANO_TESTS_TEMPORARY_FOLDER_H

// A folder of a test's own, removed with everything in it when the test ends.

#include <filesystem>
#include <random>
#include <string>

namespace veltrano::tests {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    // A blank and an accent: names that users have must work everywhere.
    path_ = std::filesystem::temp_directory_path() /
            std::filesystem::path(u"veltrano t\u00E9st " +
                                  std::filesystem::path(std::to_string(random())).u16string());
    std::filesystem::create_directories(path_);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace veltrano::tests

#endif
