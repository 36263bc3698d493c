#include "storm.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "base/files/whole.h"
#include "database/access/authoring/create_database.h"
#include "database/access/authoring/schema_text.h"
#include "database/access/check/database_check.h"
#include "database/access/recordset.h"
#include "database/access/schema/catalog.h"
#include "database/values/text_matcher.h"
#include "tests/temporary_folder.h"

namespace veltrano::access {

namespace {

using Random = std::mt19937;

constexpr std::size_t stormPageSize = 4096;
const char* const fileName = "storm.mdb";
const char* const journalName = "storm.mdb-journal";

std::string nameOf(int version) {
  return "name " + std::to_string(version * 7919LL % 1000) +
         std::string(static_cast<std::size_t>(version % 40), 'x');
}
std::string notesOf(int version) {
  constexpr std::array<int, 8> most = {10, 60, 60, 500, 500, 3000, 9000, 150000};
  const int length = 1 + version * 31 % most[static_cast<std::size_t>(version) % most.size()];
  return std::string(static_cast<std::size_t>(length), static_cast<char>('a' + version % 26));
}

std::vector<NewTable> stormTables() {
  std::string schema;
  for (const char* name : stormTableNames) {
    schema +=
        std::string("table ") + name +
        "\n ID long\n Parent long\n Version long\n Name text(60)\n Notes memo\n primary PrimaryKey (ID)\n";
  }
  auto tables = *parseSchema(schema);
  tables[records].indexes.push_back({.name = "ByName", .columns = {{"Name", false}}});
  return tables;
}

std::vector<NewRelation> newRelations() {
  std::vector<NewRelation> made;
  for (const auto& [parent, child, cascadeUpdates, onDelete] : stormRelations) {
    const std::string name = stormTableNames[child];
    made.push_back(
        {"Of" + name, stormTableNames[parent], {"ID"}, name, {"Parent"}, cascadeUpdates, onDelete});
  }
  return made;
}

// The open file of a process.
class Session {
 public:
  Session(SimulatedDisk& disk, std::uint32_t cachePages, const std::string& password)
      : file_(std::make_shared<OpenFile>()) {
    auto pager = Pager::open(fileName, {.password = password, .cachePages = cachePages, .files = &disk});
    reason = pager.status().reason();
    if (pager) {
      file_->pager = *std::move(pager);
      openTables();
    }
  }
  void openTables() {
    for (const char* name : stormTableNames) {
      auto definition = findTable(*file_->pager, name);
      if (!definition) {
        reason = definition.status().reason();
        return;
      }
      tables_.push_back(std::make_unique<AccessRecordset>(file_, *std::move(definition)));
    }
  }
  /// Whether everything is durable now.
  bool closeTables() {
    return std::ranges::count_if(std::exchange(tables_, {}),
                                 [](auto& table) { return static_cast<bool>(table->close()); }) == 5;
  }
  [[nodiscard]] bool opened() const { return tables_.size() == stormTableNames.size(); }
  [[nodiscard]] Pager& pager() const { return *file_->pager; }

  bool make(const StormChange& change) {
    AccessRecordset& table = *tables_[change.table];
    if (change.kind == StormChange::Kind::add) {
      table.addNew();
      table.write("ID", change.id);
    } else {
      table.moveFirst();
      if (!table.find("ID", TextMatcher(std::to_string(change.id), CaseRule::exact))) {
        return false;
      }
      if (change.kind == StormChange::Kind::remove) {
        return static_cast<bool>(table.remove());
      }
      table.edit();
    }
    if (change.kind == StormChange::Kind::rename) {
      table.write("ID", change.newId);
    } else {
      table.write("Version", change.row.version);
      table.write("Name", nameOf(change.row.version));
      table.write("Notes", notesOf(change.row.version));
      table.write("Parent", change.row.parent ? Value(*change.row.parent) : Value(Null{}));
    }
    return static_cast<bool>(table.update());
  }

  /// Empty if a record is not as its version has it.
  std::optional<StormModel> readAll() {
    StormModel model;
    for (std::size_t i = 0; i < model.size(); ++i) {
      AccessRecordset& table = *tables_[i];
      for (table.moveFirst(); table.atEnd() == false; table.moveNext()) {
        const int version = number(table, "Version").value_or(0);
        if (text(table, "Name") != nameOf(version) || text(table, "Notes") != notesOf(version) ||
            !model[i]
                 .emplace(number(table, "ID").value_or(-1), StormRow{version, number(table, "Parent")})
                 .second) {
          return std::nullopt;
        }
      }
    }
    return model;
  }

  std::string reason;

 private:
  static std::optional<std::string> text(AccessRecordset& table, const char* field) {
    std::string text;
    return table.readText(field, text) ? std::optional(std::move(text)) : std::nullopt;
  }
  static std::optional<int> number(AccessRecordset& table, const char* field) {
    const auto digits = text(table, field);
    return digits ? std::optional(std::stoi(*digits)) : std::nullopt;
  }

  std::shared_ptr<OpenFile> file_;
  std::vector<std::unique_ptr<AccessRecordset>> tables_;
};

// A state of the file.
struct State {
  StormModel model;
  PageNumber pages;
};

// The states that the file has had. Those from `durable` on may be found after a power failure; after a death
// the last one, or the one that was under way.
struct History {
  std::vector<State> states;
  std::size_t durable = 0;
  std::optional<StormModel> underWay;
  std::string wrong;  ///< a change that was refused and should not have been, or the reverse
  int changes = 0;
  int refusals = 0;

