// The embedded database engine through VeltranoMDB: 100,000 rows of an integer key, a text of 40 characters,
// a double and a date. mdbtools' mdb-export reads the same file, as a program of its own (with what it takes
// to start it).

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "database/access/access_engine.h"
#include "database/access/create_database.h"
#include "database/veltrano_mdb.h"

namespace {

using namespace veltrano;
using namespace veltrano::access;

constexpr int rowCount = 100000;

std::filesystem::path folder() {
  static const auto path = std::filesystem::temp_directory_path() / "veltrano-access-bench";
  std::filesystem::create_directories(path);
  return path;
}

void makeFile(const std::filesystem::path& file) {
  std::filesystem::remove(file);
  std::string reason;
  createDatabase(file, {}, reason);
  createTable(file,
              {.name = "T",
               .columns = {{.name = "ID", .type = ColumnType::longInteger},
                           {.name = "Name", .type = ColumnType::text, .size = 60},
                           {.name = "Number", .type = ColumnType::real},
                           {.name = "Day", .type = ColumnType::dateTime}},
               .indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
                           {.name = "Name", .columns = {{"Name"}}}}},
              reason);
}

// One AddNew and Update for each row, each of which survives the death of the process.
void fill(DatabaseEngine& engine, const std::filesystem::path& file) {
  VeltranoMDB table(engine);
  table.OpenDB(file.string());
  table.OpenTable("T");
  char name[64];
  for (int i = 0; i < rowCount; ++i) {
    // In no order, so that the second index is changed everywhere.
    std::snprintf(name, sizeof name, "Name %07lld of a text of forty letters...", i * 7919LL % rowCount);
    table.AddNew();
    table.WriteRecord("ID", i + 1);
    table.WriteRecord("Name", name);
    table.WriteRecord("Number", i * 0.5);
    table.WriteRecord("Day", Date{36526 + i * 0.25});
    table.Update();
  }
}

std::filesystem::path filledFile(DatabaseEngine& engine) {
  const auto file = folder() / "filled.mdb";
  static const bool made = [&] {
    makeFile(file);
    fill(engine, file);
    return true;
  }();
  benchmark::DoNotOptimize(made);
  return file;
}

void AddNewAndUpdate(benchmark::State& state) {
  const auto engine = makeAccessEngine();
  for (auto _ : state) {
    state.PauseTiming();
    makeFile(folder() / "new.mdb");
    state.ResumeTiming();
    fill(*engine, folder() / "new.mdb");
  }
  state.SetItemsProcessed(state.iterations() * rowCount);
}

void ScanAsText(benchmark::State& state) {
  const auto engine = makeAccessEngine();
  const auto file = filledFile(*engine);
  for (auto _ : state) {
    VeltranoMDB table(*engine);
    table.OpenDB(file.string());
    table.OpenTable("T");
    std::size_t bytes = 0;
    for (table.MoveFirst(); !table.Eof(); table.MoveNext()) {
      for (const char* field : {"ID", "Name", "Number", "Day"}) {
        bytes += table.ReadRecord_String(field).size();
      }
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.SetItemsProcessed(state.iterations() * rowCount);
}

void MdbExport(benchmark::State& state) {
  if (std::system("command -v mdb-export > /dev/null") != 0) {
    state.SkipWithError("mdbtools is not installed");
    return;
  }
  const auto engine = makeAccessEngine();
  const std::string command = "mdb-export " + filledFile(*engine).string() + " T > /dev/null";
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::system(command.c_str()));
  }
  state.SetItemsProcessed(state.iterations() * rowCount);
}

void FindLast(benchmark::State& state, const char* field, const std::string& value) {
  const auto engine = makeAccessEngine();
  VeltranoMDB table(*engine);
  table.OpenDB(filledFile(*engine).string());
  table.OpenTable("T");
  for (auto _ : state) {
    if (!table.FindRecord(field, value, 0)) {
      state.SkipWithError("not found");
      return;
    }
  }
}

BENCHMARK(AddNewAndUpdate)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ScanAsText)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(MdbExport)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(FindLast, Integer, "ID", "100000")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(FindLast, Text, "Name", "NAME 0092081 OF A TEXT OF FORTY LETTERS...")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
