#include <gtest/gtest.h>

#include "base/files/whole.h"
#include "database/access/schema/catalog.h"
#include "database/access/schema/field_codec.h"
#include "harness.h"

namespace veltrano::access {
namespace {

using ByteList = std::vector<std::uint8_t>;

// Files as other programs make them, from ours by changing bytes.
class PatchedFile : public testing::Test {
 protected:
  void SetUp() override {
    // The day 0 masks the password with zeros, so that the header reads as that of any version.
    makeDatabase(file_, {peopleTable()}, {.created = 0.5});
    OpenedFile opened(file_);
    const TableDefinition table = *findTable(opened.pager(), "People");
    definition_ = table.page;
    root_ = table.primaryKey()->root;
  }
  void patch(std::size_t at, const std::string& bytes) {
    std::string content = readWholeFile(file_).value();
    replaceFile(file_, content.replace(at, bytes.size(), bytes));
  }
  void fill(int seed) {
    OpenedFile opened(file_);
    ASSERT_TRUE(opened.opened()) << opened.reason();
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
    ASSERT_NO_FATAL_FAILURE(fill(version));
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
      people->write("Code", id < 3 ? Value(std::to_string(id)) : Value(Null{}));
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

}  // namespace
}  // namespace veltrano::access