  [[nodiscard]] bool allows(const State& found, Disaster disaster) const {
    const std::size_t from = disaster == Disaster::powerFailure ? durable : states.size() - 1;
    return found.model == underWay ||
           std::any_of(
               states.begin() + static_cast<std::ptrdiff_t>(from), states.end(),
               [&](const State& state) { return state.model == found.model && state.pages == found.pages; });
  }
};

void step(Session& session, SimulatedDisk& disk, Random& random, History& history) {
  const StormChange change = drawChange(random, history.states.back().model);
  auto after = expected(history.states.back().model, change);
  const bool done = session.make(change);
  ++history.changes;
  history.refusals += after ? 0 : 1;
  const bool excused = disk.dead() || disk.full();
  if (done ? !after : after && !excused) {
    history.wrong = std::string(done ? "not refused" : "refused") + ": kind " +
                    std::to_string(static_cast<int>(change.kind)) + " in " + stormTableNames[change.table] +
                    ", " + std::to_string(change.id);
  } else if (done && after) {
    history.states.push_back({*std::move(after), session.pager().pageCount()});
  } else if (disk.dead()) {
    history.underWay = std::move(after);
  }
}

void work(SimulatedDisk& disk, const std::string& password, Random& random, Disaster disaster,
          History& history) {
  constexpr std::array<std::uint32_t, 3> caches = {16, 64, 4096};
  for (int sessions = 1 + below(random, 2); sessions > 0 && !disk.dead(); --sessions) {
    Session session(disk, caches[random() % caches.size()], password);
    for (int steps = below(random, 40);
         steps > 0 && session.opened() && !disk.dead() && history.wrong.empty(); --steps) {
      if (below(random, 15) == 0) {
        const bool closed = session.closeTables();
        history.durable = closed && !disk.dead() ? history.states.size() - 1 : history.durable;
        session.openTables();
        continue;
      }
      step(session, disk, random, history);
    }
    if (disk.full() && session.opened() && session.readAll() != history.states.back().model) {
      history.wrong = "a refused change shows";
    }
    if (sessions == 1 && disaster != Disaster::fullDisk) {
      disk.dieAfter(0);
      disk.remove(fileName);  // the end came after the last change
    } else if (session.opened() && session.closeTables() && !disk.dead()) {
      history.durable = history.states.size() - 1;
    }
  }
}

}  // namespace

Storm::Storm(const EncryptedSample* encryption, std::uint32_t pageKey)
    : secret_(encryption != nullptr || pageKey != 0),
      password_(encryption != nullptr ? encryption->password : "") {
  const tests::TemporaryFolder folder;
  createDatabase(folder / "base.mdb", stormTables(), {.pageKey = pageKey, .relations = newRelations()});
  SimulatedDisk disk;
  const std::string plain = readWholeFile(folder / "base.mdb").value_or("");
  disk.put(fileName, encryption != nullptr ? encrypted(plain, *encryption) : plain);
  {
    Session session(disk, 4096, password_);
    const auto add = [&](StormTable table, int id, const StormRow& row) {
      const StormChange change = {StormChange::Kind::add, table, id, row, 0};
      if (session.opened() && session.make(change)) {
        baseModel_[table][id] = row;
      }
    };
    for (int id = 0; id < 120; id += 3) {
      add(records, id, {id * 11, {}});
    }
    for (int id = 0; id < 40; ++id) {
      add(followers, id, {0, id / 2 * 3});
      add(loose, id, {0, id * 3});
      add(held, id, {0, id % 2 == 0 ? std::optional(id / 4) : std::nullopt});
      add(nested, id, {0, id / 3});
    }
  }
  base_ = disk.content(fileName);
}

bool Storm::holdsPlainText(const SimulatedDisk& disk) const {
  const auto holds = [&](const char* file) {
    return disk.exists(file) && disk.content(file).find("name ") != std::string::npos;
  };
  return secret_ && (holds(fileName) || holds(journalName));
}

std::string Storm::run(unsigned seed, Disaster disaster) {
  Random random(seed);
  SimulatedDisk disk;
  disk.put(fileName, base_);
  History history;
  history.states = {{baseModel_, static_cast<PageNumber>(base_.size() / stormPageSize)}};
  disaster == Disaster::fullDisk ? disk.fillAfter(below(random, 120)) : disk.dieAfter(below(random, 120));
  work(disk, password_, random, disaster, history);
  if (!history.wrong.empty()) {
    return history.wrong;
  }
  changes += history.changes;
  refusals += history.refusals;
  if (disaster != Disaster::fullDisk) {
    ++cuts[(disk.calls.empty() ? "the open" : disk.calls.back()) + ", " + disk.notMade];
  }
  const auto strike = [&] { disaster == Disaster::powerFailure ? disk.losePower(random) : disk.revive(); };
  // The power may also fail while the next opener brings in what a process left that died before.
  const bool diedBefore = disaster == Disaster::powerFailure && below(random, 4) == 0;
  diedBefore ? disk.revive() : strike();
  journalsApplied += disk.exists(journalName) ? 1 : 0;
  if (below(random, 3) == 0) {
    disk.dieAfter(below(random, 12));
    Session(disk, 16, password_);
    diedTwice += disk.dead() ? 1 : 0;
    strike();
  }
  if (holdsPlainText(disk)) {
    return "plain text is in the file or the journal";
  }
  Session session(disk, 64, password_);
  if (!session.opened()) {
    return "it does not open: " + session.reason;
  }
  const std::string wrong = checkDatabase(session.pager(), CheckCounters::yes);
  if (!wrong.empty()) {
    return wrong;
  }
  const auto found = session.readAll();
  if (!found) {
    return "a record is not as it was stored";
  }
  if (!history.allows({*found, session.pager().pageCount()}, disaster) || !session.pager().writable()) {
    return "records or a length that the file never had";
  }
  return disk.exists(journalName) ? "the journal is still there" : "";
}

}  // namespace veltrano::access
