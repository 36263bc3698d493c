#include "database/access/engine.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "base/os/files.h"
#include "database/access/schema/catalog.h"
#include "database/text_matcher.h"
#include "harness.h"

namespace veltrano::access {
namespace {

std::string utf8(const std::filesystem::path& path) {
  const auto text = path.u8string();
  return {text.begin(), text.end()};
}

std::unique_ptr<Database> open(const std::filesystem::path& file, std::optional<std::string> password = {}) {
  std::string reason;
  const auto connect =
      password ? std::optional(std::string(passwordConnectPrefix) + *password) : std::nullopt;
  return makeAccessEngine()->openDatabase(utf8(file), connect, reason);
}

std::string read(Recordset& recordset, const std::string& field) {
  std::string text = "not replaced";
  return recordset.readText(field, text) ? text : "(" + text + ")";
}

// ID counts, Name is required and short, Note has a default, Code is unique.
NewTable smallTable() {
  return {.name = "Peo\xC5\xBCle",
          .columns = {{.name = "ID", .type = ColumnType::longInteger, .autoNumber = true},
                      {.name = "Name", .type = ColumnType::text, .size = 5, .required = true},
                      {.name = "Note",
                       .type = ColumnType::memo,
                       .allowZeroLength = false,
                       .defaultValue = "=\"new\""},
                      {.name = "Code", .type = ColumnType::text, .size = 10},
                      {.name = "Tiny", .type = ColumnType::byte},
                      {.name = "Flag", .type = ColumnType::boolean},
                      {.name = "Mark", .type = ColumnType::guid, .autoNumber = true}},
          .indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
                      {.name = "Code", .columns = {{"Code"}}, .unique = true, .ignoreNulls = true}}};
}

class Engine : public testing::Test {
 protected:
  void SetUp() override {
    makeDatabase(folder_ / "a.mdb", {smallTable()});
    database_ = open(folder_ / "a.mdb");
    ASSERT_TRUE(database_);
    people_ = database_->openTable("PEO\xC5\xBBLE");
    ASSERT_TRUE(people_);
  }
  bool add(const std::string& name, const std::string& code) {
    people_->addNew();
    people_->write("name", name);
    people_->write("Code", code);
    return people_->update();
  }
  std::string names() {
    std::string all;
    for (people_->moveFirst(); people_->atEnd() == false; people_->moveNext()) {
      all += read(*people_, "ID") + read(*people_, "Name") + " ";
    }
    return all;
  }
  void reopen() {
    people_.reset();
    database_.reset();
    database_ = open(folder_ / "a.mdb");
    people_ = database_->openTable("Peo\xC5\xBCle");
  }

