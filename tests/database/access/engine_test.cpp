#include "database/access/engine.h"

#include <fstream>
#include <set>

#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "database/values/current_date.h"
#include "database/values/field_to_text.h"
#include "database/values/text_matcher.h"
#include "harness.h"
#include "tests/base/user_limits.h"

namespace veltrano::access {
namespace {

class Engine : public testing::Test {
 protected:
  void SetUp() override {
    makeDatabase(folder_ / "a.mdb", {smallTable()});
    database_ = open(folder_ / "a.mdb");
    ASSERT_TRUE(database_);
    people_ = openTable(*database_, "PEO\u017bLE");
    ASSERT_TRUE(people_);
  }
  bool addPerson(const char* name, const char* code) {
    return static_cast<bool>(add(*people_, {{"name", name}, {"Code", code}}));
  }
  std::string names() { return readAll(*people_, {"ID", "Name"}); }
  void reopen() {
    people_.reset();
    database_.reset();
    database_ = open(folder_ / "a.mdb");
    people_ = openTable(*database_, "Peo\u017cle");
  }
  /// An empty table in a file of its own.
  std::unique_ptr<Recordset> tableInFile(const NewTable& table) {
    makeDatabase(folder_ / "b.mdb", {table});
    other_ = open(folder_ / "b.mdb");
    return openTable(*other_, table.name);
  }

