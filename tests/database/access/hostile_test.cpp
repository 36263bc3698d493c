#include "hostile.h"
#include "base/files/whole.h"
#include "encrypted_files.h"
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
    Model model;
    fillAtRandom(*opened.table(name), 7, 30, model);
  }
  return readWholeFile(file).value();
}

void useHostile(const std::string& content) {
  SimulatedDisk disk;
  disk.put("bad.mdb", content);
  useHostileFile("bad.mdb", disk);
}

// Bytes of structures are changed at random: page kinds, counts, slots, pointers, lengths. Whatever comes of
// it, using the file ends and touches no memory that is not its own (the sanitizers watch).
TEST(Hostile, DamagedBytesDoNoHarm) {
  const Folder folder;
  const std::string good = goodFile(folder / "good.mdb");
  RandomWork work(11);
  for (int i = 0; i < 60; ++i) {
    std::string bad = good;
    constexpr std::array<int, 3> reaches = {16, 64, pageSize};
    for (int left = 1 + work.number(6); left > 0; --left) {
      const int page = work.number(static_cast<int>(good.size() / pageSize) - 1) + 1;
      const auto at = static_cast<std::size_t>(
          page * static_cast<int>(pageSize) + work.number(reaches[static_cast<std::size_t>(work.number(3))]));
      const std::array<int, 4> bytes = {0, 0xFF, work.number(256), good[at] ^ (1 << work.number(8))};
      bad[at] = static_cast<char>(bytes[static_cast<std::size_t>(work.number(4))]);
    }
    if (work.number(10) == 0) {
      bad.resize(static_cast<std::size_t>(work.number(static_cast<int>(bad.size()))));
    }
    useHostile(bad);
  }
}

// One lie each, where it leads furthest.
TEST(Hostile, LiesAreSeenThrough) {
  const Folder folder;
  const std::string good = goodFile(folder / "good.mdb");
  const struct {
    const char* name;
    std::size_t page;  // 0: every fourth of this kind
    std::uint8_t kind;
    std::size_t at;
    std::string bytes;  // empty: the page's own number
  } cases[] = {
      {"definition that continues itself", 2, page_kind::definition, 4, unhex("02000000")},
      {"definition as long as anything", 2, page_kind::definition, 8, "\xFF\xFF\xFF\xFF"},
      {"as many columns as anything", 2, page_kind::definition, 45, "\xFF\xFF"},
      {"as many indexes as anything", 2, page_kind::definition, 51, "\xFF\xFF\xFF\x7F"},
      {"map far after the end", 2, page_kind::definition, 55, unhex("00FFFFFF")},
      {"more slots than fit", 0, page_kind::data, 12, "\xFF\xFF"},
      {"slot outside of the page", 0, page_kind::data, 14, "\xFF\x1F"},
      {"slot that points to itself", 0, page_kind::data, 14, unhex("004F")},
      {"leaf that follows itself", 0, page_kind::indexLeaf, 16, ""},
      {"leaf full of entries", 0, page_kind::indexLeaf, 27, std::string(453, '\xFF')},
      {"prefix longer than the page", 0, page_kind::indexLeaf, 24, "\xFF\xFF"},
      {"map of all pages", 1, page_kind::data, pageSize - 64, std::string(64, '\xFF')},
  };
  for (const auto& [name, itsPage, kind, at, lie] : cases) {
    SCOPED_TRACE(name);
    int found = 0;
    for (std::size_t page = 1; page < good.size() / pageSize; ++page) {
      if ((itsPage != 0 && page != itsPage) || static_cast<std::uint8_t>(good[page * pageSize]) != kind ||
          found++ % 4 != 0) {
        continue;
      }
      const std::string own = {static_cast<char>(page), static_cast<char>(page >> 8), '\0', '\0'};
      const std::string& bytes = lie.empty() ? own : lie;
      std::string bad = good;
      useHostile(bad.replace(page * pageSize + at, bytes.size(), bytes));
    }
  }
}

}  // namespace
}  // namespace veltrano::access
