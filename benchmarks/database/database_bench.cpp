// The Access engine as a host uses it, on 100,000 rows of an integer key, a text of 40 characters, a double
// and a date. Compared with mdb-export on the same file, and with SQLite with one transaction a row and
// without syncing, which gives the same guarantee as Update (safe if the process dies; safe against power
// failure only after CloseTable).

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/files/replace.h"
#include "base/files/whole.h"
#include "database/access/authoring/create_database.h"
#include "encrypted_files.h"
#include "veltrano/mdb.h"

namespace {

using veltrano::Date;
using veltrano::Value;
using veltrano::VeltranoMDB;
using veltrano::access::ColumnType;

constexpr int rows = 100000;

std::filesystem::path inTemporary(const char* name) {
  return std::filesystem::temp_directory_path() / name;
}

/// 40 characters, different for each row and in random order, so that the second index changes everywhere.
std::string textOf(int row) {
  std::string text = "Somebody's name and address, entry ";
  text += std::to_string(100000 + row * 7919LL % rows).substr(1);
  return text;
}

/// A file with the empty table "Rows": a primary key and an index on the text.
std::string makeFile(const std::filesystem::path& file) {
  std::filesystem::remove(file);
  veltrano::access::NewTable table;
  table.name = "Rows";
  table.columns = {{.name = "ID", .type = ColumnType::longInteger},
                   {.name = "Name", .type = ColumnType::text, .size = 40},
                   {.name = "Amount", .type = ColumnType::real},
                   {.name = "Moment", .type = ColumnType::dateTime}};
  table.indexes = {{.name = "PrimaryKey", .columns = {{.name = "ID"}}, .primary = true},
                   {.name = "ByName", .columns = {{.name = "Name"}}}};
  if (const auto made = veltrano::access::createDatabase(file, {table}); !made) {
    std::fprintf(stderr, "%s\n", made.reason().c_str());
    std::abort();
  }
  return file.string();
}

void addRows(VeltranoMDB& mdb) {
  for (int row = 0; row < rows; ++row) {
    mdb.AddNew();
    mdb.WriteRecord("ID", row);
    mdb.WriteRecord("Name", textOf(row));
    mdb.WriteRecord("Amount", row * 1.25);
    mdb.WriteRecord("Moment", Date{40000 + row / 16.0});
    mdb.Update();
  }
}

const std::string& fullFile() {
  static const std::string name = [] {
    const std::string made = makeFile(inTemporary("veltrano_bench_full.mdb"));
    VeltranoMDB mdb;
    mdb.OpenDB(made);
    mdb.OpenTable("Rows");
    addRows(mdb);
    return made;
  }();
  return name;
}

void countRows(benchmark::State& state) {
  state.counters["rows/s"] = benchmark::Counter(rows, benchmark::Counter::kIsIterationInvariantRate);
}

void addNewUpdate(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    const std::string file = makeFile(inTemporary("veltrano_bench_new.mdb"));
    VeltranoMDB mdb;
    mdb.OpenDB(file);
    mdb.OpenTable("Rows");
    state.ResumeTiming();
    addRows(mdb);
    mdb.CloseTable();
    mdb.CloseDatabase();
  }
  countRows(state);
}
BENCHMARK(addNewUpdate)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A copy of a file, encrypted as the sample of that name is (encrypted_files.h); itself if the name is empty.
std::string encryptedCopy(const std::string& file, const std::string& label, std::string& password) {
  if (label.empty()) {
    return file;
  }
  const auto& sample = veltrano::access::encryptedSample(label);
  const auto copy = inTemporary("veltrano_bench_encrypted.accdb");
  (void)veltrano::replaceFile(
      copy, veltrano::access::encrypted(veltrano::readWholeFile(file).value_or(""), sample));
  password = sample.password;
  return copy.string();
}

/// From opening to closing, so that every page is read from the file and decoded.
void openAndScan(benchmark::State& state, const char* encryption) {
  std::string password;
  const std::string file = encryptedCopy(fullFile(), encryption, password);
  for (auto _ : state) {
    VeltranoMDB mdb;
    mdb.OpenDB(file, "", password);
    mdb.OpenTable("Rows");
    int seen = 0;
    for (; !mdb.Eof(); mdb.MoveNext()) {
      benchmark::DoNotOptimize(mdb.ReadRecord_String("Name"));
      ++seen;
    }
    if (seen != rows) {
      state.SkipWithError("rows are missing");
    }
  }
  countRows(state);
}

void openAndAdd(benchmark::State& state, const char* encryption) {
  for (auto _ : state) {
    state.PauseTiming();
    std::string password;
    const std::string file =
        encryptedCopy(makeFile(inTemporary("veltrano_bench_new.mdb")), encryption, password);
    state.ResumeTiming();
    VeltranoMDB mdb;
    mdb.OpenDB(file, "", password);
    mdb.OpenTable("Rows");
    addRows(mdb);
    mdb.CloseTable();
    mdb.CloseDatabase();
  }
  countRows(state);
}

