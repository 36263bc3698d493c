#include "base/files/replace.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <set>
#include <thread>

#include "base/files/whole.h"
#include "tests/base/user_limits.h"
#include "tests/file_call_log.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using tests::FileCallLog;
namespace fs = std::filesystem;

class ReplaceFile : public testing::Test {
 protected:
  [[nodiscard]] std::string content(const char* name = "a") const {
    return readWholeFile(folder / name).value_or("(no file)");
  }
  [[nodiscard]] std::ptrdiff_t entries() const {
    return std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator());
  }

  const tests::TemporaryFolder folder;
  const fs::path file = folder / "a";
};

/// Answers `failure` to each call of that kind.
FileCallLog::Answer refusing(FileCall refused, Failure failure) {
  return [=](FileCall call, const fs::path&) { return call == refused ? failure : Failure::none; };
}

TEST_F(ReplaceFile, WhatMustSurviveAPowerCutIsSyncedBeforeItsRenaming) {
  const auto calls = [this](Durability durability, FileCallLog::Answer answer) {
    const FileCallLog log(std::move(answer));
    EXPECT_TRUE(replaceFile(file, "text", durability));
    return log.text();
  };
  EXPECT_EQ(calls(Durability::process, {}), "create *, write *, rename a");
  const std::string folderToo = fs::path::preferred_separator == '/' ? ", sync folder of a" : "";
  EXPECT_EQ(calls(Durability::power, {}), "create *, write *, sync *, rename a" + folderToo);
  EXPECT_EQ(calls(Durability::power, refusing(FileCall::create, Failure::notAllowed)),
            "create *, open a, read a, write a, sync a");
}

TEST_F(ReplaceFile, RefusalsKeepWhatWasThere) {
  ASSERT_TRUE(replaceFile(file, "kept"));
  fs::create_directory(folder / "sub");
  for (const fs::path& name : {folder / "no such folder/x", file / "x", fs::path(), folder / "sub"})
    EXPECT_FALSE(replaceFile(name, "lost")) << name;
  fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  {
    const tests::NoNewFilesIn anybody(folder / "sub");  // the superuser may write even this
    EXPECT_FALSE(replaceFile(file, "lost"));
  }
  EXPECT_EQ(content(), "kept");
  EXPECT_EQ(entries(), 2);
  fs::permissions(file, fs::perms::owner_all);
}

class FailingReplaceFile : public ReplaceFile {
 protected:
  /// Replaces the file once for each call that it takes; that call fails. Without `old` there is no file yet.
  void failEachCall(std::span<const std::string_view> pieces, const char* old, Failure creation,
                    Failure reason) {
    std::string expected;
    for (const std::string_view piece : pieces) expected += piece;
    std::optional<FileCall> failed = FileCall::create;
    for (int failing = 0; failed; ++failing) {
      for (const char* name : {"a", "linked"}) fs::remove(folder / name);
      if (old != nullptr) {
        ASSERT_TRUE(replaceFile(file, old));
        fs::create_hard_link(file, folder / "linked");
      }
      failed.reset();
      int calls = 0;
      bool replaced = false;
      {
        const FileCallLog log([&](FileCall call, const fs::path& name) {
          if (call == FileCall::create && name.filename() != "a" && creation != Failure::none)
            return creation;
          if (calls++ != failing) return Failure::none;
          failed = call;
          return reason;
        });
        replaced = static_cast<bool>(replaceFile(file, pieces));
      }
      // In place, if no new file can be put there; a full disk would not take it in place either.
      const bool passes =
          !failed || failed == FileCall::rename || (failed == FileCall::open && reason == Failure::inUse) ||
          (failed == FileCall::create && creation == Failure::none && reason != Failure::full);
      ASSERT_EQ(replaced, passes) << failing;
      ASSERT_EQ(content(), replaced ? expected : old == nullptr ? "(no file)" : old) << failing;
      ASSERT_EQ(entries(), (fs::exists(file) ? 1 : 0) + (old == nullptr ? 0 : 1)) << failing;
      if (old != nullptr && creation != Failure::none) {
        ASSERT_EQ(content("linked"), content()) << failing;
      }
    }
  }
};

TEST_F(FailingReplaceFile, HasTheOldContentOrTheNewAndLeavesNothingBesideIt) {
  constexpr std::string_view longer[] = {
      "new", {"\0\r\n and ", 8}, "an end that is longer than the old content"};
  constexpr std::string_view shorter[] = {"new", "", "\r"};
  for (const std::span<const std::string_view> pieces : {std::span(longer), std::span(shorter)})
    for (const char* old : {static_cast<const char*>(nullptr), "the old content"})
      for (const Failure creation : {Failure::none, Failure::notAllowed})
        for (const Failure reason :
             {Failure::exists, Failure::inUse, Failure::notAllowed, Failure::full, Failure::other})
          failEachCall(pieces, old, creation, reason);
}

