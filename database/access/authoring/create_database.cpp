#include "database/access/authoring/create_database.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "base/files/file.h"
#include "base/files/random_access.h"
#include "base/os/clock.h"
#include "base/text/code_page.h"
#include "base/text/excerpt.h"
#include "base/text/lower_case.h"
#include "database/access/authoring/definition_builder.h"
#include "database/access/authoring/relation_plan.h"
#include "database/access/authoring/system_tables.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/data_page.h"
#include "database/access/storage/encryption/page_cipher.h"
#include "database/access/storage/header_mask.h"
#include "database/access/storage/journal/journal.h"
#include "database/access/storage/space/allocator.h"
#include "database/values/dates.h"

namespace veltrano::access {

// A new file has two pages: the header (header.cpp shows its bytes) and page 1 with the map of free pages.
// All else goes through the pager.

namespace {

constexpr std::size_t pageSize = 4096;
constexpr std::size_t mostPasswordCharacters = 20;

double now() {
  const LocalTime time = localTime();
  const std::chrono::sys_days day{std::chrono::year(time.year) / time.month / time.day};
  return joinDate(static_cast<std::int32_t>((day - dateOrigin).count()),
                  time.hour * 3600.0 + time.minute * 60.0 + time.second)
      .days;
}

void fillHeader(MutableBytes page, const NewDatabase& options, double created) {
  constexpr std::string_view engine = "Standard Jet DB";
  constexpr std::size_t commitBytesAt = 0xE00;
  page[1] = 1;
  std::copy(engine.begin(), engine.end(), page.begin() + 4);
  page[0x14] = static_cast<std::uint8_t>(Version::jet4);
  store32(&page[0x18], RowPointer{1, 0}.toDisk());  // the map of free pages
  store32(&page[0x1C], RowPointer{1, 1}.toDisk());
  for (PageNumber table = 0; table < 4; ++table) {
    store32(&page[0x20 + 4 * table], catalogPage + table);
  }
  store16(&page[0x3C], 1252);
  store32(&page[0x3E], options.pageKey);
  store32(&page[0x6E], 1033);
  storeDouble(&page[0x72], created);
  const auto mask = static_cast<std::uint32_t>(static_cast<std::int32_t>(created));
  const std::u16string password = utf8ToUtf16(options.password);
  for (std::size_t i = 0; i < mostPasswordCharacters; ++i) {
    const std::uint32_t part = i % 2 == 0 ? mask & 0xFFFF : mask >> 16;
    store16(&page[0x42 + 2 * i], part ^ (i < password.size() ? password[i] : 0U));
  }
  maskHeader(page, Version::jet4);
  store32(&page[0x98], 0x654);
  constexpr std::string_view formatName = "4.0";
  std::copy(formatName.begin(), formatName.end(), page.begin() + 0x9C);
  for (std::size_t pair = 0; pair < 256; ++pair) {
    page[commitBytesAt + 2 * pair + 1] = 1;
  }
}

void fillMapPage(MutableBytes page) {
  std::array<std::uint8_t, 69> map = {};
  DataPageEditor editor(page);
  editor.create(1);
  // Every page is free but the two that exist.
  std::fill(map.begin() + 5, map.end(), std::uint8_t{0xFF});
  map[5] = 0xFC;
  (void)editor.insert(map, 0);
  map.fill(0);
  (void)editor.insert(map, 0);
}

Status writeFirstPages(const std::filesystem::path& file, const NewDatabase& options, double created) {
  std::vector<std::uint8_t> pages(2 * pageSize);
  const MutableBytes all(pages);
  fillHeader(all.first(pageSize), options, created);
  fillMapPage(all.subspan(pageSize));
  if (options.pageKey != 0) {
    makePageEncoding(options.pageKey)->encode(1, all.subspan(pageSize));
  }
  FileSystem& files = options.files != nullptr ? *options.files : systemFiles();
  const auto opened = files.open(file, OpenMode::create);
  if (!opened) {
    return opened.status();
  }
  RandomAccessFile& out = **opened;
  return out.resize(0) && out.writeAt(0, pages) ? Status()
                                                : Status(Failure::full, "the file cannot be written");
}

Status fillDatabase(const std::filesystem::path& file, const std::vector<NewTable>& tables,
                    const NewDatabase& options, double created) {
  auto pager = Pager::open(file, {.password = options.password, .files = options.files});
  Status done = pager ? makeSystemTables(**pager, created) : pager.status();
  if (done && !tables.empty()) {
    done = createTables(**pager, tables, options.relations);
  }
  return done ? (*pager)->checkpoint() : done;
}

}  // namespace

Status createDatabase(const std::filesystem::path& file, const std::vector<NewTable>& tables,
                      const NewDatabase& options) {
  const double created = options.created != 0 ? options.created : now();
  std::error_code error;
  const auto folder = std::filesystem::absolute(file, error).parent_path();
  if (const FileKind kind = kindOf(file); kind != FileKind::missing) {
    return {Failure::exists, kind == FileKind::folder ? "a folder has this name" : "the file exists already"};
  }
  if (file.empty() || kindOf(folder) != FileKind::folder) {
    return {Failure::missing, file.empty() ? "no name" : "its folder is missing"};
  }
  if (utf8ToUtf16(options.password).size() > mostPasswordCharacters || !splitDate(Date{created})) {
    return {Failure::other, "the password is too long, or the date out of range"};
  }
  // Made under a name that nobody else has, so that a file by this name is a whole database.
  const auto number = randomNumber();
  if (!number) {
    return number.status();
  }
  std::filesystem::path unfinished = file;
  unfinished += "." + std::to_string(*number) + ".new";
  Status done = writeFirstPages(unfinished, options, created);
  if (done) {
    done = fillDatabase(unfinished, tables, options, created);
  }
  if (done) {
    std::filesystem::rename(unfinished, file, error);
    done = error ? Status(Failure::other, "the file cannot be renamed") : Status();
  }
  if (!done) {
    std::filesystem::remove(unfinished, error);
    std::filesystem::remove(journalPath(unfinished), error);
  }
  return done;
}

namespace {

Status checkNames(Pager& pager, const std::vector<NewTable>& tables) {
  const auto catalog = readCatalog(pager);
  if (!catalog) {
    return {Failure::damaged, "the catalog is damaged"};
  }
  std::vector<std::string> taken;
  for (const CatalogEntry& entry : *catalog) {
    taken.push_back(entry.name);
  }
  for (const NewTable& table : tables) {
    Status valid = checkNewTable(table);
    if (std::any_of(taken.begin(), taken.end(),
                    [&](const std::string& name) { return sameName(name, table.name); })) {
      valid = {Failure::exists, "there is an object of that name"};
    }
    if (!valid) {
      return {valid.failure(), "the table " + excerpt(table.name) + ": " + valid.reason()};
    }
    taken.push_back(table.name);
  }
  return {};
}

// In a transaction.
Status writeTables(Pager& pager, std::vector<TablePlan>& plans, const std::vector<NewRelation>& relations) {
  Status full(Failure::full, "the file is full or damaged");
  for (TablePlan& plan : plans) {
    const auto page = allocatePage(pager);
    if (!page) {
      return full;
    }
    plan.page = *page;
  }
  Status done;
  for (std::size_t i = 0; done && i < relations.size(); ++i) {
    done = planRelation(relations[i], plans);
  }
  MapAllocator maps(pager);
  for (std::size_t i = 0; done && i < plans.size(); ++i) {
    const TablePlan& plan = plans[i];
    done = writeDefinition(pager, plan.page, plan.table, TableKind::user, maps, plan.relations)
               ? enterTable(pager, plan.page, plan.table, now())
               : full;
  }
  for (std::size_t i = 0; done && i < relations.size(); ++i) {
    done = enterRelation(pager, relations[i], now());
  }
  return done;
}

}  // namespace

Status createTables(Pager& pager, const std::vector<NewTable>& tables,
                    const std::vector<NewRelation>& relations) {
  if (isJet3(pager.version()) || pager.version() >= Version::ace14) {
    return {Failure::other, "tables are made in files of the 2000 to 2007 formats only"};
  }
  if (Status valid = checkNames(pager, tables); !valid) {
    return valid;
  }
  Transaction transaction(pager);
  if (!transaction.begun()) {
    return transaction.begun();
  }
  std::vector<TablePlan> plans;
  plans.reserve(tables.size());
  for (const NewTable& table : tables) {
    plans.push_back({table, 0, {}});
  }
  Status written = writeTables(pager, plans, relations);
  return written ? transaction.commit() : written;
}

}  // namespace veltrano::access