  Folder folder_;
  std::unique_ptr<Database> database_;
  std::unique_ptr<Recordset> people_;
};

TEST_F(Engine, EmptyTableIsAtItsEnd) {
  EXPECT_EQ(people_->atEnd(), true);
  EXPECT_FALSE(people_->moveFirst());
  EXPECT_FALSE(people_->moveLast());
  EXPECT_FALSE(people_->moveNext());
  EXPECT_FALSE(people_->edit());
  EXPECT_FALSE(people_->remove());
  EXPECT_FALSE(people_->update());
  EXPECT_FALSE(people_->write("Name", "x"));
  EXPECT_EQ(read(*people_, "Name"), "()");
  EXPECT_FALSE(people_->find("Name", TextMatcher("x", CaseRule::exact)));
}

TEST_F(Engine, AddingLeavesTheCurrentRecord) {
  EXPECT_TRUE(add("a", "1"));
  EXPECT_EQ(people_->atEnd(), true);  // where it was before
  people_->moveFirst();
  people_->addNew();
  EXPECT_EQ(read(*people_, "Name"), "()");
  EXPECT_EQ(read(*people_, "ID"), "2");
  EXPECT_EQ(read(*people_, "Note"), "new");
  EXPECT_EQ(read(*people_, "Flag"), "False");
  EXPECT_EQ(read(*people_, "Mark").size(), 38U);
  people_->write("Name", "b");
  EXPECT_EQ(read(*people_, "Name"), "b");
  EXPECT_TRUE(people_->update());
  EXPECT_EQ(read(*people_, "Name"), "a");
  EXPECT_FALSE(people_->update());  // nothing is under way any more
  EXPECT_EQ(names(), "1a 2b ");
}

TEST_F(Engine, MovingDropsTheEdit) {
  add("a", "1");
  add("b", "2");
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
  add("a", "1");
  add("b", "2");
  add("c", "3");
  people_->moveFirst();
  people_->moveNext();
  EXPECT_TRUE(people_->remove());
  EXPECT_EQ(people_->atEnd(), false);
  EXPECT_EQ(read(*people_, "Name"), "()");
  EXPECT_FALSE(people_->edit());
  EXPECT_FALSE(people_->remove());
  people_->moveNext();
  EXPECT_EQ(read(*people_, "Name"), "c");
  EXPECT_TRUE(people_->remove());
  EXPECT_TRUE(people_->moveNext());
  EXPECT_EQ(people_->atEnd(), true);
  EXPECT_EQ(names(), "1a ");
  add("d", "4");
  EXPECT_EQ(names(), "1a 4d ");  // the numbers of the deleted ones are not given again
}

TEST_F(Engine, RefusedWritesChangeNothing) {
  add("a", "1");
  add("b", "2");
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

  people_->edit();
  people_->write("Name", Null{});
  EXPECT_FALSE(people_->update()) << "a required field is null";
  people_->edit();
  people_->write("Code", "2");
  EXPECT_FALSE(people_->update()) << "the code is taken";
  people_->write("Code", "3");
  EXPECT_TRUE(people_->update()) << "the edit lives on after a refusal";
  EXPECT_FALSE(add("", "2"));
  people_->addNew();
  EXPECT_FALSE(people_->update()) << "no name";
  EXPECT_EQ(names(), "1a 2b ");
  EXPECT_EQ(read(*people_, "ID"), "()");
  add("c", "5");
  EXPECT_EQ(names(), "1a 2b 5c ") << "3 and 4 were shown with records that were not stored";
}

TEST_F(Engine, AutonumbersAreShownOnce) {
  people_->addNew();
  EXPECT_EQ(read(*people_, "ID"), "1");
  people_->moveFirst();  // drops it
  const auto other = database_->openTable("peo\xC5\xBCle");
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
  EXPECT_TRUE(add("x", "1"));
  EXPECT_EQ(names(), "22 33 5x ") << "the 4 was shown before the file was closed";
}

TEST_F(Engine, ChangedKeyIsNotMetAgain) {
  makeDatabase(folder_ / "b.mdb",
               {{.name = "T",
                 .columns = {{.name = "Text"}, {.name = "ID", .type = ColumnType::longInteger}},
                 .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}}}});
  const auto database = open(folder_ / "b.mdb");
  const auto table = database->openTable("t");
  for (const int id : {1, 2, 3}) {
    table->addNew();
    table->write("ID", id);
    table->update();
  }
  int met = 0;
  for (table->moveFirst(); table->atEnd() == false && met < 10; table->moveNext(), ++met) {
    table->edit();
    table->write("ID", 100 + met);
    EXPECT_TRUE(table->update());
  }
  EXPECT_EQ(met, 3);
}

