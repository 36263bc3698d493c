// Reading files, files that are written piece by piece, and files that are used at random places.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "base/files/identity.h"
#include "base/files/output.h"
#include "base/files/random_access.h"
#include "base/files/whole.h"
#include "tests/base/user_limits.h"
#include "tests/file_call_log.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class Files : public testing::Test {
 protected:
  const tests::TemporaryFolder folder;
  const fs::path file = folder / "a";
};
using OutputFiles = Files;
using RandomAccessFiles = Files;

/// Nowhere the same at two places.
std::string numbers(std::size_t size) {
  std::string text;
  while (text.size() < size) text += std::to_string(text.size()) + ",";
  return text;
}

TEST_F(OutputFiles, HaveEachWriteAtOnceAndCannotBeTakenAway) {
  ASSERT_TRUE(replaceFile(file, "old content that must go"));
  auto output = OutputFile::create(file);
  ASSERT_TRUE(output);
  EXPECT_EQ(readWholeFile(file), "");
  std::string expected;
  for (const std::string& text :
       {std::string("first"), std::string(), numbers(200'000), std::string("end")}) {
    const tests::FileCallLog log;
    EXPECT_TRUE(output->write(text));
    EXPECT_EQ(log.text(), "write a");
    expected += text;
    ASSERT_EQ(readWholeFile(file), expected);
  }
  EXPECT_FALSE(OutputFile::create(file));
  EXPECT_FALSE(OutputFile::create(folder / "none/a.txt"));
  output.reset();
  EXPECT_EQ(readWholeFile(file), expected);
  EXPECT_TRUE(OutputFile::create(file));
}

TEST_F(OutputFiles, LeaveTheOldFileUntilTheNewOneIsOpen) {
  ASSERT_TRUE(replaceFile(file, "old"));
  for (const FileCall refused : {FileCall::open, FileCall::resize}) {
    const tests::FileCallLog log(
        [refused](FileCall call, const auto&) { return call == refused ? Failure::other : Failure::none; });
    EXPECT_FALSE(OutputFile::create(file));
    EXPECT_EQ(log.count(FileCall::remove), 0U);
  }
  EXPECT_EQ(readWholeFile(file), "old");
  const tests::NoNewFilesIn unwritable(folder.path());
  EXPECT_TRUE(OutputFile::create(file))
      << "a file that the user may write, in a folder where he may not make one";
  EXPECT_FALSE(OutputFile::create(folder / "another") && unwritable.enforced());
}

#ifndef _WIN32
TEST_F(OutputFiles, SayWhichTextTheDiskHadNoRoomFor) {
  auto output = OutputFile::create(file);
  {
    const tests::DiskLimit limit(1000);
    EXPECT_TRUE(output->write(std::string(900, 'a')));
    EXPECT_FALSE(output->write(std::string(200, 'b')));
    EXPECT_FALSE(output->write("c"));
  }
  EXPECT_TRUE(output->write("d"));
  EXPECT_EQ(readWholeFile(file), std::string(900, 'a') + std::string(100, 'b') + "d");
}
#endif

TEST_F(RandomAccessFiles, ReadAndWriteAtPlaces) {
  const auto opened = systemFiles().open(file, OpenMode::create);
  ASSERT_TRUE(opened);
  RandomAccessFile& a = **opened;
  EXPECT_TRUE(a.writeAt(3, Bytes{4, 5}) && a.writeAt(0, Bytes{1, 2, 3}));
  Bytes read(6, 0xEE);
  EXPECT_EQ(a.readAt(1, std::span(read).first(3)), 3U);
  EXPECT_EQ(a.readAt(4, std::span(read).subspan(3)), 1U) << "fewer at the end";
  EXPECT_EQ(a.readAt(100, std::span(read).subspan(4)), 0U);
  EXPECT_EQ(read, (Bytes{2, 3, 4, 5, 0xEE, 0xEE}));
  EXPECT_TRUE(a.resize(2) && a.size() == 2U && a.resize(4));
  EXPECT_EQ(readWholeFile(file), std::string("\1\2\0\0", 4));
  const tests::FileCallLog log([](FileCall, const auto&) { return Failure::other; });
  EXPECT_FALSE(a.readAt(0, read) || a.writeAt(0, read) || a.resize(1) || a.sync());
  EXPECT_EQ(log.text(), "read a, write a, resize a, sync a");
}

TEST_F(RandomAccessFiles, KeepUsersApartAndSayWhyTheyDoNotOpen) {
  constexpr auto reader = OpenMode::read, writer = OpenMode::write, creator = OpenMode::create;
  const auto failure = [this](OpenMode mode) { return systemFiles().open(file, mode).failure(); };
  EXPECT_EQ(failure(writer), Failure::missing);
  EXPECT_FALSE(fs::exists(file));
  EXPECT_FALSE(systemFiles().open(folder.path(), reader) || systemFiles().open(folder.path(), writer));
  for (const auto& [one, other] :
       {std::pair{creator, creator}, {reader, writer}, {writer, reader}, {writer, writer}}) {
    const auto first = systemFiles().open(file, one);
    ASSERT_TRUE(first);
    EXPECT_EQ(failure(other), Failure::inUse);
  }
  const auto first = systemFiles().open(file, reader);
  EXPECT_EQ(failure(reader), Failure::none);
}

TEST_F(RandomAccessFiles, ALockFileIsInUseWhileSomebodyHasItOpen) {
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

TEST_F(Files, AreTheSameByEveryName) {
  EXPECT_FALSE(fileNumber(file));
  for (const char* name : {"a", "b"}) ASSERT_TRUE(replaceFile(folder / name, "a"));
  fs::create_hard_link(file, folder / "the same");
  EXPECT_TRUE(fileNumber(file) && fileNumber(folder / "the same") == fileNumber(file));
  EXPECT_NE(fileNumber(folder / "b"), fileNumber(file));
}

TEST_F(Files, AreReadWholeOrToALimit) {
  const std::string content = numbers((std::size_t{1} << 24) + 5);  // more than one read
  ASSERT_TRUE(replaceFile(file, content));
  EXPECT_TRUE(readWholeFile(file) == content);
  EXPECT_TRUE(readFileStart(file, 70'000) == content.substr(0, 70'000));
  EXPECT_EQ(readIdentified(file, 4)->text, "0,2,");
  EXPECT_TRUE(readIdentified(file, std::size_t{1} << 30)->text == content);
  EXPECT_EQ(readIdentified(file, 4)->identity, fileIdentity(file));
  for (const auto& name : {folder.path(), folder / "missing", folder / "missing/a", fs::path()})
    EXPECT_FALSE(readWholeFile(name) || readIdentified(name, 4)) << name;
}

TEST_F(Files, AreListedByNameWithoutFolders) {
  for (const char* name : {"b.afm", "A.afm", "a.afm"}) ASSERT_TRUE(replaceFile(folder / name, name));
  fs::create_directory(folder / "aa");
  const auto files = listFiles(folder.path()).value();
  EXPECT_TRUE(std::is_sorted(files.begin(), files.end()));
  EXPECT_EQ(std::count(files.begin(), files.end(), "aa"), 0);
  EXPECT_EQ(std::count(files.begin(), files.end(), "b.afm"), 1);
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
