// That room is used again, and that a full file still lets its records be deleted.

#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/usage_map.h"
#include "database/access/table_writer.h"
#include "harness.h"
#include "simulated_disk.h"

namespace veltrano::access {
namespace {

constexpr std::size_t pieces = 8;

// Rows of any length: a number, pieces of up to 255 bytes, a long value.
NewTable rowsTable() {
  std::string schema = "table Rows; ID long";
  for (std::size_t i = 0; i < pieces; ++i) {
    schema += "; P" + std::to_string(i) + " binary(255)";
  }
  return tableOf(schema + "; Long ole");
}

// An open file and its table, written without a recordset.
class RowsOfFile {
 public:
  explicit RowsOfFile(const std::filesystem::path& path, FileSystem* files = nullptr,
                      std::uint32_t cachePages = 4096)
      : file_(path, files, cachePages), table_(pager(), *findTable(pager(), "Rows")) {
    auto writer = TableWriter::create(table_);
    EXPECT_TRUE(writer) << writer.status().reason();
    writer_.emplace(*std::move(writer));
  }
  [[nodiscard]] Pager& pager() const { return file_.pager(); }
  [[nodiscard]] PageNumber pages() const { return pager().pageCount(); }
  [[nodiscard]] std::string check() const { return file_.check(); }
  bool update(RowPointer row, int rowBytes, int longBytes) {
    return static_cast<bool>(writer_->update(row, record(rowBytes, longBytes)));
  }
  Status remove(RowPointer row) { return writer_->remove(row).status(); }
  std::optional<RowPointer> add(int rowBytes, int longBytes) {
    auto drafts = record(rowBytes, longBytes);
    const auto row = writer_->insert(drafts);
    return row ? std::optional(*row) : std::nullopt;
  }

 private:
  /// A record whose row has about so many bytes, and a long value of so many.
  static std::vector<Draft> record(int rowBytes, int longBytes) {
    const auto draft = [](int size, char byte) {
      return Draft{{false, ByteList(static_cast<std::size_t>(size), static_cast<std::uint8_t>(byte))}, true};
    };
    std::vector<Draft> drafts = {draft(4, 'i')};
    for (; drafts.size() <= pieces; rowBytes -= std::min(rowBytes, 255)) {
      drafts.push_back(draft(std::min(rowBytes, 255), 'r'));
    }
    drafts.push_back(longBytes > 0 ? draft(longBytes, 'l') : Draft());
    return drafts;
  }

  OpenedFile file_;
  Table table_;
  std::optional<TableWriter> writer_;
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
    const auto row = rows.add(100, 8192);
    ASSERT_TRUE(row);
    for (int i = 0; i < 500; ++i) {
      ASSERT_TRUE(rows.update(*row, 100, 8192 + i % 7));
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
    struct Live {
      RowPointer place;
      int row;
      int value;
    };
    std::vector<Live> live;
    const auto add = [&] {
      const int row = rowBytes();
      const int value =
          churn.longValue > 0 && random.number(3) == 0 ? 100 + random.number(churn.longValue) : 0;
      const auto place = rows.add(row, value);
      ASSERT_TRUE(place) << churn.name;
      live.push_back({*place, row, value});
    };
    for (int i = 0; i < 1000; ++i) {
      add();
    }
    for (int round = 0; round < 30; ++round) {
      for (int i = 0; i < 40; ++i) {
        const auto at = live.begin() + random.number(static_cast<int>(live.size()));
        ASSERT_TRUE(rows.remove(at->place)) << churn.name;
        *at = live.back();
        live.pop_back();
        add();
        Live& other = live[static_cast<std::size_t>(random.number(static_cast<int>(live.size())))];
        other.row = rowBytes();
        ASSERT_TRUE(rows.update(other.place, other.row, other.value)) << churn.name;
      }
    }
    EXPECT_EQ(rows.check(), "") << churn.name;
    disk_.put("b.mdb", readWholeFile(folder_ / "a.mdb").value());
    RowsOfFile again("b.mdb", &disk_);
    for (const Live& one : live) {
      again.add(one.row, one.value);
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
  std::vector<RowPointer> places;
  {
    RowsOfFile rows(folder_ / "a.mdb");
    for (int i = 0; i < 1300; ++i) {
      places.push_back(rows.add(1600, i % 20 == 0 ? 300 : 0).value());
    }
  }
  fillToTheEnd(folder_ / "a.mdb");
  RowsOfFile rows(folder_ / "a.mdb");
  ASSERT_FALSE(rows.add(1600, 0)) << "it is full";
  for (std::size_t i = 0; i < places.size(); i += 5) {
    const Status removed = rows.remove(places[i]);
    ASSERT_TRUE(removed) << i << ": " << removed.reason();
  }
  EXPECT_TRUE(rows.add(1600, 300)) << "where a deleted one was";
  EXPECT_EQ(rows.check(), "");
}

// Its chain leads nowhere after the first piece.
TEST_F(Space, DamagedLongValuesLetTheirRecordBeDeleted) {
  toMemory();
  RowPointer place;
  {
    RowsOfFile rows("a.mdb", &disk_);
    place = rows.add(10, 20000).value();
    ASSERT_TRUE(rows.add(10, 50));
  }
  std::string content = disk_.content("a.mdb");
  // The second piece of the chain; pieces are stored from the last to the first.
  int fromEnd = 0;
  for (std::size_t at = content.size(); at >= pageSize && fromEnd < 2; at -= pageSize) {
    fromEnd += content.compare(at - pageSize + 4, 4, "LVAL") == 0 ? 1 : 0;
    if (fromEnd == 2) {
      content.replace(at - pageSize + 4, 4, "LOST");
    }
  }
  ASSERT_EQ(fromEnd, 2);
  disk_.put("a.mdb", content);
  RowsOfFile rows("a.mdb", &disk_);
  const Status removed = rows.remove(place);
  EXPECT_TRUE(removed) << removed.reason();
}

}  // namespace
}  // namespace veltrano::access