  Folder folder_;
  std::unique_ptr<Database> database_, other_;
  std::unique_ptr<Recordset> people_;
};

TEST_F(Engine, EmptyTableIsAtItsEnd) {
  EXPECT_EQ(people_->atEnd(), true);
  EXPECT_FALSE(people_->moveFirst() || people_->moveLast() || people_->moveNext());
  EXPECT_FALSE(people_->edit() || people_->remove() || people_->update() || people_->write("Name", "x"));
  EXPECT_EQ(read(*people_, "Name"), "()");
  EXPECT_FALSE(people_->find("Name", TextMatcher("x", CaseRule::exact)));
}

TEST_F(Engine, AddingLeavesTheCurrentRecord) {
  EXPECT_TRUE(addPerson("a", "1"));
  EXPECT_EQ(people_->atEnd(), true);  // where it was before
  people_->moveFirst();
  people_->addNew();
  EXPECT_EQ(read(*people_, "ID") + read(*people_, "Name") + read(*people_, "Note"), "2()new");
  EXPECT_EQ(read(*people_, "Flag"), "False");
  EXPECT_EQ(read(*people_, "Mark").size(), 38U);
  people_->write("Name", "b");
  EXPECT_EQ(read(*people_, "Name"), "b");
  EXPECT_TRUE(people_->update());
  EXPECT_EQ(read(*people_, "Name"), "a");
  EXPECT_FALSE(people_->update());  // nothing is under way any more
  EXPECT_EQ(names(), "1a 2b ");
}

TEST_F(Engine, NewRecordsTakeTheCurrentMoment) {
  const std::pair<const char*, CurrentDate> defaults[] = {
      {"Now()", CurrentDate::now}, {"=Date()", CurrentDate::today}, {"time()", CurrentDate::timeOfDay}};
  NewTable table = {.name = "Moments"};
  for (const auto& [expression, moment] : defaults) {
    table.columns.push_back({.name = expression, .type = ColumnType::dateTime, .defaultValue = expression});
  }
  const auto moments = tableInFile(table);
  ASSERT_TRUE(moments);
  for (const auto& [expression, moment] : defaults) {
    std::string before;
    std::string after;
    std::string found;
    do {  // again if the day ends meanwhile
      dateToText(currentDate(moment), before);
      moments->addNew();
      found = read(*moments, expression);
      dateToText(currentDate(moment), after);
    } while (after < before);
    EXPECT_LE(before, found) << expression;
    EXPECT_LE(found, after) << expression;
  }
  EXPECT_TRUE(moments->update());
}

TEST_F(Engine, MovingDropsTheEdit) {
  addPerson("a", "1");
  addPerson("b", "2");
  people_->moveFirst();
  people_->edit();
  people_->write("Name", "x");
  EXPECT_EQ(read(*people_, "Name"), "x");
  people_->moveNext();
  EXPECT_FALSE(people_->update());
  people_->addNew();
  people_->write("Name", "y");
  people_->moveLast();
  EXPECT_FALSE(people_->update());
  EXPECT_EQ(names(), "1a 2b ");
}

TEST_F(Engine, DeletedRecordStaysCurrentUntilTheNextMove) {
  addPerson("a", "1");
  addPerson("b", "2");
  addPerson("c", "3");
  stand(*people_, "Name", "b");
  EXPECT_TRUE(people_->remove());
  EXPECT_EQ(people_->atEnd(), false);
  EXPECT_EQ(read(*people_, "Name"), "()");
  EXPECT_FALSE(people_->edit() || people_->remove());
  people_->moveNext();
  EXPECT_EQ(read(*people_, "Name"), "c");
  EXPECT_TRUE(people_->remove());
  EXPECT_TRUE(people_->moveNext());
  EXPECT_EQ(people_->atEnd(), true);
  EXPECT_EQ(names(), "1a ");
  addPerson("d", "4");
  EXPECT_EQ(names(), "1a 4d ");  // the numbers of the deleted ones are not given again
}

TEST_F(Engine, RefusedWritesChangeNothing) {
  addPerson("a", "1");
  addPerson("b", "2");
  people_->moveFirst();
  people_->edit();
  EXPECT_TRUE(people_->write("Code", "9"));
  const std::vector<std::pair<const char*, Value>> refused = {
      {"Name", "sixsix"}, {"Note", ""},     {"Tiny", 256}, {"Tiny", "x"},
      {"ID", 7},          {"Missing", "x"}, {"Mark", "x"}, {"Name", Value(Opaque{})}};
  for (const auto& [field, value] : refused) {
    EXPECT_FALSE(people_->write(field, value)) << field;
  }
  // The refused fields leave the others of the edit alive.
  EXPECT_TRUE(people_->update());
  EXPECT_EQ(read(*people_, "Code"), "9");

  EXPECT_FALSE(change(*people_, {{"Name", Null{}}})) << "a required field is null";
  EXPECT_FALSE(change(*people_, {{"Code", "2"}})) << "the code is taken";
  people_->write("Code", "3");
  EXPECT_TRUE(people_->update()) << "the edit lives on after a refusal";
  EXPECT_FALSE(addPerson("", "2"));
  EXPECT_FALSE(add(*people_, {})) << "no name";
  EXPECT_EQ(names(), "1a 2b ");
  EXPECT_EQ(read(*people_, "ID"), "()");
  addPerson("c", "5");
  EXPECT_EQ(names(), "1a 2b 5c ") << "3 and 4 were shown with records that were not stored";
}

TEST_F(Engine, AutonumbersAreShownOnce) {
  people_->addNew();
  EXPECT_EQ(read(*people_, "ID"), "1");
  people_->moveFirst();  // drops it
  const auto other = openTable(*database_, "peo\u017cle");
  for (const auto& [recordset, number] : {std::pair(people_.get(), "2"), std::pair(other.get(), "3")}) {
    recordset->addNew();
    EXPECT_EQ(read(*recordset, "ID"), number);
    recordset->write("Name", number);
  }
  EXPECT_TRUE(other->update() && people_->update());
  people_->addNew();
  EXPECT_EQ(read(*people_, "ID"), "4");
  other->close();
  reopen();
  EXPECT_TRUE(addPerson("x", "1"));
  EXPECT_EQ(names(), "22 33 5x ") << "the 4 was shown before the file was closed";
}

TEST_F(Engine, ChangedKeyIsNotMetAgain) {
  const auto table = tableInFile(tableOf("table T; Text text; ID long; primary P (ID)"));
  for (const int id : {1, 2, 3}) {
    EXPECT_TRUE(add(*table, {{"ID", id}}));
  }
  int met = 0;
  for (table->moveFirst(); table->atEnd() == false && met < 10; table->moveNext(), ++met) {
    EXPECT_TRUE(change(*table, {{"ID", 100 + met}}));
  }
  EXPECT_EQ(met, 3);
}

// The memos lie in the row; room for the text is made by moving some of them out, though the edit has none of them.
TEST_F(Engine, LongRecordsMoveTheirMemosOut) {
  NewTable table = {.name = "T", .columns = {{.name = "Text", .compressed = false}}};
  Values memos;
  for (int i = 0; i < 50; ++i) {
    memos.emplace_back("M" + std::to_string(i), std::string(60, static_cast<char>('a' + i % 26)));
    table.columns.push_back({.name = memos.back().first, .type = ColumnType::memo});
  }
  auto recordset = tableInFile(table);
  EXPECT_TRUE(add(*recordset, memos));
  recordset->moveFirst();
  EXPECT_TRUE(change(*recordset, {{"Text", std::string(255, 'x')}}));
  for (const auto& [field, memo] : memos) {
    EXPECT_EQ(read(*recordset, field), *memo.as<std::string>());
  }
  EXPECT_EQ(read(*recordset, "Text"), std::string(255, 'x'));
  recordset.reset();
  other_.reset();
  EXPECT_EQ(OpenedFile(folder_ / "b.mdb").check(), "");
}

TEST_F(Engine, UniqueIndexesTakeManyNullsAndOneZero) {
  const auto table = tableInFile(tableOf("table T; R double; unique U (R)"));
  std::string taken;
  for (const Value& value :
       {Value(Null{}), Value(Null{}), Value(-0.0), Value(0.0), Value(-0.0), Value(1.5)}) {
    taken += add(*table, {{"R", value}}) ? "y" : "n";
  }
  EXPECT_EQ(taken, "yyynny");
}

TEST_F(Engine, DrawnNumbersDoNotCount) {
  const auto table = tableInFile(tableOf("table T; ID autonumber default GenUniqueID()"));
  std::set<std::string> numbers;
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(add(*table, {}));
    table->moveLast();
    numbers.insert(read(*table, "ID"));
  }
  EXPECT_EQ(numbers.size(), 5U);
  EXPECT_FALSE(numbers.contains("1") && numbers.contains("2"));
}

TEST_F(Engine, OtherProgramsLockFileIsRespected) {
  people_.reset();
  database_.reset();
  // Held open, as the other program does.
  std::ofstream lock(folder_ / "a.ldb", std::ios::binary);
  lock << std::string(64, 'x') << std::flush;
  EXPECT_FALSE(open(folder_ / "a.mdb"));
  lock.close();
  EXPECT_TRUE(open(folder_ / "a.mdb")) << "nobody holds the lock file: it was left over";
}

// In a folder that takes no journal, and on a medium that cannot be written at all.
TEST_F(Engine, ReadOnlyFileIsReadOnly) {
  addPerson("a", "1");
  people_.reset();
  database_.reset();
  const std::string before = readWholeFile(folder_ / "a.mdb").value();
  for (const unsigned mode : {0666U, 0444U}) {
    const tests::NoNewFilesIn medium(folder_.path(), static_cast<std::filesystem::perms>(mode));
    auto file = std::make_shared<OpenFile>();
    file->pager = *Pager::open(folder_ / "a.mdb", {.readOnly = !medium.enforced()});
    {
      AccessRecordset recordset(file, *findTable(*file->pager, smallTable().name));
      EXPECT_EQ(read(recordset, "Name"), "a");
      EXPECT_FALSE(recordset.edit() || recordset.addNew() || recordset.remove());
    }
    file.reset();
    EXPECT_EQ(readWholeFile(folder_ / "a.mdb"), before) << mode;
  }
}

TEST(Passwords, MustBeExactlyRight) {
  const Folder folder;
  makeDatabase(folder / "p.mdb", {smallTable()}, {.password = "Zaq1\u00e9", .pageKey = 77});
  makeDatabase(folder / "n.mdb", {smallTable()});
  EXPECT_TRUE(open(folder / "p.mdb", "Zaq1\u00e9"));
  EXPECT_FALSE(open(folder / "p.mdb", "zaq1\u00e9"));
  EXPECT_FALSE(open(folder / "p.mdb", "Zaq1"));
  EXPECT_FALSE(open(folder / "p.mdb"));
  EXPECT_FALSE(open(folder / "n.mdb", "x"));
  EXPECT_TRUE(open(folder / "n.mdb"));
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
  const std::vector<std::pair<const char*, std::string>> files = {
      {"empty.mdb", ""},
      {"text.mdb", "Dear Sir or Madam"},
      {"short.mdb", good.substr(0, 1000)},
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
  EXPECT_FALSE(open(folder / "missing.mdb"));
  EXPECT_FALSE(std::filesystem::exists(folder / "missing.mdb"));
  EXPECT_FALSE(open(folder / "folder.mdb"));
  const auto database = open(folder / "good.mdb");
  ASSERT_TRUE(database);
  EXPECT_FALSE(openTable(*database, "Tables")) << "a container";
  EXPECT_FALSE(openTable(*database, "missing"));
  EXPECT_TRUE(openTable(*database, "msysOBJECTS"));
}

}  // namespace
}  // namespace veltrano::access
