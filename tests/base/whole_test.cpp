#include "base/files/whole.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

using tests::TemporaryFolder;
namespace fs = std::filesystem;

/// Nowhere the same at two places that are a power of two apart.
std::string noise(std::size_t size) {
  std::mt19937 random(7);
  std::string block(10'007, '\0');
  std::generate(block.begin(), block.end(), [&random] { return static_cast<char>(random()); });
  std::string text;
  while (text.size() < size) text += block;
  text.resize(size);
  return text;
}

TEST(ReadFile, TakesAsManyReadsAsItNeeds) {
  const TemporaryFolder folder;
  const auto file = folder / "large";
  const std::string content = noise((std::size_t{1} << 24) + 5);
  ASSERT_TRUE(replaceFile(file, content));
  EXPECT_TRUE(readWholeFile(file) == content);
  EXPECT_TRUE(readFileStart(file, 70'000) == content.substr(0, 70'000));
}

TEST(ReadFile, OnlyFilesThatAreThere) {
  const TemporaryFolder folder;
  for (const auto& name : {folder.path(), folder / "missing", folder / "missing/a", fs::path()})
    EXPECT_FALSE(readWholeFile(name)) << name;
}

#ifndef _WIN32
// A pipe hands out less than it is asked for and does not say how much is to come.
TEST(ReadFile, PipesToTheirEnd) {
  const TemporaryFolder folder;
  const auto pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string content = noise(300'000);
  std::thread reader([&] { EXPECT_TRUE(readWholeFile(pipe) == content); });
  bool written = false;
  // Nobody waits for a reader that may never come.
  for (int attempt = 0; attempt < 500 && !written; ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    written = static_cast<bool>(replaceFile(pipe, content));
  }
  EXPECT_TRUE(written);
  reader.join();
}
#endif

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

TEST(ListFiles, IsSortedAndLeavesFoldersOut) {
  const TemporaryFolder folder;
  for (const char* name : {"b.afm", "A.afm", "a.afm"}) ASSERT_TRUE(replaceFile(folder / name, name));
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
