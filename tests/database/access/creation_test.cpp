#include "base/files/whole.h"
#include "harness.h"
#include "simulated_disk.h"
#include "tests/base/user_limits.h"

namespace veltrano::access {
namespace {

TEST(Creation, RefusesWhatIsNotValid) {
  const Folder folder;
  makeDatabase(folder / "a.mdb", {smallTable()});
  EXPECT_EQ(createDatabase(folder / "a.mdb", {}).failure(), Failure::exists);
  EXPECT_FALSE(createDatabase(folder / "missing" / "b.mdb", {}));
  std::vector<NewTable> bad = tablesOf(
      "table SMALL; ID long\n"
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

TEST(Creation, LeavesNothingOnAFullDisk) {
  const Folder folder;
#ifndef _WIN32
  for (const rlim_t size : {0, 5000, 12288, 50000}) {
    const tests::DiskLimit limit(size);
    EXPECT_FALSE(createDatabase(folder / "a.mdb", {}));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << size;
  }
#endif
  makeDatabase(folder / "b.mdb", {});
  SimulatedDisk disk;
  disk.put("b.mdb", readWholeFile(folder / "b.mdb").value());
  bool full = true;
  for (int calls = 0; full; ++calls) {
    OpenedFile file("b.mdb", &disk);
    NewTable table = peopleTable();
    table.name = "T" + std::to_string(calls);
    disk.fillAfter(calls);
    const bool made(createTables(file.pager(), {table}));
    full = disk.full();
    disk.revive();
    ASSERT_EQ(file.check(), "") << calls;
    ASSERT_EQ(file.table(table.name) != nullptr, made) << calls;
    ASSERT_TRUE(made || full);
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
  OpenedFile file(folder / "a.mdb");
  const auto table = file.table("wide");
  ASSERT_TRUE(table);
  EXPECT_TRUE(
      add(*table, {{"C254", std::string(200, 'x')}, {"C252", std::string(3000, 'x')}, {"C253", true}}));
  EXPECT_EQ(readAll(*table, {"C252", "C253", "C1", "C2"}), std::string(3000, 'x') + "TrueFalse()");
  EXPECT_EQ(file.check(), "");
}

}  // namespace
}  // namespace veltrano::access
