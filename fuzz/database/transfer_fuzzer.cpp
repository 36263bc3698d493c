// Tables as users write them. The input is a schema text if it starts with 's': what tables can be made of is
// described in a form that makes the same again. Any other input is a CSV file: what can be imported is
// exported in a form that imports to the same records.

#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "base/files/whole.h"
#include "database/access/authoring/schema_text.h"
#include "database/access/schema/catalog.h"
#include "database/access/transfer/table_text.h"
#include "simulated_disk.h"

namespace {

using namespace veltrano;
using namespace veltrano::access;

std::filesystem::path workFile(const char* extension) {
  return std::filesystem::temp_directory_path() /
         ("veltrano-transfer-fuzzer-" + std::to_string(::getpid()) + extension);
}

std::string makeFile(const char* schema) {
  const auto file = workFile(".mdb");
  const auto tables = schema == nullptr ? std::vector<NewTable>() : *parseSchema(schema);
  if (!createDatabase(file, tables, {.created = 40000})) {
    std::abort();
  }
  std::string content = readWholeFile(file).value();
  std::filesystem::remove(file);
  return content;
}

std::unique_ptr<Pager> opened(SimulatedDisk& disk, const std::string& content) {
  disk.put("a.mdb", content);
  auto pager = Pager::open("a.mdb", {.files = &disk});
  if (!pager) {
    std::abort();
  }
  return *std::move(pager);
}

/// Empty if no table can be made.
std::string described(std::string_view schema) {
  static const std::string empty = makeFile(nullptr);
  const auto tables = parseSchema(schema);
  SimulatedDisk disk;
  const auto pager = opened(disk, empty);
  if (!tables || !createTables(*pager, *tables)) {
    return {};
  }
  std::string text;
  for (const NewTable& table : *tables) {
    const auto made = findTable(*pager, table.name);
    text += made ? describeTable(*made, pager->version()) : "lost";
  }
  return text;
}

/// Empty if the records cannot be imported.
std::string exported(std::string_view csv) {
  static const std::string empty = makeFile(
      "table T\n A text(20)\n B memo nonempty\n C binary(9)\n D long\n E double\n F single\n G datetime\n"
      " H currency\n I decimal(18,4)\n J guid\n K boolean\n L ole\n M integer\n N byte\n index I (A)");
  static const auto file = workFile(".csv");
  if (!replaceFile(file, csv)) {
    std::abort();
  }
  auto reader = CsvReader::open(file);
  SimulatedDisk disk;
  const auto pager = opened(disk, empty);
  if (!reader || !importRecords(*reader, *pager, "T", [](double) {})) {
    return {};
  }
  std::string all;
  const auto records = TableReader::open(*pager, "T", Walk::keyOrder);
  const auto collect = [&](std::string& text, double) { all += std::exchange(text, {}); };
  if (!records || !exportRecords(**records, TextForm::csv, Damage::fails, collect)) {
    std::abort();
  }
  return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const bool isSchema = input.starts_with('s');
  const std::string once = isSchema ? described(input.substr(1)) : exported(input);
  if (!once.empty() && (isSchema ? described(once) : exported(once)) != once) {
    std::abort();
  }
  return 0;
}
