// Changes bytes of a good database and uses the file as a host would. The input is a list of changes, six
// bytes each: u24 offset, u8 kind of change, u16 argument. So the fuzzer works on the structures instead of
// finding the format's magic numbers first; a kind of change past the last one replaces the page by that of
// another number.

#include <unistd.h>

#include <algorithm>

#include "base/files/whole.h"
#include "database/access/authoring/create_database.h"
#include "database/access/storage/text_codec.h"
#include "hostile.h"
#include "simulated_disk.h"

namespace {

using namespace veltrano;
using namespace veltrano::access;

constexpr std::size_t pageSize = 4096;

const std::filesystem::path& folder() {
  static const auto path =
      std::filesystem::temp_directory_path() / ("veltrano-access-fuzzer-" + std::to_string(::getpid()));
  return path;
}

std::string makeGoodFile() {
  std::filesystem::create_directories(folder());
  const auto file = folder() / "good.mdb";
  std::filesystem::remove(file);
  const NewTable table = {.name = "T",
                          .columns = {{.name = "ID", .type = ColumnType::longInteger, .autoNumber = true},
                                      {.name = "Name", .type = ColumnType::text, .size = 40},
                                      {.name = "Notes", .type = ColumnType::memo},
                                      {.name = "Picture", .type = ColumnType::ole},
                                      {.name = "Price", .type = ColumnType::numeric},
                                      {.name = "Flag", .type = ColumnType::boolean}},
                          .indexes = {{.name = "P", .columns = {{"ID"}}, .primary = true},
                                      {.name = "N", .columns = {{"Name"}, {"Price", false}}}}};
  createDatabase(file, {table}, {.created = 40000});
  auto opened = std::make_shared<OpenFile>();
  opened->pager = *Pager::open(file, {});
  AccessRecordset recordset(opened, *findTable(*opened->pager, "T"));
  for (int i = 0; i < 50; ++i) {
    recordset.addNew();
    recordset.write("Name", "name " + std::to_string(i * 37 % 50));
    recordset.write("Notes", std::string(static_cast<std::size_t>(i % 7 == 0 ? 9000 : i), 'n'));
    recordset.write("Picture", std::string(static_cast<std::size_t>(i * 3), 'p'));
    recordset.write("Price", i);
    recordset.update();
  }
  recordset.close();
  opened->pager.reset();
  std::string good = readWholeFile(file).value();
  std::filesystem::remove_all(folder());
  return good;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string good = makeGoodFile();
  static SimulatedDisk files;
  std::string text;
  storedTextToUtf8(Bytes(data, size), text);

  std::string bad = good;
  for (; size >= 6; data += 6, size -= 6) {
    const std::size_t at = pageSize + load24(data) % (bad.size() - pageSize - 4);
    const std::uint16_t argument = load16(data + 4);
    auto* bytes = reinterpret_cast<std::uint8_t*>(bad.data());
    switch (data[3] % 6) {
      case 0:
        bad[at] = static_cast<char>(argument);
        break;
      case 1:
        store16(bytes + at, argument);
        break;
      case 2:
        store32(bytes + at, argument);
        break;
      case 3:
        bad[at - at % pageSize + argument % 64] = static_cast<char>(argument >> 8);
        break;
      case 4:
        store32(bytes + at - at % pageSize + (argument % 16) * 4, argument >> 8);
        break;
      default:
        bad.replace(at - at % pageSize, pageSize, good, argument % (good.size() / pageSize) * pageSize,
                    pageSize);
    }
  }
  files.put("bad.mdb", std::move(bad));
  files.calls.clear();
  useHostileFile("bad.mdb", files);
  return 0;
}
