#ifndef VELTRANO_TESTS_DATABASE_ACCESS_HOSTILE_H
#define VELTRANO_TESTS_DATABASE_ACCESS_HOSTILE_H

// What a host could do with a file that wants to do harm: for the tests and the fuzz targets.

#include <algorithm>
#include <filesystem>
#include <string>

#include "database/access/check/database_check.h"
#include "database/access/recordset.h"
#include "database/access/schema/catalog.h"
#include "database/values/text_matcher.h"

namespace veltrano::access {

inline void readHostileTable(AccessRecordset& recordset, const std::vector<Column>& columns) {
  constexpr int mostRecords = 2000;
  std::string text;
  int records = 0;
  for (recordset.moveFirst(); recordset.atEnd() == false && records < mostRecords; ++records) {
    for (const Column& column : columns) {
      recordset.readText(column.name, text);
    }
    recordset.moveNext();
  }
  recordset.moveLast();
  for (std::size_t i = 0; i < std::min<std::size_t>(columns.size(), 4); ++i) {
    recordset.moveFirst();
    recordset.find(columns[i].name, TextMatcher("1", CaseRule::lowered));
  }
}

inline void changeHostileTable(AccessRecordset& recordset, const std::vector<Column>& columns) {
  for (int change = 0; change < 3 && !columns.empty(); ++change) {
    recordset.moveFirst();
    change == 0 ? recordset.addNew() : recordset.edit();
    for (const Column& column : columns) {
      recordset.write(column.name, Value(column.isLongValue() ? std::string(change == 0 ? 5000 : 70, 'x')
                                                              : std::string("1")));
    }
    recordset.update();
    recordset.remove();
  }
}

/// Opens the file and calls `use` for its first tables. `files` should not wait for the disk.
template <class Use>
void withHostileFile(const std::filesystem::path& path, FileSystem& files, const std::string& password,
                     Use use) {
  auto file = std::make_shared<OpenFile>();
  auto pager = Pager::open(path, {.password = password, .cachePages = 64, .files = &files});
  const auto catalog = pager ? readCatalog(**pager) : std::nullopt;
  if (!catalog) {
    return;
  }
  file->pager = *std::move(pager);
  checkDatabase(*file->pager, CheckCounters::yes);
  constexpr std::size_t mostTables = 20;
  for (std::size_t i = 0; i < catalog->size() && i < mostTables; ++i) {
    if (auto definition = findTable(*file->pager, (*catalog)[i].name)) {
      const std::vector<Column> columns = definition->columns;
      AccessRecordset recordset(file, *std::move(definition));
      readHostileTable(recordset, columns);
      use(recordset, columns);
    }
  }
}

/// Reads everything in the file that can be read.
inline void readHostileFile(const std::filesystem::path& path, FileSystem& files,
                            const std::string& password = {}) {
  withHostileFile(path, files, password, [](AccessRecordset&, const std::vector<Column>&) {});
}

/// The same; then changes what can be changed.
inline void useHostileFile(const std::filesystem::path& path, FileSystem& files,
                           const std::string& password = {}) {
  withHostileFile(path, files, password, changeHostileTable);
}

}  // namespace veltrano::access

#endif