// Rows as long as a page, so that a deleted one's page, and with it its place, goes to the next that is added.
class TakenPlaces : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    NewTable table = {.name = "T",
                      .columns = {{.name = "ID", .type = ColumnType::longInteger}, {.name = "Name"}}};
    for (int i = 0; i < 7; ++i) {
      table.columns.push_back({.name = "B" + std::to_string(i), .type = ColumnType::binary, .size = 510});
    }
    if (GetParam()) {
      table.indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}};
    }
    makeDatabase(folder_ / "a.mdb", {table});
    database_ = open(folder_ / "a.mdb");
    a_ = database_->openTable("T");
    b_ = database_->openTable("T");
    add(*a_, 1, "one");
    add(*a_, 2, "two");
    a_->moveLast();
    b_->moveLast();
  }
  static void add(Recordset& recordset, int id, const char* name) {
    recordset.addNew();
    recordset.write("ID", id);
    recordset.write("Name", name);
    for (int i = 0; i < 7; ++i) {
      recordset.write("B" + std::to_string(i), std::string(500, 'x'));
    }
    EXPECT_TRUE(recordset.update()) << recordset.lastError();
  }
  std::string names() {
    std::string all;
    for (b_->moveFirst(); b_->atEnd() == false; b_->moveNext()) {
      all += read(*b_, "Name") + " ";
    }
    return all;
  }

  Folder folder_;
  std::unique_ptr<Database> database_;
  std::unique_ptr<Recordset> a_, b_;
};

TEST_P(TakenPlaces, BelongToAnotherRecord) {
  for (const int id : {2, 3}) {
    for (Recordset* deleting : {b_.get(), a_.get()}) {
      SCOPED_TRACE(std::to_string(id) + (deleting == a_.get() ? " with one recordset" : " with two"));
      a_->edit();
      a_->write("Name", "changed");
      EXPECT_TRUE(deleting->remove());
      add(*deleting, id, "NEW");
      EXPECT_FALSE(a_->update());
      EXPECT_EQ(read(*a_, "Name"), "()");
      EXPECT_FALSE(a_->edit() || a_->remove());
      EXPECT_EQ(a_->atEnd(), false);
      EXPECT_TRUE(a_->moveNext());
      EXPECT_EQ(read(*a_, "Name"), "NEW");
      EXPECT_EQ(names(), "one NEW ");
      b_->moveLast();
      a_->moveLast();
    }
  }
}

TEST_P(TakenPlaces, AreMetInAWalkThatChangedKeys) {
  a_->moveFirst();
  a_->edit();
  a_->write("ID", 8);
  EXPECT_TRUE(a_->update());
  b_->moveFirst();
  EXPECT_TRUE(b_->find("ID", TextMatcher("8", CaseRule::exact)) && b_->remove());
  add(*b_, 9, "NEW");
  std::string met;
  for (a_->moveNext(); a_->atEnd() == false; a_->moveNext()) {
    met += read(*a_, "Name") + " ";
  }
  EXPECT_EQ(met, GetParam() ? "two NEW " : "NEW two ");
}

INSTANTIATE_TEST_SUITE_P(Tables, TakenPlaces, testing::Bool(),
                         [](const auto& one) { return one.param ? "WithAPrimaryKey" : "InStorageOrder"; });

// The memos lie in the row; room for the text is made by moving some of them out, though the edit has none of them.
TEST_F(Engine, LongRecordsMoveTheirMemosOut) {
  NewTable table = {.name = "T", .columns = {{.name = "Text", .compressed = false}}};
  for (int i = 0; i < 50; ++i) {
    table.columns.push_back({.name = "M" + std::to_string(i), .type = ColumnType::memo});
  }
  makeDatabase(folder_ / "b.mdb", {table});
  {
    const auto database = open(folder_ / "b.mdb");
    const auto recordset = database->openTable("T");
    const auto memo = [](int i) { return std::string(60, static_cast<char>('a' + i % 26)); };
    recordset->addNew();
    for (int i = 0; i < 50; ++i) {
      recordset->write("M" + std::to_string(i), memo(i));
    }
    EXPECT_TRUE(recordset->update());
    recordset->moveFirst();
    recordset->edit();
    recordset->write("Text", std::string(255, 'x'));
    EXPECT_TRUE(recordset->update()) << recordset->lastError();
    for (int i = 0; i < 50; ++i) {
      EXPECT_EQ(read(*recordset, "M" + std::to_string(i)), memo(i));
    }
    EXPECT_EQ(read(*recordset, "Text"), std::string(255, 'x'));
  }
  EXPECT_EQ(OpenedFile(folder_ / "b.mdb").check(), "");
}

