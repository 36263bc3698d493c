// The commands on databases. They use the embedded engine on every system, so that they do the same everywhere.

#include <cstdio>
#include <memory>

#include "database/access/authoring/schema_text.h"
#include "database/access/check/database_check.h"
#include "database/access/schema/catalog.h"
#include "database/access/transfer/table_text.h"
#include "tools/program.h"

namespace veltrano::tools {

namespace {

using access::Pager;

std::unique_ptr<Pager> openToWrite(const DatabaseFile& file) {
  return orProblem(Pager::open(pathFromUtf8(file.name), {.password = file.password}), file.name);
}

std::unique_ptr<Pager> openToRead(const DatabaseFile& file) {
  auto pager = Pager::open(pathFromUtf8(file.name), {.readOnly = true, .password = file.password});
  // A journal that an ended process left can only be brought into a file that is open for writing.
  return pager ? *std::move(pager) : openToWrite(file);
}

}  // namespace

void createDatabaseFrom(const DatabaseFile& file, const std::string& schema) {
  const auto tables = orProblem(access::parseSchema(readInput(schema)), schema);
  noteInterruptions({});
  orProblem(access::createDatabase(pathFromUtf8(file.name), tables, {.password = file.password}), file.name);
}

void listTables(const DatabaseFile& file, bool asSchema) {
  const auto pager = openToRead(file);
  const auto catalog = access::readCatalog(*pager);
  if (!catalog) {
    throw Problem(file.name, "the catalog is damaged");
  }
  std::string text;
  for (const access::CatalogEntry& entry : *catalog) {
    if (entry.kind != access::ObjectKind::table || entry.isSystem()) {
      continue;
    }
    if (!asSchema) {
      text += entry.name + "\n";
    } else if (const auto table = access::findTable(*pager, entry.name)) {
      text += describeTable(*table, pager->version()) + "\n";
    } else {
      text += "# " + entry.name + ": " + table.status().reason() + "\n\n";
    }
  }
  Output().write(text);
}

void exportTable(const DatabaseFile& file, const Export& options) {
  constexpr std::size_t large = std::size_t{1} << 16;
  const std::string subject = file.name + ": " + options.table;
  const auto pager = openToRead(file);
  const auto walk = options.rescue ? access::Walk::storageOrder : access::Walk::keyOrder;
  const auto reader = orProblem(access::TableReader::open(*pager, options.table, walk), subject);
  Output output(options.output, file.name);
  Progress progress("exporting");
  const auto damaged = exportRecords(
      *reader, options.asJson ? access::TextForm::jsonLines : access::TextForm::csv,
      options.rescue ? access::Damage::skipped : access::Damage::fails, [&](std::string& text, double done) {
        if (text.size() >= large || done == 1) output.write(text);
        progress.at(done);
      });
  if (!damaged) {
    throw Problem(subject, damaged.status().reason() + "; --rescue exports what can be read");
  }
  output.finish();
  if (*damaged != 0) {
    std::fprintf(stderr, "veltrano: %s: %llu damaged records or values were left out\n", subject.c_str(),
                 static_cast<unsigned long long>(*damaged));
  }
}

void importTable(const DatabaseFile& file, const std::string& table, const std::string& csv) {
  auto reader = orProblem(access::CsvReader::open(pathFromUtf8(csv)), csv);
  const auto pager = openToWrite(file);
  noteInterruptions({});
  Progress progress("importing");
  const Status done = importRecords(reader, *pager, table, [&](double part) { progress.at(part); });
  orProblem(done, csv + " into " + file.name + ": " + table);
}

bool checkFile(const DatabaseFile& file) {
  const std::string fault = access::checkDatabase(*openToRead(file), access::CheckCounters::no);
  std::string text = file.name + ": " + (fault.empty() ? "sound" : fault) + "\n";
  Output().write(text);
  return fault.empty();
}

}  // namespace veltrano::tools
