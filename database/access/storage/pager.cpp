#include "database/access/storage/pager.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "database/access/storage/journal/journal.h"
#include "database/access/storage/journal/page_differences.h"
#include "database/access/storage/page_file.h"

namespace veltrano::access {

namespace {

// A checkpoint follows when the journal has become longer than this.
constexpr std::uint64_t longJournal = std::uint64_t{32} << 20;

// How far ahead the journal states the file's length when pages are written early.
constexpr std::uint64_t announceStep = std::uint64_t{16} << 20;

constexpr std::uint32_t fewestCachePages = 16;

Status unreadable() {
  return {Failure::other, "the file cannot be read"};
}
Status unconfirmed() {
  return {Failure::other, "the disk does not confirm the writing"};
}

}  // namespace

struct Pager::State {
  State(PageFile opened, FileSystem& files, std::uint32_t cachePages)
      : file(std::move(opened)),
        journal(files, file.path(), file.identity()),
        cache(file.pageSize(), cachePages),
        pages(static_cast<PageNumber>((file.length() + file.pageSize() - 1) / file.pageSize())),
        committedPages(pages),
        keptPages(pages) {
    journal.startAt(file.length());
  }

  PageFile file;
  Journal journal;
  PageCache cache;

  PageNumber pages;               // those of the transaction included
  PageNumber committedPages;      // without those
  PageNumber keptPages;           // below this a page is written by a checkpoint only (P1, P3)
  std::size_t unwrittenKept = 0;  // frames that have to wait for a checkpoint; at least as many as there are

  bool broken = false;  // a rollback failed: what the cache has is not what was committed
  bool transaction = false;
  bool wroteEarly = false;  // the transaction has pages of its own in the file
  std::uint64_t edits = 0;  // calls of edit and append
  std::vector<Frame*> changed;
  std::vector<std::unique_ptr<std::uint8_t[]>> spareBuffers;
  std::vector<std::uint8_t> encodedBefore;
  std::vector<std::uint8_t> encodedAfter;
  SpaceHints hints;
  Status pageFailure;

  Frame* load(PageNumber page);
  bool mayGiveUp(Frame& frame);
  Frame* takeFrame() {
    return cache.take([this](Frame& frame) { return mayGiveUp(frame); });
  }
  void startChange(Frame& frame);
  void unlist(Frame& frame);
  std::unique_ptr<std::uint8_t[]> buffer();