TEST_F(Engine, UniqueIndexesTakeManyNullsAndOneZero) {
  makeDatabase(folder_ / "b.mdb", {{.name = "T",
                                    .columns = {{.name = "R", .type = ColumnType::real}},
                                    .indexes = {{.name = "U", .columns = {{"R"}}, .unique = true}}}});
  const auto database = open(folder_ / "b.mdb");
  const auto table = database->openTable("T");
  for (const auto& [value, taken] : {std::pair(Value(Null{}), true),
                                     {Value(Null{}), true},
                                     {Value(-0.0), true},
                                     {Value(0.0), false},
                                     {Value(-0.0), false},
                                     {Value(1.5), true}}) {
    table->addNew();
    table->write("R", value);
    EXPECT_EQ(table->update(), taken);
  }
}

TEST_F(Engine, DrawnNumbersDoNotCount) {
  makeDatabase(folder_ / "b.mdb", {{.name = "T",
                                    .columns = {{.name = "ID",
                                                 .type = ColumnType::longInteger,
                                                 .autoNumber = true,
                                                 .defaultValue = "GenUniqueID()"}}}});
  const auto database = open(folder_ / "b.mdb");
  const auto table = database->openTable("T");
  std::set<std::string> numbers;
  for (int i = 0; i < 5; ++i) {
    table->addNew();
    EXPECT_TRUE(table->update());
  }
  for (table->moveFirst(); table->atEnd() == false; table->moveNext()) {
    numbers.insert(read(*table, "ID"));
  }
  EXPECT_EQ(numbers.size(), 5U);
  EXPECT_FALSE(numbers.contains("1") && numbers.contains("2"));
}

TEST_F(Engine, TwoRecordsetsOfOneFileSeeEachOther) {
  add("a", "1");
  add("b", "2");
  const auto other = database_->openTable("peo\xC5\xBCle");
  people_->moveFirst();
  EXPECT_EQ(read(*other, "Name"), "a");
  people_->edit();
  people_->write("Name", "new");
  people_->update();
  EXPECT_EQ(read(*other, "Name"), "new");
  other->edit();
  people_->remove();
  EXPECT_FALSE(other->update());
  EXPECT_EQ(read(*other, "Name"), "()");
  other->moveNext();
  EXPECT_EQ(read(*other, "Name"), "b");
}

TEST_F(Engine, ClosedObjectsOnlyFail) {
  add("a", "1");
  const auto second = database_->openTable("peo\xC5\xBCle");
  EXPECT_TRUE(people_->close());
  EXPECT_FALSE(people_->close());
  EXPECT_TRUE(database_->close());
  EXPECT_FALSE(database_->close());
  EXPECT_FALSE(database_->openTable("peo\xC5\xBCle"));
  for (Recordset* recordset : {people_.get(), second.get()}) {
    EXPECT_EQ(recordset->atEnd(), std::nullopt);
    EXPECT_FALSE(recordset->moveFirst() || recordset->moveLast() || recordset->moveNext() ||
                 recordset->edit() || recordset->addNew() || recordset->update() || recordset->remove() ||
                 recordset->write("Name", "x") || recordset->find("Name", TextMatcher("a", CaseRule::exact)));
    EXPECT_EQ(read(*recordset, "Name"), "()");
  }
}

TEST_F(Engine, FindComparesAsAsked) {
  add("Sm\xC3\xADth", "1");
  add("x", "2");
  const auto found = [&](const char* field, const char* text, CaseRule rule) {
    people_->moveFirst();
    return people_->find(field, TextMatcher(text, rule)) ? read(*people_, "ID") : "none";
  };
  EXPECT_EQ(found("name", "SM\xC3\x8DTH", CaseRule::lowered), "1");
  EXPECT_EQ(found("Name", "SM\xC3\x8DTH", CaseRule::exact), "none");
  EXPECT_EQ(people_->atEnd(), true);
  EXPECT_EQ(found("ID", "2", CaseRule::exact), "2");
  EXPECT_EQ(found("Note", "NEW", CaseRule::lowered), "1");
  EXPECT_EQ(found("Tiny", "", CaseRule::exact), "none") << "a null equals nothing";
  EXPECT_EQ(found("Missing", "x", CaseRule::exact), "none");
}

