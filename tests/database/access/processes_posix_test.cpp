// What takes other programs: mdbtools as an independent reader, and a writer killed by the system.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <thread>

#include "harness.h"

namespace veltrano::access {
namespace {

std::string outputOf(const std::string& command) {
  std::string output;
  FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  std::array<char, 4096> buffer;
  for (std::size_t got = 0; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
    output.append(buffer.data(), got);
  }
  ::pclose(pipe);
  return output;
}

// And encoded pages and relations.
TEST(Mdbtools, ReadsEveryColumnType) {
  if (std::system("command -v mdb-export > /dev/null") != 0) {
    GTEST_SKIP() << "mdbtools is not installed";
  }
  const Folder folder;
  NewTable people = peopleTable();
  people.columns[0].autoNumber = true;
  const NewTable other = {.name = "Other", .columns = {{.name = "Of", .type = ColumnType::longInteger}}};
  makeDatabase(folder / "a.mdb", {people, other},
               {.pageKey = 0x12345678,
                .relations = {{"R", "People", {"ID"}, "Other", {"Of"}, true, OnDelete::cascade}}});
  const std::string longText(5000, 'n');
  const std::string longerText(12000, 'm');
  {
    OpenedFile file(folder / "a.mdb");
    const auto recordset = file.table("People");
    const std::vector<std::vector<std::pair<const char*, Value>>> records = {
        {{"Name", "Zo\xC3\xAB \xC5\xBB\xC3\xB3\xC5\x82w"},
         {"Plain", "plain"},
         {"Code", "abc"},
         {"Notes", "short"},
         {"Picture", Value::Bytes{1, 2, 0xFF}},
         {"Raw", Value::Bytes{0xAB, 0xCD}},
         {"Born", "1999-12-31 23:59:58"},
         {"Amount", "-12.3456"},
         {"Ratio", 0.5},
         {"Small", -2.25},
         {"Price", "123456789.125"},
         {"Flag", true},
         {"Tiny", 255},
         {"Count", -32768},
         {"Mark", "{00112233-4455-6677-8899-AABBCCDDEEFF}"}},
        {{"Notes", longText}, {"Born", "1950-01-02"}},
        {{"Notes", longerText}, {"Name", "will be deleted"}},
        {{"Name", "last"}}};
    for (const auto& record : records) {
      recordset->addNew();
      for (const auto& [field, value] : record) {
        EXPECT_TRUE(recordset->write(field, value)) << field;
      }
      EXPECT_TRUE(recordset->update());
    }
    const auto others = file.table("Other");
    for (const int of : {3, 4}) {
      others->addNew();
      others->write("Of", of);
      EXPECT_TRUE(others->update());
    }
    recordset->moveFirst();
    recordset->moveNext();
    recordset->moveNext();
    recordset->remove();
    recordset->moveFirst();
    recordset->moveNext();
    recordset->edit();
    recordset->write("Notes", longerText);
    recordset->update();
  }
  const std::string file = "'" + (folder / "a.mdb").string() + "'";
  EXPECT_EQ(outputOf("mdb-tables -1 " + file), "People\nOther\n");
  EXPECT_EQ(outputOf("mdb-count " + file + " People"), "3\n");
  EXPECT_EQ(outputOf("mdb-export -H " + file + " Other"), "4\n") << "what depended on record 3 went with it";
  EXPECT_NE(
      outputOf("mdb-schema " + file + " postgres")
          .find("FOREIGN KEY (\"of\") REFERENCES \"People\"(\"id\") ON UPDATE CASCADE ON DELETE CASCADE"),
      std::string::npos);
  EXPECT_EQ(
      outputOf("mdb-export -H -Q -d '|' -b hex -T '%Y-%m-%d %H:%M:%S' " + file + " People"),
      "1|Zo\xC3\xAB \xC5\xBB\xC3\xB3\xC5\x82w|plain|abc|short|0102FF|ABCD|1999-12-31 23:59:58|-12.3456|0.5|"
      "-2.25|123456789.125|1|255|-32768||"
      "7B30303131323233332D343435352D363637372D383839394141424243434444454546467D\n"
      "2||||" +
          longerText +
          "|||1950-01-02 00:00:00|||||0||||\n"
          "4|last|||||||||||0||||\n");
}

// The lock goes with the process, however that ends.
TEST(SecondProcess, IsToldNoWhileTheFirstHasTheFile) {
  const Folder folder;
  const auto path = folder / "a.mdb";
  makeDatabase(path, {peopleTable()});
  for (const bool firstReads : {false, true}) {
    std::array<int, 2> pipe = {};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t first = ::fork();
    if (first == 0) {
      const auto opened = Pager::open(path, {.readOnly = firstReads});
      const char done = opened ? 'y' : 'n';
      static_cast<void>(::write(pipe[1], &done, 1) == 1 && ::pause());
      ::_exit(1);
    }
    char opened = 0;
    ASSERT_EQ(::read(pipe[0], &opened, 1), 1);
    EXPECT_EQ(opened, 'y');
    EXPECT_EQ(Pager::open(path, {}).failure(), Failure::inUse);
    EXPECT_EQ(Pager::open(path, {.readOnly = true}).failure(), firstReads ? Failure::none : Failure::inUse);
    ::kill(first, SIGKILL);
    ::waitpid(first, nullptr, 0);
    ::close(pipe[0]);
    ::close(pipe[1]);
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
  int recovered = 0;
  for (int kill = 0; kill < 100; ++kill) {
    std::array<int, 2> pipe = {};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      OpenedFile file(path);
      const auto recordset = file.opened() ? file.table("People") : nullptr;
      for (int id = promised + 1; recordset; ++id) {
        recordset->addNew();
        recordset->write("ID", id);
        recordset->write("Name", "record " + std::to_string(id * 7919 % 1000));
        recordset->write("Notes", std::string(static_cast<std::size_t>(id % 90), 'n'));
        if (!recordset->update() || ::write(pipe[1], &id, sizeof id) != sizeof id) {
          break;
        }
      }
      ::_exit(1);
    }
    ::close(pipe[1]);
    int id = 0;
    // Not before it has begun.
    ASSERT_EQ(::read(pipe[0], &id, sizeof id), static_cast<ssize_t>(sizeof id));
    promised = id;
    std::this_thread::sleep_for(std::chrono::microseconds(work.number(3000)));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    while (::read(pipe[0], &id, sizeof id) == static_cast<ssize_t>(sizeof id)) {
      promised = id;
    }
    ::close(pipe[0]);
    OpenedFile file(path);
    ASSERT_TRUE(file.opened()) << file.reason();
    const auto recordset = file.table("People");
    recordset->moveLast();
    std::string last;
    ASSERT_TRUE(recordset->readText("ID", last));
    ASSERT_TRUE(last == std::to_string(promised) || last == std::to_string(promised + 1))
        << last << " " << promised;
    recovered += last == std::to_string(promised) ? 0 : 1;
    promised = std::stoi(last);
    if (kill % 10 == 9) {
      ASSERT_EQ(file.check(), "");
    }
  }
  RecordProperty("recordsMoreThanPromised", recovered);
}

}  // namespace
}  // namespace veltrano::access
