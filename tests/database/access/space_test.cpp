// That room is used again, and that a full file still lets its records be deleted.

#include "base/files/whole.h"
#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/usage_map.h"
#include "harness.h"
#include "simulated_disk.h"

namespace veltrano::access {
namespace {

constexpr int pieces = 8;

// Rows of any length: a number, pieces of up to 255 bytes, a long value.
NewTable rowsTable() {
  std::string schema = "table Rows; ID long; Long ole";
  for (int i = 0; i < pieces; ++i) {
    schema += "; P" + std::to_string(i) + " binary(255)";
  }
  return tableOf(schema + "; primary P (ID)");
}

class RowsOfFile {
 public:
  explicit RowsOfFile(const std::filesystem::path& path, FileSystem* files = nullptr,
                      std::uint32_t cachePages = 4096)
      : file_(path, files, cachePages), table_(file_.table("Rows")) {}
  [[nodiscard]] Pager& pager() const { return file_.pager(); }
  [[nodiscard]] PageNumber pages() const { return pager().pageCount(); }
  [[nodiscard]] std::string check() const { return file_.check(); }
  bool add(int id, int rowBytes, int longBytes) {
    return static_cast<bool>(access::add(*table_, record(id, rowBytes, longBytes)));
  }
  bool update(int id, int rowBytes, int longBytes) {
    stand(*table_, "ID", std::to_string(id));
    return static_cast<bool>(change(*table_, record(id, rowBytes, longBytes)));
  }
  Status remove(int id) {
    stand(*table_, "ID", std::to_string(id));
    return table_->remove();
  }

 private:
  /// A record whose row has about so many bytes, and a long value of so many.
  static Values record(int id, int rowBytes, int longBytes) {
    const auto bytes = [](int size) { return Value(std::string(static_cast<std::size_t>(size), 'r')); };
    Values values = {{"ID", id}, {"Long", longBytes > 0 ? bytes(longBytes) : Value(Null{})}};
    for (int i = 0; i < pieces; ++i) {
      values.emplace_back("P" + std::to_string(i), bytes(std::clamp(rowBytes - 255 * i, 0, 255)));
    }
    return values;
  }

  OpenedFile file_;
  std::unique_ptr<AccessRecordset> table_;
};

class Space : public testing::Test {
 protected:
  void SetUp() override { makeDatabase(folder_ / "a.mdb", {rowsTable()}); }
  /// The same file on a disk that nobody waits for.
  void toMemory() { disk_.put("a.mdb", readWholeFile(folder_ / "a.mdb").value()); }

