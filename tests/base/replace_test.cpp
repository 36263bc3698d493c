#include "base/files/replace.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <fstream>
#include <thread>

#include "base/files/whole.h"
#include "tests/base/user_limits.h"
#include "tests/file_call_log.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using tests::FileCallLog;
using tests::TemporaryFolder;
namespace fs = std::filesystem;

constexpr bool onWindows = fs::path::preferred_separator != '/';

std::size_t entriesOf(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

/// Answers `failure` to each call of that kind.
FileCallLog::Answer refusing(FileCall refused, Failure failure) {
  return [=](FileCall call, const fs::path&) { return call == refused ? failure : Failure::none; };
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

TEST(ReplaceFile, WhatMustSurviveAPowerCutIsSyncedBeforeItsRenaming) {
  const TemporaryFolder folder;
  const auto file = folder / "a";
  const auto calls = [&file](Durability durability) {
    const FileCallLog log;
    EXPECT_TRUE(replaceFile(file, "text", durability));
    return log.text();
  };
  EXPECT_EQ(calls(Durability::process), "create *, write *, rename a");
  const std::string folderToo = onWindows ? "" : ", sync folder of a";
  EXPECT_EQ(calls(Durability::power), "create *, write *, sync *, rename a" + folderToo);
  const FileCallLog log(refusing(FileCall::create, Failure::notAllowed));
  EXPECT_TRUE(replaceFile(file, "text", Durability::power));
  EXPECT_EQ(log.text(), "create *, open a, read a, write a, sync a");
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
  fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  {
    const tests::NoNewFilesIn anybody(folder / "sub");  // the superuser may write even this
    EXPECT_FALSE(replaceFile(file, "lost"));
  }
  EXPECT_EQ(readWholeFile(file), "kept");
  EXPECT_EQ(entriesOf(folder.path()), 2U);
  fs::permissions(file, fs::perms::owner_all);
}

TEST(ReplaceFile, WritesInPlaceWhereItCannotRename) {
  const std::pair<const char*, FileCallLog::Answer> obstacles[] = {
      {"the user may make no file there", refusing(FileCall::create, Failure::notAllowed)},
      {"another program holds the file", refusing(FileCall::rename, Failure::inUse)},
      {"the folder's files belong to others", refusing(FileCall::rename, Failure::notAllowed)},
      {"every name is taken", refusing(FileCall::create, Failure::exists)}};
  for (const auto& [label, answer] : obstacles) {
    const TemporaryFolder folder;
    ASSERT_TRUE(replaceFile(folder / "a", "old content"));
    fs::create_hard_link(folder / "a", folder / "the same file");
    for (const std::string_view content : {"content of this call", "short", "equal", "", "long again"}) {
      const std::string_view pieces[] = {content.substr(0, content.size() / 3),
                                         content.substr(content.size() / 3)};
      {
        const FileCallLog log(answer);
        EXPECT_TRUE(replaceFile(folder / "a", pieces)) << label;
      }
      EXPECT_EQ(readWholeFile(folder / "the same file"), content) << label;
    }
    EXPECT_EQ(entriesOf(folder.path()), 2U) << label;
  }
}

TEST(ReplaceFile, MakesANewFileInPlaceTooAndTakesItBack) {
  const TemporaryFolder folder;
  const auto file = folder / "new";
  const auto answer = [](bool alsoWriting) {
    return [alsoWriting](FileCall call, const fs::path& name) {
      const bool refused = call == FileCall::create ? name.filename() != "new" : call == FileCall::write;
      return refused && (call == FileCall::create || alsoWriting) ? Failure::notAllowed : Failure::none;
    };
  };
  {
    const FileCallLog log(answer(true));
    EXPECT_FALSE(replaceFile(file, "text"));
  }
  EXPECT_FALSE(fs::exists(file));
  const FileCallLog log(answer(false));
  EXPECT_TRUE(replaceFile(file, "text"));
  EXPECT_EQ(readWholeFile(file), "text");
}

TEST(ReplaceFile, AFailureInPlaceBringsTheOldContentBack) {
  const TemporaryFolder folder;
  const auto file = folder / "a";
  const std::string old = "the old content";
  for (const std::string_view last : {"end", "an end that is longer than the old content"}) {
    const std::string_view pieces[] = {"new", " and ", last};
    bool replaced = false;
    int failing = 0;
    for (; !replaced; ++failing) {
      ASSERT_TRUE(replaceFile(file, old));
      int changes = 0;
      const FileCallLog log([&](FileCall call, const fs::path&) {
        if (call == FileCall::create) return Failure::notAllowed;
        const bool change = call == FileCall::write || call == FileCall::resize || call == FileCall::read;
        return change && changes++ == failing ? Failure::other : Failure::none;
      });
      replaced = static_cast<bool>(replaceFile(file, pieces));
      if (!replaced) {
        watchFileCalls(nullptr);
        EXPECT_EQ(readWholeFile(file), old) << failing;
      }
    }
    EXPECT_GT(failing, 4);
  }
}

TEST(ReplaceFile, TakesAnotherNameWhenOneIsTakenAndDeletesNothingOfOthers) {
  const TemporaryFolder folder;
  std::vector<fs::path> names;
  const FileCallLog log([&names](FileCall call, const fs::path& name) {
    if (call != FileCall::create) return Failure::none;
    names.push_back(name);
    return names.size() < 4 ? Failure::exists : Failure::none;
  });
  EXPECT_TRUE(replaceFile(folder / "a", "text"));
  EXPECT_EQ(log.count(FileCall::remove), 0U);
  ASSERT_EQ(names.size(), 4U);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST(ReplaceFile, WaitsForWhatPassesAndNotForLong) {
  const TemporaryFolder folder;
  for (const int violations : {3, 1000}) {
    int left = violations;
    const FileCallLog log([&left](FileCall call, const fs::path&) {
      return call == FileCall::rename && left-- > 0 ? Failure::inUse : Failure::none;
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(replaceFile(folder / "a", "text"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(log.count(FileCall::rename), violations == 3 ? 4U : 6U);
    EXPECT_EQ(log.count(FileCall::open), violations == 3 ? 0U : 1U) << "in place";
  }
}

TEST(ReplaceFile, AReaderDoesNotStandInTheWay) {
  const TemporaryFolder folder;
  const auto file = folder / "a.txt";
  ASSERT_TRUE(replaceFile(file, "old"));
  for (const auto durability : {Durability::process, Durability::power}) {
    std::ifstream reader(file);  // as most programs open a file
    std::string word;
    reader >> word;
    EXPECT_TRUE(replaceFile(file, "new and longer", durability));
    EXPECT_EQ(readWholeFile(file), "new and longer");
  }
  EXPECT_EQ(entriesOf(folder.path()), 1U);
}

/// Only our own: some systems leave files of theirs when two replacements meet.
std::ptrdiff_t temporariesIn(const fs::path& folder) {
  return std::count_if(fs::directory_iterator(folder), fs::directory_iterator(), [](const auto& entry) {
    return entry.path().filename().string().starts_with(".veltrano-");
  });
}

TEST(ReplaceFile, WritersAtTheSameTimeAllSucceed) {
  const TemporaryFolder folder;
  const auto file = folder / "a.txt";
  const std::string contents[] = {std::string(5000, 'a'), std::string(9000, 'b')};
  ASSERT_TRUE(replaceFile(file, contents[0]));
  const auto write = [&](const std::string& content) {
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(replaceFile(file, content));
  };
  std::thread other(write, contents[1]);
  write(contents[0]);
  other.join();
  const auto text = readWholeFile(file);
  EXPECT_TRUE(text == contents[0] || text == contents[1]);
  EXPECT_EQ(temporariesIn(folder.path()), 0);
}

#ifndef _WIN32
TEST(ReplaceFile, WhereTheUserMayNotMakeFilesWritersTakeTurns) {
  const TemporaryFolder folder;
  const auto file = folder / "a";
  ASSERT_TRUE(replaceFile(file, "old"));
  const tests::NoNewFilesIn unwritable(folder.path());
  if (!unwritable.enforced()) GTEST_SKIP() << "the superuser cannot become another user";
  EXPECT_TRUE(replaceFile(file, "new content"));
  EXPECT_EQ(readWholeFile(file), "new content");
  EXPECT_FALSE(replaceFile(folder / "b", "new content"));
  EXPECT_EQ(entriesOf(folder.path()), 1U);
  const auto write = [&](char letter) {
    for (std::size_t round = 0; round < 400; ++round)
      replaceFile(file, std::string(1 + round * 37 % 5000, letter));
  };
  std::thread other(write, 'o');
  write('m');
  other.join();
  const std::string left = readWholeFile(file).value();
  EXPECT_TRUE(!left.empty() && left.find_first_not_of(left[0]) == std::string::npos);
}

TEST(ReplaceFile, TheFileOfSomebodyElseStaysHis) {
  const TemporaryFolder folder;
  const auto file = folder / "a";
  constexpr uid_t somebody = 1;
  constexpr uid_t nobody = 65534;
  ASSERT_TRUE(replaceFile(file, "old"));
  fs::permissions(file, fs::perms(0666));
  fs::permissions(folder.path(), fs::perms(0777));
  if (::geteuid() != 0 || ::chown(file.c_str(), somebody, somebody) != 0)
    GTEST_SKIP() << "only the superuser can give files away";
  ASSERT_EQ(::seteuid(nobody), 0);
  const bool replaced = static_cast<bool>(replaceFile(file, "new content"));
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_TRUE(replaced);
  EXPECT_EQ(readWholeFile(file), "new content");
  struct stat status = {};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, somebody);
  EXPECT_EQ(entriesOf(folder.path()), 1U);
}

TEST(ReplaceFile, DevicesAreWrittenToAndAPipeWithoutAnotherEndHangsNobody) {
  EXPECT_FALSE(replaceFile("/dev/full", "text"));
  EXPECT_TRUE(replaceFile("/dev/null", "text"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(replaceFile(folder / "pipe", "text"));
  EXPECT_EQ(readWholeFile(folder / "pipe").value_or(""), "");
}

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
  const TemporaryFolder folder;
  ASSERT_TRUE(replaceFile(folder / "a", "old"));
  for (const Failure creation : {Failure::none, Failure::notAllowed}) {  // beside the file and in place
    const FileCallLog log(refusing(FileCall::create, creation));
    for (const char* name : {"a", "b"}) {
      const tests::DiskLimit limit(4096);
      EXPECT_FALSE(replaceFile(folder / name, std::string(4097, 'x')));
    }
  }
  EXPECT_EQ(readWholeFile(folder / "a"), "old");
  EXPECT_EQ(entriesOf(folder.path()), 1U);
}

#endif

}  // namespace
}  // namespace veltrano