TEST_F(Engine, SecondOpenerIsRefused) {
  EXPECT_FALSE(open(folder_ / "a.mdb"));
  reopen();
  EXPECT_TRUE(people_);
}

TEST_F(Engine, OtherProgramsLockFileIsRespected) {
  people_.reset();
  database_.reset();
  // Held open, as the other program does; some systems take a lock file that nobody holds for left over.
  std::ofstream lock(folder_ / "a.ldb", std::ios::binary);
  lock << std::string(64, 'x') << std::flush;
  EXPECT_FALSE(open(folder_ / "a.mdb"));
  lock.close();
  std::filesystem::remove(folder_ / "a.ldb");
  EXPECT_TRUE(open(folder_ / "a.mdb"));
}

TEST_F(Engine, ReadOnlyFileIsReadOnly) {
  add("a", "1");
  people_.reset();
  database_.reset();
  const std::string before = readWholeFile(folder_ / "a.mdb").value();
  Pager::Options options;
  options.readOnly = true;  // as a file that cannot be opened for writing is opened
  auto file = std::make_shared<OpenFile>();
  std::string reason;
  file->pager = Pager::open(folder_ / "a.mdb", options, reason);
  ASSERT_TRUE(file->pager) << reason;
  {
    AccessRecordset recordset(file, findTable(*file->pager, smallTable().name, reason).value());
    EXPECT_EQ(read(recordset, "Name"), "a");
    EXPECT_FALSE(recordset.edit() || recordset.addNew() || recordset.remove());
  }
  file.reset();
  EXPECT_EQ(readWholeFile(folder_ / "a.mdb"), before);
}

TEST_F(Engine, FolderThatTakesNoJournalIsReadOnly) {
  add("a", "1");
  people_.reset();
  database_.reset();
  FailingFiles files(FailingFiles::Failure::noNewFiles, 0);
  OpenedFile file(folder_ / "a.mdb", &files);
  ASSERT_TRUE(file.opened());
  EXPECT_TRUE(file.pager().readOnly());
  const auto recordset = file.table(smallTable().name);
  EXPECT_EQ(read(*recordset, "Name"), "a");
  EXPECT_FALSE(recordset->edit() || recordset->addNew() || recordset->remove());
}

TEST(Passwords, MustBeExactlyRight) {
  const Folder folder;
  makeDatabase(folder / "p.mdb", {smallTable()}, {.password = "Zaq1\xC3\xA9", .pageKey = 77});
  makeDatabase(folder / "n.mdb", {smallTable()});
  EXPECT_TRUE(open(folder / "p.mdb", "Zaq1\xC3\xA9"));
  EXPECT_FALSE(open(folder / "p.mdb", "zaq1\xC3\xA9"));
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
  EXPECT_FALSE(database->openTable("Tables")) << "a container";
  EXPECT_FALSE(database->openTable("missing"));
  EXPECT_TRUE(database->openTable("msysOBJECTS"));
}

// Files as other programs make them, from ours by changing bytes.
class PatchedFile : public testing::Test {
 protected:
  void SetUp() override {
    // The day 0 masks the password with zeros, so that the header reads as that of any version.
    makeDatabase(file_, {peopleTable()}, {.created = 0.5});
    OpenedFile opened(file_);
    std::string reason;
    const TableDefinition table = findTable(opened.pager(), "People", reason).value();
    definition_ = table.page;
    root_ = table.primaryKey()->root;
  }
  void patch(std::size_t at, const std::string& bytes) {
    std::string content = readWholeFile(file_).value();
    replaceFile(file_, content.replace(at, bytes.size(), bytes));
  }
  void fill(int seed) {
    OpenedFile opened(file_);
    const auto people = opened.table("People");
    RandomWork work(static_cast<unsigned>(seed));
    for (int i = 0; i < 40; ++i) {
      Model after;
      if (work.step(*people, model_, after)) {
        model_ = std::move(after);
      }
    }
  }
  std::string whatIsWrong() {
    OpenedFile opened(file_);
    const std::string wrong = opened.check();
    return wrong.empty() ? difference(readAll(*opened.table("People")), model_, false) : wrong;
  }

