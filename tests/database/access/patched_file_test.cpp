#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "database/access/schema/field_codec.h"
#include "encrypted_files.h"
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
    fillAtRandom(table("People"), static_cast<unsigned>(seed), 40, model_);
    close();
  }
  std::string whatIsWrong() {
    reopen();
    const std::string wrong = check();
    return wrong.empty() ? difference(table("People"), model_, false) : wrong;
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
    while (table("People").moveFirst()) {
      EXPECT_TRUE(table("People").remove());
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
  std::string page = unhex("02015643 00000000 41") + std::string(2039, '\0');
  page[21] = page[23] = page[25] = 1;  // columns
  patch(8192, page.replace(43, 22, unhex("0A00000000000001 000904E5040200003200 0141FFFF")));
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

TEST_F(PatchedFile, MayLackTheMapOfPagesWithRoomAndThePrimaryKey) {
  fill(1);
  patch(definition_ * pageSize + 59, std::string(4, '\0'));
  EXPECT_EQ(whatIsWrong(), "");
  close();
  patch(root_ * pageSize, std::string(2, '\0'));
  EXPECT_NE(whatIsWrong(), "");
  EXPECT_EQ(difference(table("People"), model_, false), "");
}

}  // namespace
}  // namespace veltrano::access
