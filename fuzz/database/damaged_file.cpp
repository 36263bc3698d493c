#include "damaged_file.h"

#include <algorithm>
#include <cstdlib>

#include "base/files/whole.h"
#include "database/access/authoring/create_database.h"
#include "database/access/recordset.h"
#include "database/access/schema/catalog.h"
#include "simulated_disk.h"
#include "tests/temporary_folder.h"

namespace veltrano::access {

namespace {

constexpr std::size_t pageSize = 4096;
const char* const fileName = "good.mdb";

std::uint8_t* bytesOf(std::string& text) {
  return reinterpret_cast<std::uint8_t*>(text.data());
}

std::vector<NewTable> tables() {
  return {{.name = "T",
           .columns = {{.name = "ID", .type = ColumnType::longInteger, .autoNumber = true},
                       {.name = "Name", .type = ColumnType::text, .size = 40},
                       {.name = "Notes", .type = ColumnType::memo},
                       {.name = "Picture", .type = ColumnType::ole},
                       {.name = "Price", .type = ColumnType::numeric},
                       {.name = "Born", .type = ColumnType::dateTime},
                       {.name = "Mark", .type = ColumnType::guid},
                       {.name = "Flag", .type = ColumnType::boolean}},
           .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true},
                       {.name = "N", .columns = {{"Name"}, {"Price", false}}},
                       {.name = "L", .columns = {{"Notes"}}}}},
          {.name = "Nodes",
           .columns = {{.name = "ID", .type = ColumnType::longInteger},
                       {.name = "Up", .type = ColumnType::longInteger},
                       {.name = "Of", .type = ColumnType::longInteger}},
           .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true}}}};
}

const std::vector<NewRelation> relations = {{.name = "Tree",
                                             .parent = "Nodes",
                                             .parentColumns = {"ID"},
                                             .child = "Nodes",
                                             .childColumns = {"Up"},
                                             .cascadeUpdates = true,
                                             .onDelete = OnDelete::cascade},
                                            {.name = "Owner",
                                             .parent = "T",
                                             .parentColumns = {"ID"},
                                             .child = "Nodes",
                                             .childColumns = {"Of"},
                                             .onDelete = OnDelete::setNull}};

void fill(SimulatedDisk& disk) {
  auto opened = std::make_shared<OpenFile>();
  opened->pager = *Pager::open(fileName, {.files = &disk});
  AccessRecordset table(opened, *findTable(*opened->pager, "T"));
  for (int i = 0; i < 40; ++i) {
    table.addNew();
    table.write("Name", "name " + std::to_string(i * 37 % 40));
    table.write("Notes", std::string(static_cast<std::size_t>(i % 20 == 0 ? 5000 : i), 'n'));
    table.write("Picture", std::string(static_cast<std::size_t>(i * 3), 'p'));
    table.write("Price", i);
    table.update();
  }
  AccessRecordset nodes(opened, *findTable(*opened->pager, "Nodes"));
  for (int i = 1; i <= 30; ++i) {
    nodes.addNew();
    nodes.write("ID", i);
    nodes.write("Up", (i + 1) / 2);
    nodes.write("Of", i);
    nodes.update();
  }
  nodes.close();
  table.close();
}

const std::string& plainFile() {
  static const std::string content = [] {
    const tests::TemporaryFolder folder;
    createDatabase(folder / fileName, tables(), {.relations = relations, .created = 40000});
    SimulatedDisk disk;
    disk.put(fileName, readWholeFile(folder / fileName).value());
    fill(disk);
    return disk.content(fileName);
  }();
  return content;
}

}  // namespace

GoodFile::GoodFile(const EncryptedSample* encryption) : plain_(plainFile()), stored_(plain_) {
  if (encryption != nullptr) {
    stored_ = encrypted(plain_, *encryption);
    password_ = encryption->password;
    cipher_ = *unlock({reinterpret_cast<const std::uint8_t*>(encryption->information.data()),
                       encryption->information.size()},
                      load32(reinterpret_cast<const std::uint8_t*>(encryption->key.data())), password_);
  }
}

std::vector<GoodFile> GoodFile::fromEnvironment() {
  std::vector<GoodFile> files;
  if (const char* const name = std::getenv("ACCESS_FUZZ_FILE")) {
    files.push_back(GoodFile());
    files.back().plain_ = files.back().stored_ = readWholeFile(name).value();
    const char* const password = std::getenv("ACCESS_FUZZ_PASSWORD");
    files.back().password_ = password != nullptr ? password : "";
  }
  return files;
}

std::vector<GoodFile> GoodFile::makeAll() {
  std::vector<GoodFile> files = fromEnvironment();
  if (files.empty()) {
    files.emplace_back(nullptr);
    for (const char* label :
         {"RC4, 40 bits", "RC4, 128 bits", "AES-256, no rounds", "agile, AES-192, SHA-1, 2 rounds"}) {
      files.emplace_back(&encryptedSample(label));
    }
  }
  return files;
}

std::string GoodFile::encodeChanged(const std::string& bad) const {
  std::string all = stored_;
  for (std::size_t at = pageSize; at + pageSize <= bad.size(); at += pageSize) {
    if (bad.compare(at, pageSize, plain_, at, pageSize) != 0) {
      all.replace(at, pageSize, bad, at, pageSize);
      if (cipher_) {
        cipher_->encode(static_cast<PageNumber>(at / pageSize), {bytesOf(all) + at, pageSize});
      }
    }
  }
  return all;
}

std::string GoodFile::damaged(Bytes changes) const {
  std::string bad = plain_;
  std::vector<std::pair<std::size_t, char>> encoded;
  for (; changes.size() >= 6; changes = changes.subspan(6)) {
    const std::size_t at = pageSize + load24(changes.data()) % (bad.size() - pageSize - 4);
    const std::size_t page = at - at % pageSize;
    const std::uint16_t argument = load16(changes.data() + 4);
    switch (changes[3] % 7) {
      case 0:
        bad[at] = static_cast<char>(argument);
        break;
      case 1:
        store16(bytesOf(bad) + at, argument);
        break;
      case 2:
        store32(bytesOf(bad) + at, argument);
        break;
      case 3:
        bad[page + argument % 64] = static_cast<char>(argument >> 8);
        break;
      case 4:
        store32(bytesOf(bad) + page + (argument % 16) * 4, argument >> 8);
        break;
      case 5:
        bad.replace(page, pageSize, plain_, argument % (plain_.size() / pageSize) * pageSize, pageSize);
        break;
      default:
        encoded.emplace_back(at, static_cast<char>(argument));
    }
  }
  std::string all = encodeChanged(bad);
  for (const auto& [at, byte] : encoded) {
    all[at] = byte;
  }
  return all;
}

}  // namespace veltrano::access
