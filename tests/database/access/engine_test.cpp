#include "database/access/engine.h"

#include <fstream>

#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "database/values/current_date.h"
#include "database/values/field_conversion.h"
#include "harness.h"
#include "tests/base/user_limits.h"

namespace veltrano::access {
namespace {

using Engine = DatabaseTest;

TEST_F(Engine, MovesAndEditsAsADynasetDoes) {
  make({smallTable()});
  play(R"(
      !first Small; !last Small; !next Small; !edit Small; !delete Small; !update Small
      !write Small Name=x; read Small Name: ()
      add Small Name=a Code=1; !edit Small: no current record
      first Small; new Small; read Small ID Name Note Flag: 2()newFalse
      write Small Name=b; read Small Name: b
      update Small; read Small Name: a
      !update Small; edit Small; write Small Name=x; read Small ID Name: 1x
      next Small; !update Small; new Small; write Small Name=y; last Small; !update Small
      add Small Name=c; all Small ID Name: 1a 2b 4c
      delete Small Name=b; read Small Name: ()
      !edit Small; !delete Small; next Small; read Small Name: c
      delete Small; next Small; !next Small; all Small ID Name: 1a
      add Small Name=d; all Small ID Name: 1a 5d
      new Small)");
  EXPECT_EQ(read(table("Small"), "Mark").size(), 38U);
}

TEST_F(Engine, RefusedWritesChangeNothing) {
  make({smallTable()});
  play(R"(
      add Small Name=a Code=1; add Small Name=b Code=2; first Small; edit Small; write Small Code=9
      !write Small Name=sixsix; !write Small Note=; !write Small Tiny=256; !write Small Tiny=x
      !write Small ID=7; !write Small Missing=x; !write Small Mark=x; update Small; read Small Code: 9
      !change Small Name=a Name=-: a required field
      !update Small; first Small; !change Small Name=a Code=2: duplicate
      write Small Code=3; update Small; !add Small Name= Code=2: duplicate
      !add Small Code=7: a required field
      all Small ID Name Code: 1a3 2b2
      read Small ID: ()
      add Small Name=c Code=5; all Small ID Name: 1a 2b 5c)");
  table("Small").moveFirst();
  table("Small").edit();
  EXPECT_FALSE(table("Small").write("Name", Opaque()));
}

TEST_F(Engine, AutonumbersAreShownOnce) {
  make({smallTable()});
  play(R"(
      new Small; read Small ID: 1
      !first Small; new Small; read Small ID: 2
      write Small Name=2; new Small'; read Small' ID: 3
      write Small' Name=3; update Small'; update Small; new Small; read Small ID: 4)");
  reopen();
  play("add Small Name=x; all Small ID Name: 22 33 5x");
}

TEST_F(Engine, NewRecordsTakeTheCurrentMoment) {
  make(tablesOf("table T; N datetime default Now(); D datetime default =Date(); T datetime default time()"));
  const auto moments = [] {
    std::string all;
    for (const CurrentDate moment : {CurrentDate::now, CurrentDate::today, CurrentDate::timeOfDay}) {
      all += toFieldText(currentDate(moment)).value();
    }
    return all;
  };
  std::string before;
  std::string found;
  do {  // again if a second ends meanwhile
    before = moments();
    table("T").addNew();
    found = readFields(table("T"), {"N", "D", "T"});
  } while (before != moments());
  EXPECT_EQ(found, before);
}

TEST_F(Engine, ChangedKeyIsNotMetAgain) {
  make(tablesOf("table T; Text text; ID long; primary P (ID)"));
  play(R"(
      add T ID=1; add T ID=2; first T; edit T; write T ID=100; update T; next T; read T ID: 2
      edit T; write T ID=101; update T; next T; !next T)");
}

// The memos lie in the row; room for the text is made by moving some of them out, though the edit has none of them.
TEST_F(Engine, LongRecordsMoveTheirMemosOut) {
  NewTable memos = {.name = "T", .columns = {{.name = "Text", .compressed = false}}};
  std::string values;
  std::string fields;
  std::string expected;
  for (int i = 0; i < 50; ++i) {
    memos.columns.push_back({.name = "M" + std::to_string(i), .type = ColumnType::memo});
    expected += std::string(60, static_cast<char>('a' + i % 26));
    fields += " " + memos.columns.back().name;
    values += " " + memos.columns.back().name + "=" + expected.substr(expected.size() - 60);
  }
  make({memos});
  const std::string text(255, 'x');
  play("add T" + values + "; first T; edit T; write T Text=" + text + "; update T; all T" + fields +
       " Text: " + expected + text);
}

TEST_F(Engine, UniqueIndexesTakeManyNullsAndOneZero) {
  make(tablesOf("table T; R double; unique U (R)"));
  play("add T R=-; add T R=-; add T R=-0; !add T R=0; !add T R=-0; add T R=1.5");
}

// In a folder that takes no journal, and on a medium that cannot be written at all.
TEST_F(Engine, ReadOnlyFileIsReadOnly) {
  make({smallTable()});
  play("add Small Name=a");
  close();
  const std::string before = readWholeFile(file_).value();
  for (const unsigned mode : {0666U, 0444U}) {
    const tests::NoNewFilesIn medium(folder_.path(), static_cast<std::filesystem::perms>(mode));
    auto file = std::make_shared<OpenFile>();
    file->pager = *Pager::open(file_, {.readOnly = !medium.enforced()});
    {
      AccessRecordset recordset(file, *findTable(*file->pager, "Small"));
      EXPECT_EQ(read(recordset, "Name"), "a");
      EXPECT_FALSE(recordset.edit() || recordset.addNew() || recordset.remove());
    }
    file.reset();
    EXPECT_EQ(readWholeFile(file_), before) << mode;
  }
}

TEST(Passwords, MustBeExactlyRight) {
  const Folder folder;
  const std::string longest = "Zaq1\u00e9678901234567890";
  makeDatabase(folder / "p.mdb", {}, {.password = longest, .pageKey = 77});
  makeDatabase(folder / "n.mdb", {});
  EXPECT_TRUE(open(folder / "p.mdb", longest));
  for (const std::optional<std::string>& wrong :
       {std::optional("z" + longest.substr(1)), std::optional(longest.substr(0, 4)), {}}) {
    EXPECT_FALSE(open(folder / "p.mdb", wrong));
  }
  EXPECT_FALSE(open(folder / "n.mdb", "x"));
  EXPECT_TRUE(open(folder / "n.mdb"));
  EXPECT_FALSE(createDatabase(folder / "b.mdb", {}, {.password = longest + "1"}));
}

TEST(BadFiles, AreRefused) {
  const Folder folder;
  std::filesystem::create_directory(folder / "folder.mdb");
  makeDatabase(folder / "good.mdb", {});
  const std::string good = readWholeFile(folder / "good.mdb").value();
  const auto changed = [&](std::size_t at, const std::string& bytes) {
    std::string copy = good;
    return copy.replace(at, bytes.size(), bytes);
  };
  const std::pair<const char*, std::string> files[] = {
      {"empty.mdb", ""},
      {"text.mdb", "Dear Sir or Madam"},
      {"header-only.mdb", good.substr(0, 3000)},
      {"money.mdb", changed(4, std::string("MSISAM Database", 16))},
      {"version7.mdb", changed(4, std::string("Standard ACE DB\0\x07", 17))},
      // The mask of the header's key is XORed in: any change of an .accdb's key means "encrypted".
      {"encrypted.accdb", changed(4, std::string("Standard ACE DB\0\x03", 17)).replace(0x3E, 1, "x")}};
  for (const auto& [name, content] : files) {
    replaceFile(folder / name, content);
    EXPECT_FALSE(open(folder / name)) << name;
    EXPECT_EQ(readWholeFile(folder / name), content) << name;
  }
  EXPECT_FALSE(open(folder / "missing.mdb") || open(folder / "folder.mdb"));
  EXPECT_FALSE(std::filesystem::exists(folder / "missing.mdb"));
  {
    const auto database = open(folder / "good.mdb");
    EXPECT_FALSE(database->openTable("Tables")) << "a container";
    EXPECT_TRUE(database->openTable("msysOBJECTS"));
  }
  // Another program has the file, and holds its lock file open.
  std::ofstream lock(folder / "good.ldb", std::ios::binary);
  lock << std::string(64, 'x') << std::flush;
  EXPECT_FALSE(open(folder / "good.mdb"));
  lock.close();
  EXPECT_TRUE(open(folder / "good.mdb")) << "nobody holds the lock file: it was left over";
}

}  // namespace
}  // namespace veltrano::access
