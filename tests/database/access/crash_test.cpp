#include <gtest/gtest.h>

#include "harness.h"

namespace veltrano::access {
namespace {

// A file with some records, and the model of it.
struct Base {
  explicit Base(const std::filesystem::path& file) {
    makeDatabase(file, {peopleTable()});
    OpenedFile opened(file);
    const auto recordset = opened.table("People");
    RandomWork work(99);
    for (int i = 0; i < 60; ++i) {
      Model after;
      if (work.step(*recordset, model, after)) {
        model = std::move(after);
      }
    }
  }
  Model model;
};

// Works on a copy of the base until the file system fails; `before` and `after` are the models around the
// last step.
void workUntilFailure(const std::filesystem::path& file, FailingFiles& files, unsigned seed, Model& before,
                      Model& after) {
  OpenedFile opened(file, &files);
  ASSERT_TRUE(opened.opened()) << opened.reason();
  const auto recordset = opened.table("People");
  RandomWork work(seed);
  for (int i = 0; i < 200 && !files.failed(); ++i) {
    const bool done = work.step(*recordset, before, after);
    if (done && !files.failed()) {
      before = after;
    }
  }
  EXPECT_TRUE(files.failed());
}

// The writer dies in the middle of every one of many writes. The next open finds the file as it was before or
// after the change that was under way, and sound.
TEST(Crash, DeathAtAnyWriteLeavesBeforeOrAfter) {
  const Folder folder;
  const Base base(folder / "base.mdb");
  int puts = 0;
  for (int death = 0; death < 400; ++death) {
    const auto file = folder / "a.mdb";
    std::filesystem::copy_file(folder / "base.mdb", file, std::filesystem::copy_options::overwrite_existing);
    Model before = base.model;
    Model after;
    FailingFiles files(FailingFiles::Failure::death, death);
    workUntilFailure(file, files, static_cast<unsigned>(death / 40), before, after);
    puts += std::filesystem::exists(folder / "a.mdb-journal") ? 1 : 0;

    OpenedFile opened(file);
    ASSERT_TRUE(opened.opened()) << opened.reason();
    ASSERT_EQ(opened.check(), "") << "death at write " << death;
    const auto found = readAll(*opened.table("People"));
    ASSERT_TRUE(difference(found, before, true).empty() || difference(found, after, true).empty())
        << "death at write " << death << ": " << difference(found, before, true);
    ASSERT_FALSE(std::filesystem::exists(folder / "a.mdb-journal"));
  }
  EXPECT_GT(puts, 300) << "deaths that left a journal";
}

// A full disk refuses the change, and nothing else: the session goes on, changes in place still work.
TEST(Crash, FullDiskRefusesTheChange) {
  const Folder folder;
  const Base base(folder / "base.mdb");
  for (int failure = 0; failure < 60; ++failure) {
    const auto file = folder / "a.mdb";
    std::filesystem::copy_file(folder / "base.mdb", file, std::filesystem::copy_options::overwrite_existing);
    FailingFiles files(FailingFiles::Failure::diskFull, failure);
    OpenedFile opened(file, &files);
    const auto recordset = opened.table("People");
    RandomWork work(static_cast<unsigned>(failure / 20));
    Model model = base.model;
    for (int i = 0; i < 40; ++i) {
      Model after;
      if (work.step(*recordset, model, after)) {
        model = std::move(after);
      }
    }
    ASSERT_EQ(difference(readAll(*recordset), model, true), "") << "full at write " << failure;
    ASSERT_EQ(opened.check(), "") << "full at write " << failure;
  }
}

// A journal beside a file that it is not about is not applied: here the file was replaced by another one.
TEST(Crash, JournalOfAnotherFileIsLeftOut) {
  const Folder folder;
  const Base base(folder / "base.mdb");
  const auto file = folder / "a.mdb";
  std::filesystem::copy_file(folder / "base.mdb", file);
  Model before = base.model;
  Model after;
  // The journal's record is the first write; the second one hits the database.
  FailingFiles files(FailingFiles::Failure::death, 1);
  workUntilFailure(file, files, 5, before, after);
  ASSERT_TRUE(std::filesystem::exists(folder / "a.mdb-journal"));
  std::filesystem::remove(file);
  makeDatabase(folder / "b.mdb", {peopleTable()}, {.created = 40000});
  std::filesystem::rename(folder / "b.mdb", file);
  OpenedFile opened(file);
  ASSERT_TRUE(opened.opened()) << opened.reason();
  EXPECT_EQ(opened.check(), "");
  EXPECT_TRUE(readAll(*opened.table("People")).empty());
}

}  // namespace
}  // namespace veltrano::access