  Folder folder_;
  SimulatedDisk disk_;
};

// Other programs leave their free pages as they were; they come first, and are not taken.
TEST_F(Space, EditsOfALongValueDoNotMakeTheFileLonger) {
  toMemory();
  std::vector<PageNumber> foreign;
  {
    const RowsOfFile rows("a.mdb", &disk_);
    Transaction transaction(rows.pager());
    for (int i = 0; i < 40; ++i) {
      foreign.push_back(allocatePage(rows.pager()).value());
    }
    for (const PageNumber page : foreign) {
      freePage(rows.pager(), page);
    }
    transaction.commit();
  }
  std::string content = disk_.content("a.mdb");
  for (const PageNumber page : foreign) {
    content[page * pageSize + 9] = 'x';
  }
  disk_.put("a.mdb", content);
  for (int session = 0; session < 2; ++session) {
    RowsOfFile rows("a.mdb", &disk_, 64);
    const PageNumber before = rows.pages();
    ASSERT_TRUE(rows.add(session, 100, 8192));
    for (int i = 0; i < 500; ++i) {
      ASSERT_TRUE(rows.update(session, 100, 8192 + i % 7));
    }
    EXPECT_LE(rows.pages(), before + 8);
    EXPECT_EQ(rows.check(), "");
  }
  EXPECT_EQ(disk_.content("a.mdb")[foreign.front() * pageSize + 9], 'x');
}

// A thousand records, of which 40 are replaced and 40 change their length in each of 30 rounds: the file is
// hardly longer than one into which the same records were just put.
TEST_F(Space, OfDeletedRowsIsUsedAgain) {
  const struct {
    const char* name;
    int shortest;
    int longest;
    int longValue;  // every third record has one of up to so many bytes
  } churns[] = {
      {"short rows", 5, 60, 0}, {"rows of any length", 10, 1900, 0}, {"long values", 10, 100, 9000}};
  for (const auto& churn : churns) {
    toMemory();
    RowsOfFile rows("a.mdb", &disk_);
    RandomWork random(17);
    const auto rowBytes = [&] { return churn.shortest + random.number(churn.longest - churn.shortest); };
    std::vector<std::array<int, 3>> live;  // ID, bytes of the row and of the long value
    int lastId = 0;
    const auto add = [&] {
      const bool hasValue = churn.longValue > 0 && random.number(3) == 0;
      live.push_back({++lastId, rowBytes(), hasValue ? 100 + random.number(churn.longValue) : 0});
      ASSERT_TRUE(rows.add(live.back()[0], live.back()[1], live.back()[2])) << churn.name;
    };
    for (int i = 0; i < 1000; ++i) {
      add();
    }
    for (int i = 0; i < 30 * 40; ++i) {
      std::swap(live[static_cast<std::size_t>(random.number(1000))], live.back());
      ASSERT_TRUE(rows.remove(live.back()[0])) << churn.name;
      live.pop_back();
      add();
      auto& other = live[static_cast<std::size_t>(random.number(1000))];
      other[1] = rowBytes();
      ASSERT_TRUE(rows.update(other[0], other[1], other[2])) << churn.name;
    }
    EXPECT_EQ(rows.check(), "") << churn.name;
    disk_.put("b.mdb", readWholeFile(folder_ / "a.mdb").value());
    RowsOfFile again("b.mdb", &disk_);
    for (const auto& [id, rowSize, valueSize] : live) {
      again.add(id, rowSize, valueSize);
    }
    EXPECT_LE(rows.pages(), again.pages() * 13 / 10) << churn.name;
  }
}

// The map of free pages stops being inline in a file that needs bitmap pages beyond the range of the first.
TEST_F(Space, BitmapPagesOfTheGlobalMapAreInUse) {
  std::filesystem::resize_file(folder_ / "a.mdb", std::uintmax_t{70000} * pageSize);
  OpenedFile file(folder_ / "a.mdb");
  Transaction transaction(file.pager());
  useUp(file.pager(), 512);
  const PageNumber page = allocatePage(file.pager()).value();
  ASSERT_TRUE(freePage(file.pager(), allocatePage(file.pager()).value()));
  ASSERT_TRUE(transaction.commit());
  const UsageMap free(file.pager(), globalMap);
  for (PageNumber used = page; used < file.pager().pageCount(); ++used) {
    const PageView view = file.pager().read(used);
    EXPECT_EQ(free.contains(used), used != page && view.data()[0] == 0) << used;
  }
  EXPECT_EQ(file.check(), "");
}

TEST_F(Space, AFullFileLetsRecordsBeDeleted) {
  constexpr int records = 1300;
  {
    RowsOfFile rows(folder_ / "a.mdb");
    for (int id = 0; id < records; ++id) {
      ASSERT_TRUE(rows.add(id, 1600, id % 20 == 0 ? 300 : 0));
    }
  }
  fillToTheEnd(folder_ / "a.mdb");
  RowsOfFile rows(folder_ / "a.mdb");
  ASSERT_FALSE(rows.add(records, 1600, 0)) << "it is full";
  for (int id = 0; id < records; id += 5) {
    const Status removed = rows.remove(id);
    ASSERT_TRUE(removed) << id << ": " << removed.reason();
  }
  EXPECT_TRUE(rows.add(0, 1600, 300)) << "where a deleted one was";
  EXPECT_EQ(rows.check(), "");
}

// Its chain leads nowhere after the first piece.
TEST_F(Space, DamagedLongValuesLetTheirRecordBeDeleted) {
  toMemory();
  ASSERT_TRUE(RowsOfFile("a.mdb", &disk_).add(1, 10, 20000));
  // The second piece of the chain; pieces are stored from the last to the first.
  std::string content = disk_.content("a.mdb");
  const std::size_t first = content.rfind("LVAL");
  content.replace(content.rfind("LVAL", first - 1), 4, "LOST");
  disk_.put("a.mdb", content);
  const Status removed = RowsOfFile("a.mdb", &disk_).remove(1);
  EXPECT_TRUE(removed) << removed.reason();
}

}  // namespace
}  // namespace veltrano::access
