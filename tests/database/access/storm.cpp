#include "storm.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "base/files/whole.h"
#include "database/access/authoring/create_database.h"
#include "database/access/check/database_check.h"
#include "database/access/recordset.h"
#include "database/access/schema/catalog.h"
#include "database/values/text_matcher.h"
#include "tests/temporary_folder.h"

namespace veltrano::access {

namespace {

using Model = std::map<int, int>;  // version by ID
using Random = std::mt19937;

constexpr std::size_t pageSize = 4096;
const char* const fileName = "storm.mdb";
const char* const journalName = "storm.mdb-journal";

int below(Random& random, int limit) {
  return static_cast<int>(random() % static_cast<unsigned>(limit));
}

// What a record holds follows from its version.
std::string nameOf(int version) {
  return "name " + std::to_string(version * 7919LL % 1000) +
         std::string(static_cast<std::size_t>(version % 40), 'x');
}
std::string notesOf(int version) {
  constexpr std::array<int, 8> most = {10, 60, 60, 500, 500, 3000, 9000, 400000};
  const int length = 1 + version * 31 % most[static_cast<std::size_t>(version) % most.size()];
  return std::string(static_cast<std::size_t>(length), static_cast<char>('a' + version % 26));
}

NewTable stormTable() {
  return {.name = "T",
          .columns = {{.name = "ID", .type = ColumnType::longInteger},
                      {.name = "Version", .type = ColumnType::longInteger},
                      {.name = "Name", .type = ColumnType::text, .size = 60},
                      {.name = "Notes", .type = ColumnType::memo}},
          .indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
                      {.name = "ByName", .columns = {{"Name", false}}}}};
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
      openTable();
    }
  }
  void openTable() {
    auto definition = findTable(*file_->pager, "T");
    reason = definition.status().reason();
    if (definition) {
      table_.emplace(file_, *std::move(definition));
    }
  }
  /// Whether everything is durable now.
  bool closeTable() {
    const Status closed = table_->close();
    table_.reset();
    return static_cast<bool>(closed);
  }
  [[nodiscard]] bool opened() const { return table_.has_value(); }
  [[nodiscard]] Pager& pager() const { return *file_->pager; }

  bool find(int id) {
    table_->moveFirst();
    return table_->find("ID", TextMatcher(std::to_string(id), CaseRule::exact));
  }
  bool store(int id, int version, bool add) {
    if (add) {
      table_->addNew();
      table_->write("ID", id);
    } else if (!find(id) || !table_->edit()) {
      return false;
    }
    table_->write("Version", version);
    table_->write("Name", nameOf(version));
    table_->write("Notes", notesOf(version));
    return static_cast<bool>(table_->update());
  }
  bool remove(int id) { return find(id) && table_->remove(); }

  /// Empty if a record is not as its version has it.
  std::optional<Model> readAll() {
    Model model;
    std::string text;
    for (table_->moveFirst(); table_->atEnd() == false; table_->moveNext()) {
      const int id = table_->readText("ID", text) ? std::stoi(text) : 0;
      const int version = table_->readText("Version", text) ? std::stoi(text) : 0;
      std::string name;
      std::string notes;
      if (!table_->readText("Name", name) || name != nameOf(version) || !table_->readText("Notes", notes) ||
          notes != notesOf(version) || !model.emplace(id, version).second) {
        return std::nullopt;
      }
    }
    return model;
  }

  std::string reason;

 private:
  std::shared_ptr<OpenFile> file_;
  std::optional<AccessRecordset> table_;
};

// One change; `after` is what the model is if it worked.
bool change(Session& session, Random& random, const Model& before, Model& after) {
  after = before;
  const int version = below(random, 100000);
  const int kind = below(random, 10);
  if (kind < 4 || before.empty()) {
    const int id = below(random, 400);
    const bool stored = session.store(id, version, true);
    after.emplace(id, version);
    return stored;
  }
  const int id = std::next(before.begin(), below(random, static_cast<int>(before.size())))->first;
  if (kind < 7) {
    after[id] = version;
    return session.store(id, version, false);
  }
  after.erase(id);
  return session.remove(id);
}