  bool writePage(Frame& frame);
  bool writeEarly(Frame& frame);
  bool journalAgain(const Frame& frame, Bytes after);
  Status journalFrame(Frame& frame);
  Status journalTransaction();
  Status writeUnwritten();
  bool restore(Frame& frame);
  void endTransaction();
};

// --- The cache

Frame* Pager::State::load(PageNumber page) {
  Frame* frame = cache.find(page);
  if (frame == nullptr) {
    if (page >= pages || broken) {
      pageFailure = {Failure::damaged, "a page after the end of the file"};
      return nullptr;
    }
    frame = takeFrame();
    if (!file.read(page, frame->all())) {
      pageFailure = unreadable();
      return nullptr;
    }
    cache.enter(frame, page);
  }
  frame->recentlyUsed = true;
  return frame;
}

// Pages added since the last checkpoint are written when their frame is wanted; others that were changed wait
// for the next one.
bool Pager::State::mayGiveUp(Frame& frame) {
  if (frame.changed) {
    // P7
    if (frame.number < committedPages || edits - frame.editedAt <= editsInPlace || !writeEarly(frame)) {
      return false;
    }
    unlist(frame);
    wroteEarly = true;
    return true;
  }
  return !frame.unwritten || (frame.number >= keptPages && writeEarly(frame));
}

std::unique_ptr<std::uint8_t[]> Pager::State::buffer() {
  if (spareBuffers.empty()) {
    return std::make_unique_for_overwrite<std::uint8_t[]>(file.pageSize());
  }
  auto last = std::move(spareBuffers.back());
  spareBuffers.pop_back();
  return last;
}

// --- Writing

bool Pager::State::writePage(Frame& frame) {
  if (!file.write(frame.number, frame.all())) {
    return false;
  }
  frame.unwritten = false;
  return true;
}

bool Pager::State::writeEarly(Frame& frame) {
  // P2
  const std::uint64_t end = file.offsetOf(frame.number + 1);
  return (end <= journal.announced() || journal.announce(end + announceStep)) && writePage(frame);
}

void Pager::State::startChange(Frame& frame) {
  frame.editedAt = ++edits;
  if (frame.changed) {
    return;
  }
  // A transaction that changes more than the cache holds does not keep what the file has as well.
  const bool inFile = !frame.unwritten && changed.size() >= cache.limit();
  if (frame.number < committedPages && !inFile) {
    frame.before = buffer();
    std::memcpy(frame.before.get(), frame.bytes.get(), frame.size);
  }
  frame.changed = true;
  frame.changedAt = changed.size();
  changed.push_back(&frame);
}

void Pager::State::unlist(Frame& frame) {
  frame.changed = false;
  changed[frame.changedAt] = changed.back();
  changed[frame.changedAt]->changedAt = frame.changedAt;
  changed.pop_back();
}

// For a page of an encrypted file whose old bytes the journal has from an earlier record: adds the new ones, without
// encoding the old ones again. Whether there are any.
bool Pager::State::journalAgain(const Frame& frame, Bytes after) {
  const std::uint64_t offset = file.offsetOf(frame.number);
  std::size_t done = 0;
  forEachDifference(frame.old(), frame.all(), [&](std::size_t begin, std::size_t end) {
    const auto stretch = file.header().cipher->changedBy({begin, end}, frame.size);
    const std::size_t from = std::max(stretch.begin, done);
    if (from < stretch.end) {
      journal.addNewBytes(offset + from, after.subspan(from, stretch.end - from));
      done = stretch.end;
    }
  });
  return done != 0;
}

// Adds what the transaction has changed of a page to the journal's record.
Status Pager::State::journalFrame(Frame& frame) {
  const std::uint64_t offset = file.offsetOf(frame.number);
  const Bytes after = file.encoded(frame.number, frame.all(), encodedAfter);
  bool differs = false;
  if (frame.number >= committedPages) {
    journal.addNewBytes(offset, after);
    differs = true;
  } else if (file.header().cipher && frame.unwritten && frame.before) {
    differs = journalAgain(frame, after);
  } else {
    const Bytes before = frame.before ? file.encoded(frame.number, frame.old(), encodedBefore)
                                      : file.readEncoded(frame.number, encodedBefore);
    if (before.empty()) {
      return unreadable();
    }
    forEachDifference(before, after, [&](std::size_t begin, std::size_t end) {
      const Bytes old = frame.number < keptPages ? before.subspan(begin, end - begin) : Bytes();
      journal.addChange(offset + begin, old, after.subspan(begin, end - begin));
      differs = true;
    });
  }
  if (differs && !frame.unwritten && frame.number < keptPages) {
    ++unwrittenKept;
  }
  frame.unwrittenAfter = frame.unwritten || differs;
  return {};
}

Status Pager::State::journalTransaction() {
  // What went to the file early is in no record (P3).
  if (wroteEarly && !file.sync()) {
    return unconfirmed();
  }
  journal.startRecord();
  for (Frame* frame : changed) {
    if (Status done = journalFrame(*frame); !done) {
      return done;
    }
  }
  return journal.writeRecord(file.offsetOf(pages)) ? Status()
                                                   : Status(Failure::full, "the journal cannot be written");
}

// In the order of the file.
Status Pager::State::writeUnwritten() {
  std::vector<Frame*> waiting;
  for (const auto& frame : cache.frames()) {
    if (frame->number != noPage && frame->unwritten) {
      waiting.push_back(frame.get());
    }
  }
  std::sort(waiting.begin(), waiting.end(),
            [](const Frame* a, const Frame* b) { return a->number < b->number; });
  const bool written =
      std::all_of(waiting.begin(), waiting.end(), [this](Frame* frame) { return writePage(*frame); }) &&
      file.setLength(file.offsetOf(committedPages));
  if (written && file.sync()) {
    return {};
  }
  // Written, perhaps, but not synced: they are to be written again.
  for (Frame* frame : waiting) {
    frame->unwritten = true;
  }
  return written ? unconfirmed() : Status(Failure::full, "the file cannot be written");
}

// Gives a changed page its bytes before the transaction.
bool Pager::State::restore(Frame& frame) {
  if (frame.number >= committedPages) {
    cache.forget(&frame);
    return true;
  }
  if (!frame.before) {
    return file.read(frame.number, frame.all());
  }
  std::memcpy(frame.bytes.get(), frame.before.get(), frame.size);
  return true;
}

void Pager::State::endTransaction() {
  constexpr std::size_t mostSpareBuffers = 64;
  for (Frame* frame : changed) {
    frame->changed = false;
    if (frame->before && spareBuffers.size() < mostSpareBuffers) {
      spareBuffers.push_back(std::move(frame->before));
    }
    frame->before.reset();
  }
  changed.clear();
  transaction = false;
  wroteEarly = false;
}

PageView::~PageView() {
  if (frame_ != nullptr) {
    --frame_->pins;
  }
}
Bytes PageView::bytes() const {
  return frame_->all();
}
PageNumber PageView::number() const {
  return frame_->number;
}

// --- Opening and closing

Result<std::unique_ptr<Pager>> Pager::open(const std::filesystem::path& path, const Options& options) {
  FileSystem& files = options.files != nullptr ? *options.files : systemFiles();
  auto file = PageFile::open(files, path, options.readOnly, options.password);
  if (!file) {
    return file.status();
  }
  const std::uint32_t cachePages = std::max(options.cachePages, fewestCachePages);
  return std::unique_ptr<Pager>(new Pager(std::make_unique<State>(*std::move(file), files, cachePages)));
}

Pager::Pager(std::unique_ptr<State> state) : state_(std::move(state)) {}

Pager::~Pager() {
  rollback();
  if (checkpoint()) {
    state_->journal.remove();
  }
}

Version Pager::version() const {
  return state_->file.header().version;
}
std::uint32_t Pager::pageSize() const {
  return state_->file.pageSize();
}
PageNumber Pager::pageCount() const {
  return state_->pages;
}
const Status& Pager::writable() const {
  return state_->file.writable();
}
std::uint16_t Pager::codePage() const {
  return state_->file.header().codePage;
}
std::uint32_t Pager::defaultTextOrder() const {
  return state_->file.header().textOrder;
}
bool Pager::inTransaction() const {
  return state_->transaction;
}
const Status& Pager::pageFailure() const {
  return state_->pageFailure;
}
SpaceHints& Pager::spaceHints() {
  return state_->hints;
}

// --- Using

PageView Pager::read(PageNumber page) {
  Frame* frame = state_->load(page);
  if (frame != nullptr) {
    ++frame->pins;
  }
  return PageView(frame);
}

Status Pager::begin() {
  if (!writable()) {
    return writable();
  }
  if (state_->broken || state_->transaction) {
    return {Failure::other, "no transaction can begin"};
  }
  state_->transaction = true;
  return {};
}

MutableBytes Pager::edit(PageNumber page) {
  // P8
  Frame* frame = state_->transaction && page != 0 ? state_->load(page) : nullptr;
  if (frame == nullptr) {
    return {};
  }
  state_->startChange(*frame);
  return frame->all();
}

PageNumber Pager::append() {
  if (!state_->transaction || state_->file.offsetOf(state_->pages + 1) > maximumFileSize(version())) {
    state_->pageFailure = {Failure::full, "the file has its full size"};
    return noPage;
  }
  Frame* frame = state_->takeFrame();
  std::memset(frame->bytes.get(), 0, frame->size);
  state_->cache.enter(frame, state_->pages);
  frame->recentlyUsed = true;
  state_->startChange(*frame);
  return state_->pages++;
}

Status Pager::commit() {
  State& state = *state_;
  if (!state.transaction) {
    return {Failure::other, "no transaction"};
  }
  const bool wroteEarly = state.wroteEarly;
  if (wroteEarly || !state.changed.empty()) {
    if (Status done = state.journalTransaction(); !done) {
      rollback();
      return done;
    }
  }
  for (Frame* frame : state.changed) {
    frame->unwritten = frame->unwrittenAfter;
  }
  state.committedPages = state.pages;
  state.endTransaction();
  if (wroteEarly) {
    state.keptPages = state.committedPages;  // P3
  }
  if (wroteEarly || state.journal.size() > longJournal || state.unwrittenKept > state.cache.limit() / 2) {
    checkpoint();  // if it fails, the next one does it
  }
  return {};
}

void Pager::rollback() {
  State& state = *state_;
  if (!state.transaction) {
    return;
  }
  for (Frame* frame : state.changed) {
    state.broken = !state.restore(*frame) || state.broken;
  }
  if (state.wroteEarly) {
    state.cache.forgetFrom(state.committedPages);
  }
  state.pages = state.committedPages;
  state.hints.searchFrom = 0;
  state.endTransaction();
}

Status Pager::checkpoint() {
  State& state = *state_;
  if (state.transaction || state.broken) {
    return {Failure::other, "no checkpoint can be made"};
  }
  if (state.journal.empty()) {
    return {};
  }
  // P4
  if (!state.journal.sync()) {
    return unconfirmed();
  }
  if (Status done = state.writeUnwritten(); !done) {
    return done;
  }
  state.keptPages = state.committedPages;
  state.unwrittenKept = 0;
  state.cache.shrink([&state](Frame& frame) { return state.mayGiveUp(frame); });
  const bool cleared = state.journal.clear();
  state.journal.startAt(state.file.length());
  return cleared ? Status() : unconfirmed();
}

}  // namespace veltrano::access