TEST_F(ReplaceFile, TakesAnotherNameWhenOneIsTakenAndDeletesNothingOfOthers) {
  std::set<fs::path> names;
  const FileCallLog log([&names](FileCall call, const fs::path& name) {
    if (call == FileCall::create) names.insert(name);
    return call == FileCall::create && names.size() < 4 ? Failure::exists : Failure::none;
  });
  EXPECT_TRUE(replaceFile(file, "text"));
  EXPECT_EQ(names.size(), 4U);
  EXPECT_EQ(log.text(), "create *, create *, create *, create *, write *, rename a");
}

TEST_F(ReplaceFile, WaitsForWhatPassesAndNotForLong) {
  for (const int violations : {3, 1000}) {
    int left = violations;
    const FileCallLog log([&left](FileCall call, const fs::path&) {
      return call == FileCall::rename && left-- > 0 ? Failure::inUse : Failure::none;
    });
    EXPECT_TRUE(replaceFile(file, "text"));
    EXPECT_EQ(log.count(FileCall::rename), violations == 3 ? 4U : 6U);
    EXPECT_EQ(log.count(FileCall::open), violations == 3 ? 0U : 1U) << "in place";
  }
}

TEST_F(ReplaceFile, WritersAtTheSameTimeAllSucceed) {
  const std::string contents[] = {std::string(5000, 'a'), std::string(9000, 'b')};
  const auto write = [&](const std::string& text) {
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(replaceFile(file, text));
  };
  std::thread other(write, contents[1]);
  write(contents[0]);
  other.join();
  EXPECT_TRUE(content() == contents[0] || content() == contents[1]);
  for (const auto& entry : fs::directory_iterator(folder.path()))  // some systems leave files of their own
    EXPECT_FALSE(entry.path().filename().string().starts_with(".veltrano-"));
}

#ifndef _WIN32
TEST_F(ReplaceFile, WhereTheUserMayNotMakeFilesWritersTakeTurns) {
  ASSERT_TRUE(replaceFile(file, "old"));
  const tests::NoNewFilesIn unwritable(folder.path());
  if (!unwritable.enforced()) GTEST_SKIP() << "the superuser cannot become another user";
  EXPECT_FALSE(replaceFile(folder / "b", "new content"));
  EXPECT_EQ(entries(), 1);
  const auto write = [&](char letter) {
    for (std::size_t i = 0; i < 400; ++i)
      EXPECT_TRUE(replaceFile(file, std::string(1 + i * 37 % 5000, letter)));
  };
  std::thread other(write, 'o');
  write('m');
  other.join();
  const std::string left = content();
  EXPECT_EQ(left, std::string(1 + 399 * 37 % 5000, left[0]));
}

TEST_F(ReplaceFile, TheFileOfSomebodyElseStaysHis) {
  constexpr uid_t somebody = 1, nobody = 65534;
  ASSERT_TRUE(replaceFile(file, "old"));
  fs::permissions(file, fs::perms(0666));
  fs::permissions(folder.path(), fs::perms(0777));
  if (::geteuid() != 0 || ::chown(file.c_str(), somebody, somebody) != 0)
    GTEST_SKIP() << "only the superuser can give files away";
  ASSERT_EQ(::seteuid(nobody), 0);
  const bool replaced = static_cast<bool>(replaceFile(file, "new content"));
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_TRUE(replaced && content() == "new content");
  struct stat status = {};
  EXPECT_TRUE(::stat(file.c_str(), &status) == 0 && status.st_uid == somebody);
}

TEST_F(ReplaceFile, DevicesAreWrittenToAndAPipeWithoutAnotherEndHangsNobody) {
  EXPECT_FALSE(replaceFile("/dev/full", "text"));
  EXPECT_TRUE(replaceFile("/dev/null", "text"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_FALSE(replaceFile(file, "text"));
  EXPECT_EQ(readWholeFile(file).value_or(""), "");
}

TEST_F(ReplaceFile, LinksAndRightsSurvive) {
  constexpr auto own = fs::perms::owner_read | fs::perms::owner_write;
  ASSERT_TRUE(replaceFile(file, "old"));
  fs::permissions(file, own);
  fs::create_symlink("a", folder / "link");
  fs::create_symlink("absent", folder / "dangling");
  ASSERT_TRUE(replaceFile(folder / "link", "new") && replaceFile(folder / "dangling", "made"));
  EXPECT_TRUE(fs::is_symlink(folder / "link") && fs::status(file).permissions() == own);
  EXPECT_EQ(content() + content("absent"), "newmade");
}

TEST_F(ReplaceFile, AFullDiskLosesNothing) {
  ASSERT_TRUE(replaceFile(file, "old"));
  for (const Failure creation : {Failure::none, Failure::notAllowed}) {  // beside the file and in place
    const FileCallLog log(refusing(FileCall::create, creation));
    const tests::DiskLimit limit(4096);
    for (const char* name : {"a", "b"}) EXPECT_FALSE(replaceFile(folder / name, std::string(4097, 'x')));
  }
  EXPECT_EQ(content(), "old");
  EXPECT_EQ(entries(), 1);
}
#endif

}  // namespace
}  // namespace veltrano
