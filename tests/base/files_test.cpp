#include "base/os/files.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using tests::TemporaryFolder;
namespace fs = std::filesystem;

std::size_t entriesOf(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(ReadIdentified, StopsAtTheLimitOrTheEnd) {
  const TemporaryFolder folder;
  replaceFile(folder / "a", "0123456789");
  EXPECT_EQ(readIdentified(folder / "a", 4)->text, "0123");
  EXPECT_EQ(readIdentified(folder / "a", 10)->text, "0123456789");
  EXPECT_EQ(readIdentified(folder / "a", std::size_t{1} << 30)->text, "0123456789");
  EXPECT_EQ(readIdentified(folder / "a", 4)->identity, fileIdentity(folder / "a"));
  EXPECT_FALSE(readIdentified(folder / "missing", 4));
  EXPECT_FALSE(readIdentified(folder.path(), 4));
}

TEST(ReplaceFile, PutsAllPiecesAndLeavesNothingElse) {
  const TemporaryFolder folder;
  const auto file = folder / u"d\u00E9j\u00E0 vu.bin";
  for (const auto durability : {Durability::process, Durability::power}) {
    const std::string_view pieces[] = {"one", std::string_view("\0\r\n", 3), "", "two"};
    ASSERT_TRUE(replaceFile(file, pieces, durability));
    EXPECT_EQ(readWholeFile(file), std::string("one\0\r\ntwo", 9));
    ASSERT_TRUE(replaceFile(file, "short", durability));
    EXPECT_EQ(readWholeFile(file), "short");
  }
  EXPECT_EQ(entriesOf(folder.path()), 1U);
}

TEST(ReplaceFile, RefusalsKeepWhatWasThere) {
  const TemporaryFolder folder;
  const auto file = folder / "kept.txt";
  ASSERT_TRUE(replaceFile(file, "kept"));
  EXPECT_FALSE(replaceFile(folder / "no such folder/x", "lost"));
  EXPECT_FALSE(replaceFile(folder / "kept.txt/x", "lost"));
  EXPECT_FALSE(replaceFile({}, "lost"));
  fs::create_directory(folder / "sub");
  EXPECT_FALSE(replaceFile(folder / "sub", "lost"));
  EXPECT_EQ(readWholeFile(file), "kept");
  EXPECT_EQ(entriesOf(folder.path()), 2U);
}

#ifndef _WIN32
TEST(ReplaceFile, LinksAndRightsSurvive) {
  const TemporaryFolder folder;
  ASSERT_TRUE(replaceFile(folder / "real.txt", "old"));
  fs::permissions(folder / "real.txt", fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real.txt", folder / "link.txt");
  fs::create_symlink("absent.txt", folder / "dangling.txt");
  ASSERT_TRUE(replaceFile(folder / "link.txt", "new"));
  ASSERT_TRUE(replaceFile(folder / "dangling.txt", "made"));
  EXPECT_TRUE(fs::is_symlink(folder / "link.txt"));
  EXPECT_EQ(readWholeFile(folder / "real.txt"), "new");
  EXPECT_EQ(readWholeFile(folder / "absent.txt"), "made");
  EXPECT_EQ(fs::status(folder / "real.txt").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(ReplaceFile, AFullDiskLosesNothing) {
  EXPECT_FALSE(replaceFile("/dev/full", "text"));
  EXPECT_TRUE(replaceFile("/dev/null", "text"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}
#endif

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
    EXPECT_TRUE(output->write(text));
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

TEST(FileIdentity, TellsAChangedFile) {
  const TemporaryFolder folder;
  const auto file = folder / "metrics.afm";
  EXPECT_FALSE(fileIdentity(file));
  EXPECT_FALSE(fileIdentity(folder.path()));
  ASSERT_TRUE(replaceFile(file, "one"));
  const auto first = fileIdentity(file);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->size, 3U);
  EXPECT_EQ(fileIdentity(file), first);
  EXPECT_LT(std::abs(fileClockNow() - first->modified), 60'000'000'000);
  ASSERT_TRUE(replaceFile(file, "three"));
  EXPECT_NE(fileIdentity(file), first);
}

TEST(ListFiles, IsSortedAndLeavesFoldersOut) {
  const TemporaryFolder folder;
  for (const char* name : {"b.afm", "A.afm", "a.afm"}) {
    ASSERT_TRUE(replaceFile(folder / name, name));
  }
  fs::create_directory(folder / "aa");
  const auto files = listFiles(folder.path());
  ASSERT_TRUE(files);
  EXPECT_TRUE(std::is_sorted(files->begin(), files->end()));
  EXPECT_EQ(std::count(files->begin(), files->end(), fs::path("aa")), 0);
  EXPECT_EQ(std::count(files->begin(), files->end(), fs::path("b.afm")), 1);
  EXPECT_FALSE(listFiles(folder / "none"));
}

TEST(Paths, EmbeddedZerosNameNoFile) {
  EXPECT_TRUE(pathFromAnsi(std::string_view("a\0b", 3)).empty());
  EXPECT_TRUE(pathFromUtf16(std::u16string_view(u"a\0b", 3)).empty());
  EXPECT_EQ(pathToAnsi(pathFromAnsi("\xE9t\xE9.pdf")), "\xE9t\xE9.pdf");
  EXPECT_EQ(pathFromUtf8("\xC3\xA9"), fs::path(u"\u00E9"));
}

}  // namespace
}  // namespace veltrano