  Folder folder_;
  std::filesystem::path file_ = folder_ / "a.mdb";
  std::size_t definition_ = 0;
  std::size_t root_ = 0;
  Model model_;
};

TEST_F(PatchedFile, OfAnyVersionIsOpened) {
  for (const int version : {2, 3, 5}) {
    patch(4, "Standard ACE DB");
    patch(0x14, std::string(1, static_cast<char>(version)));
    fill(version);
    EXPECT_GT(model_.size(), 5U);
    EXPECT_EQ(whatIsWrong(), "") << version;
    // Emptied, for the keys of numeric columns differ between versions.
    OpenedFile opened(file_);
    const auto people = opened.table("People");
    for (people->moveFirst(); people->atEnd() == false; people->moveNext()) {
      EXPECT_TRUE(people->remove());
    }
    model_.clear();
  }
  patch(4, "Standard Jet DB");
  patch(0x14, std::string(1, '\0'));
  const OpenedFile opened(file_);
  ASSERT_TRUE(opened.opened()) << opened.reason();
  EXPECT_EQ(opened.pager().version(), Version::jet3);
  EXPECT_TRUE(opened.pager().readOnly());
}

TEST_F(PatchedFile, WithEnforcedRelationsIsReadOnly) {
  fill(1);
  const std::string content = readWholeFile(file_).value();
  // A logical index without a relation: its number, its index, no kind, no other side.
  const std::string record("\x59\x06\0\0\0\0\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF", 17);
  const std::size_t at = content.find(record, definition_ * 4096);
  ASSERT_LT(at, (definition_ + 1) * 4096);
  patch(at + 13, std::string(4, '\0'));
  patch(at + 23, std::string(1, '\x02'));
  OpenedFile opened(file_);
  const auto people = opened.table("People");
  EXPECT_FALSE(people->edit() || people->addNew() || people->remove());
  EXPECT_EQ(difference(readAll(*people), model_, false), "");
}

TEST_F(PatchedFile, WithADamagedPrimaryKeyIsRead) {
  fill(1);
  patch(root_ * 4096, std::string(2, '\0'));
  OpenedFile opened(file_);
  EXPECT_EQ(difference(readAll(*opened.table("People")), model_, false), "");
}

TEST_F(PatchedFile, CountsTheKeysOfEachIndex) {
  const auto counts = [this] {
    const std::string content = readWholeFile(file_).value();
    std::vector<std::uint32_t> all;
    for (std::size_t i = 0; i < peopleTable().indexes.size(); ++i) {
      all.push_back(
          load32(reinterpret_cast<const std::uint8_t*>(&content[definition_ * 4096 + 63 + 12 * i + 4])));
    }
    return all;
  };
  {
    OpenedFile opened(file_);
    const auto people = opened.table("People");
    for (int id = 1; id <= 4; ++id) {
      people->addNew();
      people->write("ID", id);
      people->write("Name", id < 3 ? "same" : "other");
      id < 3 ? people->write("Code", std::to_string(id)) : false;
      EXPECT_TRUE(people->update());
    }
  }
  // ID, Name, Code (null twice: left out), Notes and Path (null: one key), Amount (left out), Price.
  EXPECT_EQ(counts(), (std::vector<std::uint32_t>{4, 2, 2, 1, 1, 0, 1}));
  {
    OpenedFile opened(file_);
    const auto people = opened.table("People");
    people->moveFirst();
    people->edit();
    people->write("Code", "9");
    EXPECT_TRUE(people->update() && people->remove());
  }
  EXPECT_EQ(counts(), (std::vector<std::uint32_t>{4, 2, 3, 1, 1, 0, 1})) << "they never go down";
}

