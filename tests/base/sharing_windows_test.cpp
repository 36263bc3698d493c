// What other programs that have a file open allow.

#include <windows.h>

#include <gtest/gtest.h>

#include <tuple>

#include "base/files/output.h"
#include "base/files/whole.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

/// What a program has a file open for, what it shares, and whether the file can be replaced and emptied.
constexpr std::tuple<const char*, DWORD, DWORD, bool, bool> openings[] = {
    {"a reader", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, true, true},
    {"a reader that allows anything", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
     true, true},
    {"an editor", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, true, false},
    {"a reader that allows readers", GENERIC_READ, FILE_SHARE_READ, false, false},
    {"one that wants it for itself", GENERIC_READ, 0, false, false}};

TEST(SharedFiles, AreReplacedUnlessTheOtherForbidsIt) {
  for (const auto& [label, access, share, replaced, emptied] : openings) {
    const tests::TemporaryFolder folder;
    for (const bool asOutput : {false, true}) {
      const auto file = folder / (asOutput ? "output" : "replaced");
      ASSERT_TRUE(replaceFile(file, "the old content"));
      const HANDLE other = CreateFileW(file.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
      ASSERT_NE(other, INVALID_HANDLE_VALUE) << label;
      bool done = false;
      if (asOutput) {
        auto output = OutputFile::create(file);
        done = output && output->write("new");
      } else {
        done = static_cast<bool>(replaceFile(file, "new", Durability::power));
      }
      CloseHandle(other);
      EXPECT_EQ(done, asOutput ? emptied : replaced) << label;
      EXPECT_EQ(readWholeFile(file), done ? "new" : "the old content") << label;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2) << label;
  }
}

TEST(SharedFiles, StayHiddenAndAreNotDeletedForAnOutputFile) {
  const tests::TemporaryFolder folder;
  const auto file = folder / "a";
  ASSERT_TRUE(replaceFile(file, "old"));
  // Deleting such a file would succeed, making another one of that name would not.
  const HANDLE reader = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
  EXPECT_FALSE(OutputFile::create(file));
  CloseHandle(reader);
  EXPECT_EQ(readWholeFile(file), "old");
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_HIDDEN);
  ASSERT_TRUE(replaceFile(file, "new"));
  EXPECT_NE(GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0U);
  EXPECT_TRUE(OutputFile::create(file)) << "nor does that keep an output file from being opened";
}

}  // namespace
}  // namespace veltrano