const int encryptedBenchmarks = [] {
  for (const char* label : {"", "RC4, 128 bits", "AES-128, 50000 rounds", "agile, AES-256, SHA-512"}) {
    const std::string name = *label == '\0' ? "plain" : label;
    benchmark::RegisterBenchmark(("openAndScan/" + name).c_str(), openAndScan, label)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark(("openAndAdd/" + name).c_str(), openAndAdd, label)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
  }
  return 0;
}();

void sqliteInsertUnsynced(benchmark::State& state) {
  const auto file = inTemporary("veltrano_bench.sqlite");
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(file);
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    sqlite3_exec(database,
                 "pragma synchronous=off; create table Rows(ID integer primary key, Name text, Amount real,"
                 " Moment real); create index ByName on Rows(Name)",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(database, "insert into Rows values(?,?,?,?)", -1, &insert, nullptr);
    state.ResumeTiming();
    for (int row = 0; row < rows; ++row) {
      const std::string text = textOf(row);
      sqlite3_bind_int(insert, 1, row);
      sqlite3_bind_text(insert, 2, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
      sqlite3_bind_double(insert, 3, row * 1.25);
      sqlite3_bind_double(insert, 4, 40000 + row / 16.0);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_close(database);
  }
  std::filesystem::remove(file);
  countRows(state);
}
BENCHMARK(sqliteInsertUnsynced)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

void readEveryField(benchmark::State& state) {
  const std::string& file = fullFile();
  VeltranoMDB mdb;
  mdb.OpenDB(file);
  mdb.OpenTable("Rows");
  for (auto _ : state) {
    int seen = 0;
    for (mdb.MoveFirst(); !mdb.Eof(); mdb.MoveNext()) {
      for (const char* field : {"ID", "Name", "Amount", "Moment"}) {
        benchmark::DoNotOptimize(mdb.ReadRecord_String(field));
      }
      ++seen;
    }
    if (seen != rows) {
      state.SkipWithError("rows are missing");
    }
  }
  countRows(state);
}
BENCHMARK(readEveryField)->Unit(benchmark::kMillisecond)->UseRealTime();

void mdbExport(benchmark::State& state) {
  const std::string command = "mdb-export " + fullFile() + " Rows > /dev/null";
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) {
      state.SkipWithError("mdb-export is missing (package mdbtools)");
    }
  }
  countRows(state);
}
BENCHMARK(mdbExport)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The last row, so that FindRecord reads the whole table: the fields have no index.
void findByReading(benchmark::State& state, const char* field, const std::string& value) {
  VeltranoMDB mdb;
  mdb.OpenDB(fullFile());
  mdb.OpenTable("Rows");
  for (auto _ : state) {
    if (!mdb.FindRecord(field, value, -1)) {
      state.SkipWithError("not found");
    }
  }
  countRows(state);
}
BENCHMARK_CAPTURE(findByReading, number, "Amount", "124998.75")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(findByReading, date, "Moment", "2026-08-15 22:30:00")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// Rows here and there, one after another, by fields with an index: that of the primary key, and another one.
void findByIndex(benchmark::State& state, const char* field, std::string (*valueOf)(int row), bool there) {
  VeltranoMDB mdb;
  mdb.OpenDB(fullFile());
  mdb.OpenTable("Rows");
  int row = 0;
  for (auto _ : state) {
    row = (row + 7919) % rows;
    if (mdb.FindRecord(field, valueOf(row), there ? 0 : -1) != there) {
      state.SkipWithError(there ? "not found" : "found");
    }
  }
}
std::string upperTextOf(int row) {
  return "SOMEBODY'S" + textOf(row).substr(10);
}
std::string numberOf(int row) {
  return std::to_string(row);
}
BENCHMARK_CAPTURE(findByIndex, number, "ID", numberOf, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(findByIndex, textWithoutCase, "Name", upperTextOf, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(findByIndex, textInWrongCase, "Name", upperTextOf, false)->Unit(benchmark::kMicrosecond);

/// One binary value of so many megabytes, a transaction larger than the cache: time per megabyte must not grow.
void storeLargeValue(benchmark::State& state) {
  const auto file = inTemporary("veltrano_bench_large.mdb");
  const auto megabytes = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(file);
    veltrano::access::createDatabase(
        file, {{.name = "Rows", .columns = {{.name = "Large", .type = ColumnType::ole}}}});
    VeltranoMDB mdb;
    mdb.OpenDB(file.string());
    mdb.OpenTable("Rows");
    const Value value(Value::Bytes(megabytes << 20, 'x'));
    state.ResumeTiming();
    mdb.AddNew();
    mdb.WriteRecord("Large", value);
    mdb.Update();
    mdb.CloseDatabase();
  }
  std::filesystem::remove(file);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * (state.range(0) << 20));
}
BENCHMARK(storeLargeValue)->Arg(32)->Arg(64)->Arg(128)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