// A state of the file.
struct State {
  Model model;
  PageNumber pages;
};

// The states that the file has had. Those from `durable` on may be found after a power failure; after a death
// the last one, or the one that was under way.
struct History {
  std::vector<State> states;
  std::size_t durable = 0;
  std::optional<Model> underWay;

  [[nodiscard]] bool allows(const State& found, Disaster disaster) const {
    const std::size_t from = disaster == Disaster::death ? states.size() - 1 : durable;
    return found.model == underWay ||
           std::any_of(
               states.begin() + static_cast<std::ptrdiff_t>(from), states.end(),
               [&](const State& state) { return state.model == found.model && state.pages == found.pages; });
  }
};

void work(SimulatedDisk& disk, const std::string& password, Random& random, History& history) {
  constexpr std::array<std::uint32_t, 3> caches = {16, 64, 4096};
  for (int sessions = 1 + below(random, 2); sessions > 0 && !disk.dead(); --sessions) {
    Session session(disk, caches[random() % caches.size()], password);
    for (int steps = below(random, 40); steps > 0 && session.opened() && !disk.dead(); --steps) {
      if (below(random, 15) == 0) {
        const bool closed = session.closeTable();
        history.durable = closed && !disk.dead() ? history.states.size() - 1 : history.durable;
        session.openTable();
        continue;
      }
      Model after;
      const bool done = change(session, random, history.states.back().model, after);
      if (disk.dead()) {
        history.underWay = std::move(after);
      } else if (done) {
        history.states.push_back({std::move(after), session.pager().pageCount()});
      }
    }
    if (sessions == 1) {
      disk.dieAfter(0);
      disk.remove(fileName);  // the end came after the last change
    } else if (session.opened() && session.closeTable() && !disk.dead()) {
      history.durable = history.states.size() - 1;
    }
  }
}

std::string text(const Model& model) {
  std::string all;
  for (const auto& [id, version] : model) {
    all += " " + std::to_string(id) + ":" + std::to_string(version);
  }
  return all;
}

}  // namespace

Storm::Storm(const EncryptedSample* encryption)
    : encryption_(encryption), password_(encryption != nullptr ? encryption->password : "") {
  const tests::TemporaryFolder folder;
  createDatabase(folder / "base.mdb", {stormTable()});
  SimulatedDisk disk;
  const std::string plain = readWholeFile(folder / "base.mdb").value_or("");
  disk.put(fileName, encryption != nullptr ? encrypted(plain, *encryption) : plain);
  {
    Session session(disk, 4096, password_);
    for (int id = 0; id < 120; id += 3) {
      if (session.opened() && session.store(id, id * 11, true)) {
        baseModel_[id] = id * 11;
      }
    }
  }
  base_ = disk.content(fileName);
}

bool Storm::holdsPlainText(const SimulatedDisk& disk) const {
  const auto holds = [&](const char* file) {
    return disk.exists(file) && disk.content(file).find("name ") != std::string::npos;
  };
  return encryption_ != nullptr && (holds(fileName) || holds(journalName));
}

std::string Storm::run(unsigned seed, Disaster disaster) {
  Random random(seed);
  SimulatedDisk disk;
  disk.put(fileName, base_);
  History history = {{{baseModel_, static_cast<PageNumber>(base_.size() / pageSize)}}, 0, std::nullopt};
  disk.dieAfter(below(random, 120));
  work(disk, password_, random, history);
  const auto strike = [&] { disaster == Disaster::death ? disk.revive() : disk.losePower(random); };
  strike();
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
    return "records or a length that the file never had:" + text(*found) +
           "\ninstead of:" + text(history.states.back().model);
  }
  return disk.exists(journalName) ? "the journal is still there" : "";
}

}  // namespace veltrano::access
