#include "database/access/storage/journal/recovery.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "base/trace.h"
#include "database/access/storage/journal/journal.h"

namespace veltrano::access {

// The journal's new bytes are written over whatever the pages hold: the state of the checkpoint, the state of
// the last record, or any mix of what was written on the way from one to the other.
//
// The old bytes prove that the journal is about this file: every byte of a change must be found as it was at
// the checkpoint, or as some record has it. Otherwise somebody has put another file there.

namespace {

// A page of the database that the journal changes.
struct ChangedPage {
  std::vector<std::uint8_t> found;    // as the file has it
  std::vector<std::uint8_t> after;    // as the journal has it
  std::vector<std::uint8_t> touched;  // a flag for each byte that has an old value in the journal
  std::vector<std::uint8_t> known;    // a flag for each byte that was found as some record has it
};

class Recovery {
 public:
  /// `oldLength`: of the database at the checkpoint.
  Recovery(RandomAccessFile& database, std::uint32_t pageSize, std::uint64_t oldLength)
      : database_(&database), pageSize_(pageSize), oldLength_(oldLength) {}

  /// Takes in one change. False if it cannot be one of this database.
  bool add(const Change& change);
  [[nodiscard]] bool belongs() const;
  bool write(std::uint64_t length);

 private:
  ChangedPage* page(std::uint64_t number);

  RandomAccessFile* database_;
  std::uint32_t pageSize_;
  std::uint64_t oldLength_;
  std::map<std::uint64_t, ChangedPage> pages_;
};

ChangedPage* Recovery::page(std::uint64_t number) {
  ChangedPage& page = pages_[number];
  if (page.found.empty()) {
    page.found.resize(pageSize_);
    page.touched.resize(pageSize_);
    page.known.resize(pageSize_);
    if (!database_->readAt(number * pageSize_, page.found)) {
      return nullptr;
    }
    page.after = page.found;
  }
  return &page;
}

bool Recovery::add(const Change& change) {
  const auto begin = static_cast<std::size_t>(change.offset % pageSize_);
  ChangedPage* page =
      begin + change.after.size() <= pageSize_ ? this->page(change.offset / pageSize_) : nullptr;
  if (page == nullptr) {
    return false;
  }
  for (std::size_t i = 0; i < change.after.size(); ++i) {
    const std::uint8_t found = page->found[begin + i];
    if (!change.before.empty() && change.offset < oldLength_) {
      page->touched[begin + i] = 1;
      page->known[begin + i] |= static_cast<std::uint8_t>(found == change.before[i]);
    }
    page->known[begin + i] |= static_cast<std::uint8_t>(found == change.after[i]);
    page->after[begin + i] = change.after[i];
  }
  return true;
}

bool Recovery::belongs() const {
  return std::all_of(pages_.begin(), pages_.end(), [](const auto& entry) {
    const ChangedPage& page = entry.second;
    for (std::size_t i = 0; i < page.touched.size(); ++i) {
      if (page.touched[i] != 0 && page.known[i] == 0) {
        return false;
      }
    }
    return true;
  });
}

bool Recovery::write(std::uint64_t length) {
  for (const auto& [number, page] : pages_) {
    if (number * pageSize_ < length && !database_->writeAt(number * pageSize_, page.after)) {
      return false;
    }
  }
  return database_->resize(length);
}

// What a journal file holds.
struct Contents {
  JournalHead head;
  std::vector<std::uint8_t> records;
};

std::optional<Contents> readJournal(RandomAccessFile& file) {
  JournalHead::Stored stored = {};
  const auto size = file.size();
  if (!size || *size < stored.size() || file.readAt(0, stored) != stored.size()) {
    return std::nullopt;
  }
  const auto head = JournalHead::load(stored);
  if (!head) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> records(static_cast<std::size_t>(*size) - stored.size());
  if (file.readAt(stored.size(), records) != records.size()) {
    return std::nullopt;
  }
  return Contents{*head, std::move(records)};
}

// The changes of the record that `rest` begins with; takes the record off. Empty if it does not fit.
std::optional<std::vector<Change>> takeRecord(Bytes& rest, std::uint64_t& hash, RecordHead& record) {
  if (rest.size() < RecordHead::size) {
    return std::nullopt;
  }
  const RecordHead head = RecordHead::load(rest.data());
  if (head.changesSize > rest.size() - RecordHead::size) {
    return std::nullopt;
  }
  std::vector<Change> changes;
  std::uint64_t changesHash = hash;
  Bytes left = rest.subspan(RecordHead::size, static_cast<std::size_t>(head.changesSize));
  while (!left.empty()) {
    Bytes all;
    const auto change = Change::take(left, all);
    if (!change) {
      return std::nullopt;
    }
    changesHash = mixHash(changesHash, hashBytes(all));
    changes.push_back(*change);
  }
  if (head.hashWith(changesHash) != head.hash) {
    return std::nullopt;
  }
  rest = rest.subspan(RecordHead::size + static_cast<std::size_t>(head.changesSize));
  hash = head.hash;
  record = head;
  return changes;
}

enum class Outcome { nothingToDo, done, failed };

Outcome apply(const Contents& journal, RandomAccessFile* database, RandomAccessFile& journalFile,
              std::uint64_t identity, std::uint32_t pageSize, const std::filesystem::path& path) {
  RecordHead last = {0, 0, journal.head.length, journal.head.length};
  std::uint64_t hash = journal.head.hash();
  Bytes rest = journal.records;
  if (journal.head.identity != identity) {
    return Outcome::nothingToDo;
  }
  if (database == nullptr) {
    return takeRecord(rest, hash, last) ? Outcome::failed : Outcome::nothingToDo;
  }
  Recovery recovery(*database, pageSize, journal.head.length);
  while (const auto changes = takeRecord(rest, hash, last)) {
    if (!std::all_of(changes->begin(), changes->end(),
                     [&](const Change& change) { return recovery.add(change); })) {
      return Outcome::nothingToDo;
    }
  }
  const auto size = database->size();
  if (!size || *size < journal.head.length || *size > last.mayReach || !recovery.belongs()) {
    return Outcome::nothingToDo;
  }
  trace("An ended process did not close the database; its last changes were brought in from ", path, ".");
  // The journal first: it must still be there if the power fails while the database is being written.
  return journalFile.sync() && recovery.write(last.length) && database->sync() ? Outcome::done
                                                                               : Outcome::failed;
}

}  // namespace

bool recoverDatabase(FileSystem& files, const std::filesystem::path& path, RandomAccessFile* database,
                     std::uint64_t identity, std::uint32_t pageSize) {
  auto opened = files.open(journalPath(path), database != nullptr ? OpenMode::write : OpenMode::read);
  if (!opened) {
    return opened.failure() == Failure::missing;
  }
  auto file = *std::move(opened);
  const auto journal = readJournal(*file);
  if (journal && apply(*journal, database, *file, identity, pageSize, path) == Outcome::failed) {
    return false;
  }
  if (database == nullptr) {
    return true;
  }
  // Void before it is removed: a power failure may bring the name back.
  constexpr JournalHead::Stored zeros = {};
  if (journal && (!file->writeAt(0, zeros) || !file->sync())) {
    return false;
  }
  file.reset();
  files.remove(journalPath(path));
  return true;
}

}  // namespace veltrano::access
