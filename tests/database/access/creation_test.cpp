#include "base/files/whole.h"
#include "harness.h"

namespace veltrano::access {
namespace {

// The system's files on a disk that is full from the given write on: that one is done in part, and no file grows
// any more.
class FullDisk final : public FileSystem {
 public:
  explicit FullDisk(int writes) : writesLeft_(writes) {}

  Result<std::unique_ptr<RandomAccessFile>> open(const std::filesystem::path& file, OpenMode mode) override {
    auto opened = systemFiles().open(file, mode);
    if (opened) {
      opened = std::make_unique<File>(*this, *std::move(opened));
    }
    return opened;
  }
  bool remove(const std::filesystem::path& file) override { return systemFiles().remove(file); }
  bool lockFileInUse(const std::filesystem::path& lockFile) override {
    return systemFiles().lockFileInUse(lockFile);
  }
  [[nodiscard]] bool failed() const { return writesLeft_ < 0; }

 private:
  class File final : public RandomAccessFile {
   public:
    File(FullDisk& disk, std::unique_ptr<RandomAccessFile> file) : disk_(disk), file_(std::move(file)) {}

    std::optional<std::size_t> readAt(std::uint64_t offset, MutableBytes target) override {
      return file_->readAt(offset, target);
    }
    bool writeAt(std::uint64_t offset, Bytes bytes) override {
      if (--disk_.writesLeft_ == -1) {
        file_->writeAt(offset, bytes.first(bytes.size() / 2));
        return false;
      }
      return !grows(offset + bytes.size()) && file_->writeAt(offset, bytes);
    }
    std::optional<std::uint64_t> size() override { return file_->size(); }
    bool resize(std::uint64_t size) override {
      --disk_.writesLeft_;
      return !grows(size) && file_->resize(size);
    }
    // Waiting for the disk would take most of the test's time.
    bool sync() override { return true; }

   private:
    bool grows(std::uint64_t end) { return disk_.failed() && end > file_->size().value_or(0); }

    FullDisk& disk_;
    std::unique_ptr<RandomAccessFile> file_;
  };

  int writesLeft_;
};

TEST(Creation, RefusesWhatIsNotValid) {
  const Folder folder;
  makeDatabase(folder / "a.mdb", {smallTable()});
  EXPECT_EQ(createDatabase(folder / "a.mdb", {}).failure(), Failure::exists);
  EXPECT_FALSE(createDatabase(folder / "missing" / "b.mdb", {}));
  std::vector<NewTable> bad = tablesOf(
      "table Peo\u017cle; ID long\n"
      "table a.b; ID long\n"
      "table T\n"
      "table T; ID long; ID long\n"
      "table T; t text(256)\n"
      "table T; d decimal(29)\n"
      "table T; c complex\n"
      "table T; ID long; index i (other)\n"
      "table T; o ole; index i (o)\n");
  const NewTable good = tableOf("table T; ID long; index i (ID)");
  bad.insert(bad.end(), 4, good);
  bad.end()[-1].name = "";
  bad.end()[-2].columns.assign(256, good.columns[0]);
  bad.end()[-3].indexes[0].columns.clear();
  bad.end()[-4].indexes.assign(33, good.indexes[0]);
  const std::string before = readWholeFile(folder / "a.mdb").value();
  for (std::size_t i = 0; i < bad.size(); ++i) {
    EXPECT_FALSE(createTables(OpenedFile(folder / "a.mdb").pager(), {bad[i]})) << "table " << i;
  }
  EXPECT_EQ(readWholeFile(folder / "a.mdb"), before);
  EXPECT_FALSE(createDatabase(folder / "c.mdb", {smallTable(), smallTable()}));
  EXPECT_FALSE(std::filesystem::exists(folder / "c.mdb"));
}

TEST(Creation, TakesPasswordsOfTwentyCharacters) {
  const Folder folder;
  const std::string longest = "12345678901234567890";
  makeDatabase(folder / "a.mdb", {smallTable()}, {.password = longest});
  EXPECT_TRUE(open(folder / "a.mdb", longest));
  EXPECT_FALSE(open(folder / "a.mdb", longest.substr(1)));
  EXPECT_FALSE(createDatabase(folder / "b.mdb", {}, {.password = longest + "1"}));
  EXPECT_FALSE(std::filesystem::exists(folder / "b.mdb"));
}

TEST(Creation, LeavesNothingOnAFullDisk) {
  const Folder folder;
  bool full = true;
  for (int writes = 0; full; ++writes) {
    FullDisk files(writes);
    const bool made(createDatabase(folder / "a.mdb", {}, {.files = &files}));
    full = files.failed();
    ASSERT_EQ(std::filesystem::exists(folder / "a.mdb"), made) << writes;
    ASSERT_EQ(listFiles(folder.path())->size(), made ? 1U : 0U) << writes;
    if (made) {
      ASSERT_EQ(OpenedFile(folder / "a.mdb").check(), "") << writes;
      std::filesystem::remove(folder / "a.mdb");
    }
  }
  makeDatabase(folder / "b.mdb", {});
  full = true;
  for (int writes = 0; full; ++writes) {
    const std::string name = "T" + std::to_string(writes);
    FullDisk files(writes);
    OpenedFile file(folder / "b.mdb", &files);
    NewTable table = peopleTable();
    table.name = name;
    const bool made(createTables(file.pager(), {table}));
    full = files.failed();
    ASSERT_EQ(file.check(), "") << writes;
    ASSERT_EQ(file.table(name) != nullptr, made) << writes;
  }
}

TEST(Creation, TakesAsManyColumnsAsTheFormatHas) {
  const Folder folder;
  std::string schema = "table Wide";
  for (int i = 0; i < 255; ++i) {
    constexpr const char* types[] = {" memo", " boolean", " text"};
    schema += "; C" + std::to_string(i) + types[i % 3];
  }
  for (int i = 0; i < 32; ++i) {
    schema += "; index I" + std::to_string(i) + " (c" + std::to_string(i * 3 + 1) + ")";
  }
  makeDatabase(folder / "a.mdb", tablesOf(schema));
  {
    const auto database = open(folder / "a.mdb");
    const auto table = openTable(*database, "wide");
    ASSERT_TRUE(table);
    EXPECT_TRUE(
        add(*table, {{"C254", std::string(200, 'x')}, {"C252", std::string(3000, 'x')}, {"C253", true}}));
    table->moveFirst();
    EXPECT_EQ(read(*table, "C252").size(), 3000U);
    EXPECT_EQ(read(*table, "C253") + read(*table, "C1") + read(*table, "C2"), "TrueFalse()");
  }
  EXPECT_EQ(OpenedFile(folder / "a.mdb").check(), "");
}

}  // namespace
}  // namespace veltrano::access
