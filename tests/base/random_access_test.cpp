#include "base/files/random_access.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "base/files/identity.h"
#include "base/files/whole.h"
#include "tests/file_call_log.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using tests::TemporaryFolder;
using Bytes = std::vector<std::uint8_t>;

TEST(RandomAccessFile, ReadsAndWritesAtPlaces) {
  const TemporaryFolder folder;
  const auto opened = systemFiles().open(folder / "a", OpenMode::create);
  ASSERT_TRUE(opened);
  RandomAccessFile* const file = opened->get();
  EXPECT_TRUE(file->writeAt(3, Bytes{4, 5}));
  EXPECT_TRUE(file->writeAt(0, Bytes{1, 2, 3}));
  Bytes read(10, 0xEE);
  EXPECT_EQ(file->readAt(1, std::span(read).first(3)), 3U);
  EXPECT_EQ(file->readAt(4, std::span(read).subspan(3)), 1U) << "fewer at the end";
  EXPECT_EQ(file->readAt(100, std::span(read).subspan(4)), 0U);
  EXPECT_EQ(read, (Bytes{2, 3, 4, 5, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
  EXPECT_TRUE(file->resize(2));
  EXPECT_EQ(file->size(), 2U);
  EXPECT_TRUE(file->resize(4));
  EXPECT_EQ(readWholeFile(folder / "a"), std::string("\1\2\0\0", 4));
  const tests::FileCallLog log([](FileCall, const auto&) { return Failure::other; });
  EXPECT_FALSE(file->readAt(0, read));
  EXPECT_FALSE(file->writeAt(0, read));
  EXPECT_FALSE(file->resize(1));
  EXPECT_FALSE(file->sync());
  EXPECT_EQ(log.text(), "read a, write a, resize a, sync a");
}

TEST(RandomAccessFile, KeepsUsersApart) {
  const TemporaryFolder folder;
  const auto file = folder / "a";
  ASSERT_TRUE(replaceFile(file, "text"));
  constexpr auto reader = OpenMode::read, writer = OpenMode::write, creator = OpenMode::create;
  for (const auto& [one, other] : {std::pair{reader, reader},
                                   {reader, writer},
                                   {writer, reader},
                                   {writer, writer},
                                   {creator, creator}}) {
    const auto first = systemFiles().open(file, one);
    ASSERT_TRUE(first);
    const bool together = one == reader && other == reader;
    EXPECT_EQ(systemFiles().open(file, other).failure(), together ? Failure::none : Failure::inUse);
  }
}

TEST(RandomAccessFile, SaysWhyItDoesNotOpen) {
  const TemporaryFolder folder;
  EXPECT_EQ(systemFiles().open(folder / "missing", OpenMode::write).failure(), Failure::missing);
  EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
  for (const OpenMode mode : {OpenMode::read, OpenMode::write})
    EXPECT_FALSE(systemFiles().open(folder.path(), mode)) << "a folder";
  ASSERT_TRUE(replaceFile(folder / "b", ""));
  EXPECT_TRUE(systemFiles().remove(folder / "b"));
  EXPECT_FALSE(systemFiles().remove(folder / "b"));
}

TEST(LockFile, IsInUseWhileSomebodyHasItOpen) {
  const TemporaryFolder folder;
  const auto file = folder / "a.ldb";
  EXPECT_FALSE(systemFiles().lockFileInUse(file));
  ASSERT_TRUE(replaceFile(file, ""));
  EXPECT_FALSE(systemFiles().lockFileInUse(file)) << "without an entry";
  ASSERT_TRUE(replaceFile(file, std::string(64, 'x')));
  {
    const std::ifstream holder(file);
    EXPECT_TRUE(systemFiles().lockFileInUse(file));
  }
#ifdef _WIN32
  EXPECT_FALSE(systemFiles().lockFileInUse(file)) << "left over";
#endif
}

TEST(FileNumber, IsTheSameByEveryName) {
  const TemporaryFolder folder;
  EXPECT_FALSE(fileNumber(folder / "a"));
  ASSERT_TRUE(replaceFile(folder / "a", "a"));
  ASSERT_TRUE(replaceFile(folder / "b", "a"));
  std::filesystem::create_hard_link(folder / "a", folder / "the same");
  const auto number = fileNumber(folder / "a");
  ASSERT_TRUE(number);
  EXPECT_EQ(fileNumber(folder / "the same"), number);
  EXPECT_NE(fileNumber(folder / "b"), number);
}

}  // namespace
}  // namespace veltrano
