#include "database/access/storage/pager.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "database/access/storage/codec.h"
#include "database/access/storage/header.h"
#include "database/access/storage/journal.h"
#include "database/access/storage/recovery.h"

namespace veltrano::access {

namespace {

// Two stretches of differing bytes that lie closer than this become one change of the journal.
constexpr std::size_t changeGap = 16;

// A checkpoint follows when the journal has become longer than this.
constexpr std::uint64_t longJournal = std::uint64_t{32} << 20;

// How far ahead the journal states the file's length when pages are written early.
constexpr std::uint64_t announceStep = std::uint64_t{16} << 20;

constexpr std::uint32_t fewestCachePages = 16;

// Calls action(begin, end) for every stretch where the two differ.
template <typename Action>
void forEachDifference(Bytes before, Bytes after, Action action) {
  constexpr std::size_t word = 8;
  std::size_t begin = 0;
  std::size_t end = 0;  // of the current stretch; none if equal to begin
  for (std::size_t i = 0; i < before.size(); i += word) {
    if (std::memcmp(before.data() + i, after.data() + i, word) == 0) {
      continue;
    }
    if (end != begin && i - end > changeGap) {
      action(begin, end);
      begin = end = i;
    }
    if (end == begin) {
      begin = i;
    }
    end = i + word;
  }
  if (end != begin) {
    action(begin, end);
  }
}

}  // namespace

struct Pager::State {
  State(std::unique_ptr<RandomAccessFile> opened, const Header& itsHeader, Journal itsJournal,
        std::uint32_t cachePages)
      : file(std::move(opened)),
        journal(std::move(itsJournal)),
        header(itsHeader),
        codec(itsHeader.pageKey),
        pageSize(pageSizeOf(itsHeader.version)),
        cache(pageSize, cachePages) {}

  std::unique_ptr<RandomAccessFile> file;
  Journal journal;
  Header header;
  PageCodec codec;
  std::uint32_t pageSize;
  PageCache cache;

  PageNumber pages = 0;           // those of the transaction included
  PageNumber committedPages = 0;  // without those
  PageNumber keptPages = 0;       // below this a page is written by a checkpoint only (P1, P3)
  std::uint64_t fileLength = 0;   // as far as this process has found or made it
  std::size_t unwrittenKept = 0;  // frames that have to wait for a checkpoint; at least as many as there are

  bool readOnly = false;
  bool broken = false;  // a rollback failed: what the cache has is not what was committed
  bool transaction = false;
  bool wroteEarly = false;  // the transaction has pages of its own in the file
  std::vector<Frame*> changed;
  std::vector<std::unique_ptr<std::uint8_t[]>> spareBuffers;
  std::vector<std::uint8_t> codedBefore;
  std::vector<std::uint8_t> codedAfter;
  SpaceHints hints;
  std::string error;

  bool fail(const char* reason) {
    error = reason;
    return false;
  }
  [[nodiscard]] std::uint64_t offsetOf(PageNumber page) const { return std::uint64_t{page} * pageSize; }

  Frame* load(PageNumber page);
  bool readInto(Frame& frame, PageNumber page);
  bool mayGiveUp(Frame& frame);
  Frame* takeFrame() {
    return cache.take([this](Frame& frame) { return mayGiveUp(frame); });
  }
  void startChange(Frame& frame);
  void unlist(Frame& frame);
  std::unique_ptr<std::uint8_t[]> buffer();
  Bytes coded(PageNumber page, Bytes bytes, std::vector<std::uint8_t>& space) const;

