#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "database/access/schema/field_codec.h"
#include "harness.h"

namespace veltrano::access {
namespace {

// Files as other programs make them, from ours by changing bytes.
class PatchedFile : public DatabaseTest {
 protected:
  void SetUp() override {
    // The day 0 masks the password with zeros, so that the header reads as that of any version.
    make({peopleTable()}, {.created = 0.5});
    const TableDefinition people = *findTable(pager(), "People");
    definition_ = people.page;
    root_ = people.primaryKey()->root;
    close();
  }
  void patch(std::size_t at, const std::string& bytes) {
    std::string content = readWholeFile(file_).value();
    replaceFile(file_, content.replace(at, bytes.size(), bytes));
  }
  void fill(int seed) {
    reopen();
    ASSERT_TRUE(opened_->opened()) << opened_->reason();
    RandomWork work(static_cast<unsigned>(seed));
    for (int i = 0; i < 40; ++i) {
      Model after;
      if (work.step(table("People"), model_, after)) {
        model_ = std::move(after);
      }
    }
    close();
  }
  std::string whatIsWrong() {
    reopen();
    const std::string wrong = check();
    return wrong.empty() ? difference(readAll(table("People")), model_, false) : wrong;
  }

  std::size_t definition_ = 0;
  std::size_t root_ = 0;
  Model model_;
};

TEST_F(PatchedFile, OfAnyVersionIsOpened) {
  for (const int version : {2, 3, 5}) {
    patch(4, "Standard ACE DB");
    patch(0x14, std::string(1, static_cast<char>(version)));
    ASSERT_NO_FATAL_FAILURE(fill(version));
    EXPECT_GT(model_.size(), 5U);
    EXPECT_EQ(whatIsWrong(), "") << version;
    // Emptied, for the keys of numeric columns differ between versions.
    AccessRecordset& people = table("People");
    for (people.moveFirst(); people.atEnd() == false; people.moveNext()) {
      EXPECT_TRUE(people.remove());
    }
    close();
    model_.clear();
  }
}

// Access 97. The code page lies under a mask, so that XOR changes it.
TEST_F(PatchedFile, OfJet3IsReadInItsCodePages) {
  const auto setCodePage = [this](unsigned from, unsigned to) {
    const std::string content = readWholeFile(file_).value();
    const auto byte = [&](std::size_t at, unsigned change) {
      return static_cast<char>(content[at] ^ static_cast<char>(change));
    };
    patch(0x3C, {byte(0x3C, from ^ to), byte(0x3D, (from ^ to) >> 8)});
  };
  patch(0x14, std::string(1, '\0'));
  // A definition in one of its pages of 2048 bytes: one text column, with a code page of its own.
  const ByteList record = {10, 0, 0, 0, 0, 0, 0, 1, 0, 9, 4, 0xE5, 4, 2, 0, 0, 50, 0};
  ByteList page(2048);
  const ByteList head = {2, 1, 'V', 'C', 0, 0, 0, 0, 65};
  std::copy(head.begin(), head.end(), page.begin());
  page[21] = page[23] = page[25] = 1;  // columns
  std::copy(record.begin(), record.end(), page.begin() + 43);
  page[61] = 1;
  page[62] = 'A';
  page[63] = page[64] = 0xFF;
  patch(8192, {page.begin(), page.end()});
  for (const unsigned own : {1253U, 0U}) {
    patch(8192 + 43 + 11, {static_cast<char>(own), static_cast<char>(own >> 8)});
    setCodePage(1252, 1251);
    {
      const OpenedFile opened(file_);
      ASSERT_TRUE(opened.opened()) << opened.reason();
      EXPECT_FALSE(opened.pager().writable());
      const auto table = readTableDefinition(opened.pager(), 4);
      ASSERT_TRUE(table && table->find("a") != nullptr);
      std::string text;
      EXPECT_TRUE(cellToText(opened.pager(), table->columns[0], ByteList{0xE1}, text));
      EXPECT_EQ(text, own == 0 ? "\xD0\xB1" : "\xCE\xB1");
    }
    setCodePage(1251, 1252);
  }
  setCodePage(1252, 7);
  EXPECT_FALSE(OpenedFile(file_).opened());
}

TEST_F(PatchedFile, WithADamagedPrimaryKeyIsRead) {
  fill(1);
  patch(root_ * pageSize, std::string(2, '\0'));
  reopen();
  EXPECT_EQ(difference(readAll(table("People")), model_, false), "");
}

TEST_F(PatchedFile, CountsTheKeysOfEachIndex) {
  const auto counts = [this] {
    const std::string content = readWholeFile(file_).value();
    std::vector<std::uint32_t> all;
    for (std::size_t i = 0; i < peopleTable().indexes.size(); ++i) {
      all.push_back(
          load32(reinterpret_cast<const std::uint8_t*>(&content[definition_ * pageSize + 63 + 12 * i + 4])));
    }
    return all;
  };
  reopen();
  for (int id = 1; id <= 4; ++id) {
    EXPECT_TRUE(add(table("People"), {{"ID", id},
                                      {"Name", id < 3 ? "same" : "other"},
                                      {"Code", id < 3 ? Value(std::to_string(id)) : Value(Null{})}}));
  }
  close();
  // ID, Name, Code (null twice: left out), Notes and Path (null: one key), Amount (left out), Price.
  EXPECT_EQ(counts(), (std::vector<std::uint32_t>{4, 2, 2, 1, 1, 0, 1}));
  reopen();
  EXPECT_TRUE(change(table("People"), {{"Code", "9"}}) && table("People").remove());
  close();
  EXPECT_EQ(counts(), (std::vector<std::uint32_t>{4, 2, 3, 1, 1, 0, 1})) << "they never go down";
}

TEST_F(PatchedFile, MayLackTheMapOfPagesWithRoom) {
  fill(1);
  patch(definition_ * pageSize + 59, std::string(4, '\0'));
  EXPECT_EQ(whatIsWrong(), "");
}

TEST_F(PatchedFile, WithAChainThatLeadsOutOfItIsUnsound) {
  reopen();
  EXPECT_TRUE(add(table("People"), {{"ID", 1}, {"Picture", std::string(5000, 'x')}}));
  close();
  // The last piece is the shorter one; its pointer to the next is zero.
  const std::size_t piece =
      readWholeFile(file_).value().rfind(std::string(4, '\0') + std::string(5000 % 4072, 'x'));
  ASSERT_NE(piece, std::string::npos);
  patch(piece, "\xFF\xFF\xFF\xFF");
  EXPECT_NE(whatIsWrong(), "");
}

}  // namespace
}  // namespace veltrano::access