TEST_F(PatchedFile, MayLackTheMapOfPagesWithRoom) {
  fill(1);
  patch(definition_ * 4096 + 59, std::string(4, '\0'));
  EXPECT_EQ(whatIsWrong(), "");
}

TEST_F(PatchedFile, WithAChainThatLeadsOutOfItIsUnsound) {
  {
    OpenedFile opened(file_);
    const auto people = opened.table("People");
    people->addNew();
    people->write("ID", 1);
    people->write("Picture", std::string(5000, 'x'));
    EXPECT_TRUE(people->update());
  }
  // The last piece is the shorter one; its pointer to the next is zero.
  const std::size_t piece =
      readWholeFile(file_).value().rfind(std::string(4, '\0') + std::string(5000 % 4072, 'x'));
  ASSERT_NE(piece, std::string::npos);
  patch(piece, "\xFF\xFF\xFF\xFF");
  EXPECT_NE(whatIsWrong(), "");
}

// A journal with a byte changed is none: whatever death it comes from, the file stays as it is, or becomes what it was.
TEST_F(PatchedFile, DamagedJournalsAreNotFollowed) {
  fill(1);
  const std::string before = readWholeFile(file_).value();
  const auto journal = folder_ / "a.mdb-journal";
  bool died = true;
  int journals = 0;
  for (int writes = 1; died; ++writes) {
    replaceFile(file_, before);
    std::filesystem::remove(journal);
    FailingFiles files(FailingFiles::Failure::death, writes);
    {
      OpenedFile opened(file_, &files);
      const auto people = opened.table("People");
      people->edit();
      people->write("Name", "somebody else");
      people->update();
      died = files.dead();
    }
    const auto record = died ? readWholeFile(journal) : std::nullopt;
    if (!record) {
      continue;
    }
    ++journals;
    const std::string after = readWholeFile(file_).value();
    for (std::size_t at = 0; at < record->size(); at += at < 64 ? 1 : 29) {
      std::string damaged = *record;
      damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
      replaceFile(file_, after);
      replaceFile(journal, damaged);
      { const OpenedFile opened(file_); }
      const std::string found = readWholeFile(file_).value();
      ASSERT_TRUE(found == after || found == before) << "death at write " << writes << ", byte " << at;
    }
  }
  EXPECT_GT(journals, 1);
}

TEST(Creation, RefusesWhatIsNotValid) {
  const Folder folder;
  std::string reason;
  makeDatabase(folder / "a.mdb", {smallTable()});
  EXPECT_FALSE(createDatabase(folder / "a.mdb", {}, reason)) << "it exists";
  EXPECT_FALSE(createDatabase(folder / "missing" / "b.mdb", {}, reason));
  const NewColumn id = {.name = "ID", .type = ColumnType::longInteger};
  const std::vector<NewTable> bad = {
      smallTable(),
      {.name = "", .columns = {id}},
      {.name = "a.b", .columns = {id}},
      {.name = "T"},
      {.name = "T", .columns = {id, id}},
      {.name = "T", .columns = std::vector<NewColumn>(256, id)},
      {.name = "T", .columns = {{.name = "t", .size = 256}}},
      {.name = "T", .columns = {{.name = "d", .type = ColumnType::numeric, .precision = 29}}},
      {.name = "T", .columns = {{.name = "c", .type = ColumnType::complex}}},
      {.name = "T", .columns = {id}, .indexes = {{.name = "i", .columns = {{"other"}}}}},
      {.name = "T", .columns = {id}, .indexes = {{.name = "i"}}},
      {.name = "T",
       .columns = {id},
       .indexes = std::vector<NewIndex>(33, {.name = "i", .columns = {{"ID"}}})},
      {.name = "T",
       .columns = {{.name = "o", .type = ColumnType::ole}},
       .indexes = {{.name = "i", .columns = {{"o"}}}}},
  };
  const std::string before = readWholeFile(folder / "a.mdb").value();
  for (std::size_t i = 0; i < bad.size(); ++i) {
    EXPECT_FALSE(createTable(folder / "a.mdb", bad[i], reason)) << "table " << i;
  }
  EXPECT_EQ(readWholeFile(folder / "a.mdb"), before);
}

