#include "hostile.h"
#include "base/files/whole.h"
#include "database/access/storage/bytes.h"
#include "harness.h"
#include "simulated_disk.h"

namespace veltrano::access {
namespace {

std::string goodFile(const std::filesystem::path& file) {
  makeDatabase(file, {peopleTable(), plainTable(), tableOf("table Nodes; ID long; Up long; primary P (ID)")},
               {.relations = {{"R", "Nodes", {"ID"}, "Nodes", {"Up"}, true, OnDelete::cascade}}});
  OpenedFile opened(file);
  for (int id = 1; id <= 20; ++id) {
    add(*opened.table("Nodes"), {{"ID", id}, {"Up", (id + 1) / 2}});
  }
  for (const char* name : {"People", "Plain"}) {
    const auto recordset = opened.table(name);
    RandomWork work(7);
    Model model;
    for (int i = 0; i < 30; ++i) {
      Model after;
      if (work.step(*recordset, model, after)) {
        model = std::move(after);
      }
    }
  }
  return readWholeFile(file).value();
}

// Bytes of structures are changed at random: page kinds, counts, slots, pointers, lengths. Whatever comes of
// it, using the file ends and touches no memory that is not its own (the sanitizers watch).
TEST(Hostile, DamagedBytesDoNoHarm) {
  const Folder folder;
  const std::string good = goodFile(folder / "good.mdb");
  RandomWork work(11);
  for (int i = 0; i < 60; ++i) {
    std::string bad = good;
    const std::array<std::size_t, 3> reaches = {16, 64, pageSize};
    for (int left = 1 + work.number(6); left > 0; --left) {
      const auto page =
          static_cast<std::size_t>(work.number(static_cast<int>(good.size() / pageSize) - 1)) + 1;
      const auto reach = reaches[static_cast<std::size_t>(work.number(3))];
      const auto at = page * pageSize + static_cast<std::size_t>(work.number(static_cast<int>(reach)));
      const std::array<int, 4> bytes = {0, 0xFF, work.number(256), good[at] ^ (1 << work.number(8))};
      bad[at] = static_cast<char>(bytes[static_cast<std::size_t>(work.number(4))]);
    }
    if (work.number(10) == 0) {
      bad.resize(static_cast<std::size_t>(work.number(static_cast<int>(bad.size()))));
    }
    SimulatedDisk disk;
    disk.put("bad.mdb", std::move(bad));
    useHostileFile("bad.mdb", disk);
  }
}

struct HostileCase {
  const char* name;
  std::size_t page;  // 0: every fourth of this kind
  std::uint8_t kind;
  std::size_t at;
  ByteList bytes;  // empty: the page's own number
};

// One lie each, where it leads furthest.
TEST(Hostile, LiesAreSeenThrough) {
  const Folder folder;
  const std::string good = goodFile(folder / "good.mdb");
  const auto le32 = [](std::uint32_t value) {
    ByteList bytes(4);
    store32(bytes.data(), value);
    return bytes;
  };
  const std::vector<HostileCase> cases = {
      {"definition that continues itself", 2, page_kind::definition, 4, le32(2)},
      {"definition as long as anything", 2, page_kind::definition, 8, le32(0xFFFFFFFF)},
      {"as many columns as anything", 2, page_kind::definition, 45, {0xFF, 0xFF}},
      {"as many indexes as anything", 2, page_kind::definition, 51, le32(0x7FFFFFFF)},
      {"map far after the end", 2, page_kind::definition, 55, le32(0xFFFFFF00)},
      {"more slots than fit", 0, page_kind::data, 12, {0xFF, 0xFF}},
      {"slot outside of the page", 0, page_kind::data, 14, {0xFF, 0x1F}},
      {"slot that points to itself", 0, page_kind::data, 14, {0x00, 0x4F}},
      {"leaf that follows itself", 0, page_kind::indexLeaf, 16, {}},
      {"leaf full of entries", 0, page_kind::indexLeaf, 27, ByteList(453, 0xFF)},
      {"prefix longer than the page", 0, page_kind::indexLeaf, 24, {0xFF, 0xFF}},
      {"map of all pages", 1, page_kind::data, pageSize - 64, ByteList(64, 0xFF)},
  };
  for (const HostileCase& one : cases) {
    int found = 0;
    for (std::size_t page = 1; page < good.size() / pageSize; ++page) {
      if ((one.page != 0 && page != one.page) ||
          static_cast<std::uint8_t>(good[page * pageSize]) != one.kind || found++ % 4 != 0) {
        continue;
      }
      std::string bad = good;
      const auto bytes = one.bytes.empty() ? le32(static_cast<std::uint32_t>(page)) : one.bytes;
      std::copy(bytes.begin(), bytes.end(),
                bad.begin() + static_cast<std::ptrdiff_t>(page * pageSize + one.at));
      SCOPED_TRACE(one.name);
      SimulatedDisk disk;
      disk.put("bad.mdb", std::move(bad));
      useHostileFile("bad.mdb", disk);
    }
  }
}

}  // namespace
}  // namespace veltrano::access