  bool writePage(Frame& frame);
  bool writeEarly(Frame& frame);
  bool journalFrame(Frame& frame);
  bool journalTransaction();
  bool writeUnwritten();
  bool restore(Frame& frame);
  void endTransaction();
};

// --- The cache

bool Pager::State::readInto(Frame& frame, PageNumber page) {
  const auto got = file->readAt(offsetOf(page), frame.all());
  if (!got) {
    return fail("the file cannot be read");
  }
  // The last page of a file that was cut off.
  std::fill(frame.bytes.get() + *got, frame.bytes.get() + pageSize, std::uint8_t{0});
  codec.apply(page, frame.all());
  return true;
}

Frame* Pager::State::load(PageNumber page) {
  Frame* frame = cache.find(page);
  if (frame == nullptr) {
    if (page >= pages || broken) {
      error = "a page after the end of the file";
      return nullptr;
    }
    frame = takeFrame();
    if (!readInto(*frame, page)) {
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
    if (frame.number < committedPages || !writeEarly(frame)) {
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
    return std::make_unique_for_overwrite<std::uint8_t[]>(pageSize);
  }
  auto last = std::move(spareBuffers.back());
  spareBuffers.pop_back();
  return last;
}

// --- Writing

// The page as it lies in the file.
Bytes Pager::State::coded(PageNumber page, Bytes bytes, std::vector<std::uint8_t>& space) const {
  if (!codec.encodes()) {
    return bytes;
  }
  space.assign(bytes.begin(), bytes.end());
  codec.apply(page, space);
  return space;
}

bool Pager::State::writePage(Frame& frame) {
  const std::uint64_t offset = offsetOf(frame.number);
  if (!file->writeAt(offset, coded(frame.number, frame.all(), codedAfter))) {
    return fail("the file cannot be written");
  }
  fileLength = std::max(fileLength, offset + pageSize);
  frame.unwritten = false;
  return true;
}

bool Pager::State::writeEarly(Frame& frame) {
  const std::uint64_t end = offsetOf(frame.number + 1);
  if (end > journal.announced() && !journal.announce(end + announceStep)) {
    return fail("the journal cannot be written");
  }
  return writePage(frame);
}

void Pager::State::startChange(Frame& frame) {
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

bool Pager::State::journalFrame(Frame& frame) {
  const std::uint64_t offset = offsetOf(frame.number);
  const Bytes after = coded(frame.number, frame.all(), codedAfter);
  bool differs = frame.number >= committedPages;
  if (differs) {
    journal.addNewBytes(offset, after);
  } else {
    codedBefore.resize(pageSize);
    if (!frame.before && file->readAt(offset, codedBefore) != pageSize) {
      return fail("the file cannot be read");
    }
    const Bytes before = frame.before ? coded(frame.number, frame.old(), codedBefore) : Bytes(codedBefore);
    forEachDifference(before, after, [&](std::size_t begin, std::size_t end) {
      const Bytes now = after.subspan(begin, end - begin);
      differs = true;
      if (frame.number < keptPages) {
        journal.addChange(offset + begin, before.subspan(begin, end - begin), now);
      } else {
        journal.addNewBytes(offset + begin, now);
      }
    });
  }
  if (differs && !frame.unwritten && frame.number < keptPages) {
    ++unwrittenKept;
  }
  frame.unwrittenAfter = frame.unwritten || differs;
  return true;
}

bool Pager::State::journalTransaction() {
  // What went to the file early is in no record (P3).
  if (wroteEarly && !file->sync()) {
    return fail("the disk does not confirm the writing");
  }
  journal.startRecord();
  for (Frame* frame : changed) {
    if (!journalFrame(*frame)) {
      return false;
    }
  }
  return journal.writeRecord(offsetOf(pages)) || fail("the journal cannot be written");
}

// In the order of the file.
bool Pager::State::writeUnwritten() {
  std::vector<Frame*> waiting;
  for (const auto& frame : cache.frames()) {
    if (frame->number != noPage && frame->unwritten) {
      waiting.push_back(frame.get());
    }
  }
  std::sort(waiting.begin(), waiting.end(),
            [](const Frame* a, const Frame* b) { return a->number < b->number; });
  for (std::size_t i = 0; i < waiting.size(); ++i) {
    if (!writePage(*waiting[i])) {
      // Written, but not synced: they are to be written again.
      for (std::size_t done = 0; done < i; ++done) {
        waiting[done]->unwritten = true;
      }
      return false;
    }
  }
  const std::uint64_t length = offsetOf(committedPages);
  if ((fileLength == length || file->resize(length)) && file->sync()) {
    fileLength = length;
    return true;
  }
  for (Frame* frame : waiting) {
    frame->unwritten = true;
  }
  return fail("the disk does not confirm the writing");
}

// Gives a changed page its bytes before the transaction.
bool Pager::State::restore(Frame& frame) {
  if (frame.number >= committedPages) {
    cache.forget(&frame);
    return true;
  }
  if (!frame.before) {
    return readInto(frame, frame.number);
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

// --- Opening

namespace {

bool otherProgramUses(FileSystem& files, const std::filesystem::path& file) {
  for (const char* extension : {".ldb", ".laccdb"}) {
    std::filesystem::path lockFile = file;
    if (files.lockFileInUse(lockFile.replace_extension(extension))) {
      return true;
    }
  }
  return false;
}

const char* reasonOf(OpenFailure failure) {
  switch (failure) {
    case OpenFailure::missing:
      return "no such file";
    case OpenFailure::inUse:
      return "the file is in use";
    default:
      return "the file cannot be opened";
  }
}

}  // namespace

std::unique_ptr<Pager> Pager::open(const std::filesystem::path& given, const Options& options,
                                   std::string& reason) {
  FileSystem& files = options.files != nullptr ? *options.files : systemFiles();
  // The journal lies beside the file itself, whatever link leads there.
  std::error_code error;
  std::filesystem::path path = std::filesystem::canonical(given, error);
  if (error) {
    path = given;
  }
  bool readOnly = options.readOnly;
  std::unique_ptr<RandomAccessFile> file;
  OpenFailure failure = OpenFailure::notWritable;
  if (!readOnly) {
    file = files.open(path, OpenMode::write, failure);
  }
  if (!file && failure == OpenFailure::notWritable) {
    readOnly = true;
    file = files.open(path, OpenMode::read, failure);
  }
  if (!file) {
    reason = reasonOf(failure);
    return nullptr;
  }
  if (otherProgramUses(files, path)) {
    reason = "another program's lock file says that the file is in use";
    return nullptr;
  }
  std::array<std::uint8_t, headerSize> first = {};
  const auto got = file->readAt(0, first);
  if (!got) {
    reason = "the file cannot be read";
    return nullptr;
  }
  const auto header = readHeader(Bytes(first).first(*got), options.password, reason);
  if (!header) {
    return nullptr;
  }
  const std::uint32_t pageSize = pageSizeOf(header->version);
  const std::uint64_t identity = hashBytes(Bytes(first).first(pageSize));
  if (!recoverDatabase(files, path, readOnly ? nullptr : file.get(), identity, pageSize)) {  // P5
    reason = "an ended process left a journal beside the file, and it cannot be applied";
    return nullptr;
  }
  const auto size = file->size();
  if (!size || *size > maximumFileSize(header->version)) {
    reason = "the file is larger than the format allows";
    return nullptr;
  }
  auto state = std::make_unique<State>(std::move(file), *header, Journal(files, path, identity),
                                       std::max(options.cachePages, fewestCachePages));
  // P6. Jet 3 is read only: nobody can check what would be written.
  state->readOnly = readOnly || *size % pageSize != 0 || isJet3(header->version) ||
                    !state->journal.canBeMade();
  state->pages = static_cast<PageNumber>((*size + pageSize - 1) / pageSize);
  state->committedPages = state->keptPages = state->pages;
  state->fileLength = *size;
  state->journal.startAt(*size);
  return std::unique_ptr<Pager>(new Pager(std::move(state)));
}

Pager::Pager(std::unique_ptr<State> state) : state_(std::move(state)) {}

Pager::~Pager() {
  rollback();
  if (checkpoint()) {
    state_->journal.remove();
  }
}

Version Pager::version() const {
  return state_->header.version;
}
std::uint32_t Pager::pageSize() const {
  return state_->pageSize;
}
PageNumber Pager::pageCount() const {
  return state_->pages;
}
bool Pager::readOnly() const {
  return state_->readOnly;
}
std::uint16_t Pager::codePage() const {
  return state_->header.codePage;
}
std::uint32_t Pager::defaultTextOrder() const {
  return state_->header.textOrder;
}
bool Pager::inTransaction() const {
  return state_->transaction;
}
std::string_view Pager::lastError() const {
  return state_->error;
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

bool Pager::begin() {
  if (state_->readOnly) {
    return state_->fail("the file is open for reading only");
  }
  if (state_->broken || state_->transaction) {
    return state_->fail("no transaction can begin");
  }
  state_->transaction = true;
  return true;
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
  if (!state_->transaction || state_->offsetOf(state_->pages + 1) > maximumFileSize(version())) {
    state_->fail("the file has its full size");
    return noPage;
  }
  Frame* frame = state_->takeFrame();
  std::memset(frame->bytes.get(), 0, frame->size);
  state_->cache.enter(frame, state_->pages);
  frame->recentlyUsed = true;
  state_->startChange(*frame);
  return state_->pages++;
}

bool Pager::commit() {
  State& state = *state_;
  if (!state.transaction) {
    return state.fail("no transaction");
  }
  const bool wroteEarly = state.wroteEarly;
  if ((wroteEarly || !state.changed.empty()) && !state.journalTransaction()) {
    rollback();
    return false;
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
  return true;
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

bool Pager::checkpoint() {
  State& state = *state_;
  if (state.transaction || state.broken) {
    return state.fail("no checkpoint can be made");
  }
  if (state.journal.empty()) {
    return true;
  }
  // P4
  if (!state.journal.sync()) {
    return state.fail("the disk does not confirm the writing");
  }
  if (!state.writeUnwritten()) {
    return false;
  }
  state.keptPages = state.committedPages;
  state.unwrittenKept = 0;
  state.cache.shrink([&state](Frame& frame) { return state.mayGiveUp(frame); });
  const bool cleared = state.journal.clear();
  state.journal.startAt(state.offsetOf(state.committedPages));
  return cleared || state.fail("the disk does not confirm the writing");
}

}  // namespace veltrano::access