TEST(Creation, TakesPasswordsOfTwentyCharacters) {
  const Folder folder;
  std::string reason;
  const std::string longest = "12345678901234567890";
  makeDatabase(folder / "a.mdb", {smallTable()}, {.password = longest});
  EXPECT_TRUE(open(folder / "a.mdb", longest));
  EXPECT_FALSE(open(folder / "a.mdb", longest.substr(1)));
  EXPECT_FALSE(createDatabase(folder / "b.mdb", {.password = longest + "1"}, reason));
  EXPECT_FALSE(std::filesystem::exists(folder / "b.mdb"));
}

TEST(Creation, LeavesNothingOnAFullDisk) {
  const Folder folder;
  std::string reason;
  bool full = true;
  for (int writes = 0; full; ++writes) {
    FailingFiles files(FailingFiles::Failure::diskFull, writes);
    const bool made = createDatabase(folder / "a.mdb", {.files = &files}, reason);
    full = files.failed();
    ASSERT_EQ(std::filesystem::exists(folder / "a.mdb"), made) << writes;
    ASSERT_FALSE(std::filesystem::exists(folder / "a.mdb.new")) << writes;
    if (made) {
      ASSERT_EQ(OpenedFile(folder / "a.mdb").check(), "") << writes;
      std::filesystem::remove(folder / "a.mdb");
    }
  }
  makeDatabase(folder / "b.mdb", {});
  full = true;
  for (int writes = 0; full; ++writes) {
    const std::string name = "T" + std::to_string(writes);
    FailingFiles files(FailingFiles::Failure::diskFull, writes);
    OpenedFile file(folder / "b.mdb", &files);
    NewTable table = peopleTable();
    table.name = name;
    const bool made = createTable(file.pager(), table, reason);
    full = files.failed();
    ASSERT_EQ(file.check(), "") << writes;
    ASSERT_EQ(file.table(name) != nullptr, made) << writes;
  }
}

TEST(Creation, TakesAsManyColumnsAsTheFormatHas) {
  const Folder folder;
  NewTable wide = {.name = "Wide"};
  for (int i = 0; i < 255; ++i) {
    const auto type = i % 3 == 0 ? ColumnType::memo : i % 3 == 1 ? ColumnType::boolean : ColumnType::text;
    wide.columns.push_back({.name = "Column number " + std::to_string(i), .type = type});
  }
  for (int i = 0; i < 32; ++i) {
    wide.indexes.push_back(
        {.name = "Index " + std::to_string(i), .columns = {{"column number " + std::to_string(i * 3 + 1)}}});
  }
  makeDatabase(folder / "a.mdb", {wide});
  {
    const auto database = open(folder / "a.mdb");
    const auto table = database->openTable("wide");
    ASSERT_TRUE(table);
    table->addNew();
    EXPECT_TRUE(table->write("Column number 254", std::string(200, 'x')));
    EXPECT_TRUE(table->write("Column number 252", std::string(3000, 'x')));
    EXPECT_TRUE(table->write("Column number 253", true));
    EXPECT_TRUE(table->update()) << table->lastError();
    table->moveFirst();
    EXPECT_EQ(read(*table, "Column number 252").size(), 3000U);
    EXPECT_EQ(read(*table, "Column number 253"), "True");
    EXPECT_EQ(read(*table, "Column number 1"), "False");
    EXPECT_EQ(read(*table, "Column number 2"), "()");
  }
  EXPECT_EQ(OpenedFile(folder / "a.mdb").check(), "");
}

}  // namespace
}  // namespace veltrano::access
