#include "base/files/output.h"

#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "tests/base/user_limits.h"
#include "tests/file_call_log.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using tests::TemporaryFolder;

TEST(OutputFile, EachWriteIsInTheFileAtOnce) {
  const TemporaryFolder folder;
  const auto file = folder / "lines.txt";
  ASSERT_TRUE(replaceFile(file, "old content that must go"));
  auto output = OutputFile::create(file);
  ASSERT_TRUE(output);
  EXPECT_EQ(readWholeFile(file), "");
  std::string expected;
  for (const std::size_t length : {std::size_t{10}, std::size_t{0}, std::size_t{200'000}, std::size_t{1}}) {
    const std::string text(length, 'x');
    const tests::FileCallLog log;
    EXPECT_TRUE(output->write(text));
    EXPECT_EQ(log.text(), "write lines.txt");
    expected += text;
    ASSERT_EQ(readWholeFile(file), expected);
  }
  OutputFile moved = std::move(*output);
  moved.write("end");
  EXPECT_EQ(readWholeFile(file), expected + "end");
}

TEST(OutputFile, AFileBeingWrittenCannotBeTakenAway) {
  const TemporaryFolder folder;
  auto first = OutputFile::create(folder / "a.txt");
  ASSERT_TRUE(first);
  first->write("first");
  EXPECT_FALSE(OutputFile::create(folder / "a.txt"));
  EXPECT_FALSE(OutputFile::create(folder / "none/a.txt"));
  first.reset();
  EXPECT_EQ(readWholeFile(folder / "a.txt"), "first");
  EXPECT_TRUE(OutputFile::create(folder / "a.txt"));
}

TEST(OutputFile, TheOldFileStaysUntilTheNewOneIsOpen) {
  const TemporaryFolder folder;
  const auto file = folder / "old.txt";
  ASSERT_TRUE(replaceFile(file, "old"));
  for (const FileCall refused : {FileCall::open, FileCall::resize}) {
    const tests::FileCallLog log(
        [refused](FileCall call, const auto&) { return call == refused ? Failure::other : Failure::none; });
    EXPECT_FALSE(OutputFile::create(file));
    EXPECT_EQ(log.count(FileCall::remove), 0U);
  }
  EXPECT_EQ(readWholeFile(file), "old");
  {
    const tests::NoNewFilesIn unwritable(folder.path());
    auto output = OutputFile::create(file);
    ASSERT_TRUE(output) << "a file that the user may write, in a folder where he may not make one";
    output->write("new");
    EXPECT_FALSE(OutputFile::create(folder / "another.txt") && unwritable.enforced());
  }
  EXPECT_EQ(readWholeFile(file), "new");
}

#ifndef _WIN32
TEST(OutputFile, SaysWhichTextTheDiskHadNoRoomFor) {
  const TemporaryFolder folder;
  auto output = OutputFile::create(folder / "a.txt");
  ASSERT_TRUE(output);
  {
    const tests::DiskLimit limit(1000);
    EXPECT_TRUE(output->write(std::string(900, 'a')));
    EXPECT_FALSE(output->write(std::string(200, 'b')));
    EXPECT_FALSE(output->write("c"));
  }
  EXPECT_TRUE(output->write("d"));
  EXPECT_EQ(readWholeFile(folder / "a.txt"), std::string(900, 'a') + std::string(100, 'b') + "d");
}
#endif

}  // namespace
}  // namespace veltrano
