// What takes other programs: mdbtools as an independent reader, and a writer killed by the system.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

#include "base/files/whole.h"
#include "harness.h"

namespace veltrano::access {
namespace {

std::string outputOf(const std::string& command) {
  const Folder folder;
  std::system((command + " > '" + (folder / "out").string() + "' 2>&1").c_str());
  return readWholeFile(folder / "out").value_or("");
}

using Mdbtools = DatabaseTest;

// And encoded pages and relations.
TEST_F(Mdbtools, ReadsEveryColumnType) {
  if (std::system("command -v mdb-export > /dev/null") != 0) {
    GTEST_SKIP() << "mdbtools is not installed";
  }
  NewTable people = peopleTable();
  people.columns[0].autoNumber = true;
  make({people, tableOf("table Other; Of long")},
       {.pageKey = 0x12345678,
        .relations = {{"R", "People", {"ID"}, "Other", {"Of"}, true, OnDelete::cascade}}});
  const std::string longText(12000, 'm');
  EXPECT_TRUE(add(table("People"),
                  {{"Name", "Zo\u00eb \u017b\u00f3\u0142w"}, {"Picture", Value::Bytes{1, 2, 0xFF}}}));
  play(R"(
      first People; edit People
      write People Plain=plain Code=abc Notes=short Raw=ab Born=1999-12-31_23:59:58
      write People Amount=-12.3456 Ratio=0.5 Small=-2.25 Price=123456789.125 Flag=True Tiny=255 Count=-32768
      write People Mark={00112233-4455-6677-8899-AABBCCDDEEFF}; update People
      add People Born=1950-01-02 Notes=old; add People Name=will_be_deleted Notes=)" +
       longText + R"(
      add People Name=last; add Other Of=3; add Other Of=4; delete People ID=3
      change People ID=2 Notes=)" +
       longText);
  close();
  const std::string file = "'" + file_.string() + "'";
  EXPECT_EQ(outputOf("mdb-tables -1 " + file), "People\nOther\n");
  EXPECT_EQ(outputOf("mdb-count " + file + " People"), "3\n");
  EXPECT_EQ(outputOf("mdb-export -H " + file + " Other"), "4\n") << "what depended on record 3 went with it";
  EXPECT_NE(
      outputOf("mdb-schema " + file + " postgres")
          .find("FOREIGN KEY (\"of\") REFERENCES \"People\"(\"id\") ON UPDATE CASCADE ON DELETE CASCADE"),
      std::string::npos);
  EXPECT_EQ(outputOf("mdb-export -H -Q -d '|' -b hex -T '%Y-%m-%d %H:%M:%S' " + file + " People"),
            "1|Zo\u00eb \u017b\u00f3\u0142w|plain|abc|short|0102FF|6162|1999-12-31 23:59:58|-12.3456|0.5|"
            "-2.25|123456789.125|1|255|-32768||"
            "7B30303131323233332D343435352D363637372D383839394141424243434444454546467D\n"
            "2||||" +
                longText +
                "|||1950-01-02 00:00:00|||||0||||\n"
                "4|last|||||||||||0||||\n");
}

// Another process, killed at the latest with this object, and a pipe from it.
class OtherProcess {
 public:
  /// `work` gets the end of the pipe to write to.
  template <typename Work>
  explicit OtherProcess(Work work) {
    EXPECT_EQ(::pipe(pipe_.data()), 0);
    id_ = ::fork();
    if (id_ == 0) {
      work(pipe_[1]);
      ::_exit(1);
    }
    ::close(pipe_[1]);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess() {
    kill();
    ::close(pipe_[0]);
  }
  void kill() {
    if (id_ != 0) {
      ::kill(id_, SIGKILL);
      ::waitpid(std::exchange(id_, 0), nullptr, 0);
    }
  }
  /// What it has written, if it has or will.
  bool read(int& value) { return ::read(pipe_[0], &value, sizeof value) == ssize_t{sizeof value}; }

 private:
  std::array<int, 2> pipe_ = {};
  pid_t id_ = 0;
};

bool tell(int pipe, int value) {
  return ::write(pipe, &value, sizeof value) == ssize_t{sizeof value};
}

// The lock goes with the process, however that ends.
TEST(SecondProcess, IsToldNoWhileTheFirstHasTheFile) {
  const Folder folder;
  const auto path = folder / "a.mdb";
  makeDatabase(path, {peopleTable()});
  for (const bool firstReads : {false, true}) {
    OtherProcess first([&](int pipe) {
      const auto opened = Pager::open(path, {.readOnly = firstReads});
      if (tell(pipe, opened ? 1 : 0)) {
        ::pause();
      }
    });
    int opened = 0;
    ASSERT_TRUE(first.read(opened) && opened == 1);
    EXPECT_EQ(Pager::open(path, {}).failure(), Failure::inUse);
    EXPECT_EQ(Pager::open(path, {.readOnly = true}).failure(), firstReads ? Failure::none : Failure::inUse);
    first.kill();
    EXPECT_TRUE(Pager::open(path, {}));
  }
}

// A writer that adds records 1, 2, 3 ... and says so after each Update is killed, whatever it is doing. The
// file is sound, and has every record that was promised and at most one more.
TEST(KilledWriter, KeepsWhatItPromised) {
  const Folder folder;
  const auto path = folder / "a.mdb";
  makeDatabase(path, {peopleTable()});
  RandomWork work(5);
  int promised = 0;
  for (int round = 1; round <= 50; ++round) {
    OtherProcess writer([&](int pipe) {
      OpenedFile file(path);
      const auto recordset = file.opened() ? file.table("People") : nullptr;
      for (int id = promised + 1; recordset; ++id) {
        const Values record = {{"ID", id},
                               {"Name", "record " + std::to_string(id * 7919 % 1000)},
                               {"Notes", std::string(static_cast<std::size_t>(id % 90), 'n')}};
        if (!add(*recordset, record) || !tell(pipe, id)) {
          break;
        }
      }
    });
    ASSERT_TRUE(writer.read(promised)) << "not killed before it has begun";
    std::this_thread::sleep_for(std::chrono::microseconds(work.number(3000)));
    writer.kill();
    while (writer.read(promised)) {
    }
    OpenedFile file(path);
    ASSERT_TRUE(file.opened()) << file.reason();
    const auto recordset = file.table("People");
    recordset->moveLast();
    const int last = std::stoi(read(*recordset, "ID"));
    ASSERT_TRUE(last == promised || last == promised + 1) << last << " " << promised;
    promised = last;
    if (round % 10 == 0) {
      ASSERT_EQ(file.check(), "");
    }
  }
}

}  // namespace
}  // namespace veltrano::access
