#include "database/access/storage/pager.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_map>
#include <vector>

#include "base/trace.h"
#include "database/access/storage/codec.h"
#include "database/access/storage/header.h"
#include "database/access/storage/journal.h"

namespace veltrano::access {

namespace pager_internal {

struct Frame {
  PageNumber number = noPage;
  std::uint32_t pins = 0;
  bool recentlyUsed = false;
  bool changed = false;  ///< by the current transaction
  std::uint32_t size = 0;
  std::unique_ptr<std::uint8_t[]> bytes;
  std::unique_ptr<std::uint8_t[]>
      before;  ///< of a changed page that was in the file when the transaction began

  [[nodiscard]] MutableBytes all() const { return {bytes.get(), size}; }
  [[nodiscard]] Bytes old() const { return {before.get(), size}; }
};

}  // namespace pager_internal

using pager_internal::Frame;

namespace {

// Two stretches of differing bytes that lie closer than this become one range of the journal.
constexpr std::size_t rangeGap = 16;

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
    if (end != begin && i - end > rangeGap) {
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
  FileSystem* files = nullptr;
  std::unique_ptr<RandomAccessFile> file;
  std::unique_ptr<Journal> journal;
  Header header;
  PageCodec codec;
  std::uint64_t identity = 0;
  std::uint32_t pageSize = 4096;
  PageNumber pages = 0;        // those of the transaction included
  PageNumber pagesInFile = 0;  // those of the file
  std::uint32_t cachePages = 0;
  bool readOnly = false;
  bool broken = false;
  bool transaction = false;
  bool unsynced = false;
  std::string error;

  std::vector<std::unique_ptr<Frame>> frames;
  std::unordered_map<PageNumber, Frame*> byNumber;
  std::array<Frame*, 256> quick = {};  // by the low byte of the number; to be checked
  std::size_t clockHand = 0;
  std::vector<Frame*> changed;
  std::vector<std::unique_ptr<std::uint8_t[]>> spareBuffers;
  std::vector<std::uint8_t> codedBefore;
  std::vector<std::uint8_t> codedAfter;

  bool fail(const char* reason) {
    error = reason;
    return false;
  }
  [[nodiscard]] std::uint64_t offsetOf(PageNumber page) const { return std::uint64_t{page} * pageSize; }

  Frame* find(PageNumber page);
  Frame* freeFrame();
  Frame* load(PageNumber page);
  Frame* enter(Frame* frame, PageNumber page);
  void forget(Frame* frame);
  std::unique_ptr<std::uint8_t[]> buffer();

  bool writeChanges();
  bool writeNewPages();
  bool writeChangedRanges();
  void journalRanges();
  Bytes coded(PageNumber page, Bytes bytes, std::vector<std::uint8_t>& space) const;
  void endTransaction();
};

Frame* Pager::State::find(PageNumber page) {
  Frame*& slot = quick[page & 0xFF];
  if (slot != nullptr && slot->number == page) {
    return slot;
  }
  const auto found = byNumber.find(page);
  if (found == byNumber.end()) {
    return nullptr;
  }
  slot = found->second;
  return slot;
}

// A frame that holds no page: a new one while the cache may grow, else the one longest unused. When all are
// pinned or changed the cache grows beyond its bound (P5).
Frame* Pager::State::freeFrame() {
  if (frames.size() >= cachePages) {
    for (std::size_t tries = 2 * frames.size(); tries > 0; --tries) {
      Frame* frame = frames[clockHand].get();
      clockHand = (clockHand + 1) % frames.size();
      if (frame->pins != 0 || frame->changed) {
        continue;
      }
      if (frame->recentlyUsed) {
        frame->recentlyUsed = false;
        continue;
      }
      forget(frame);
      return frame;
    }
  }
  auto frame = std::make_unique<Frame>();
  frame->bytes = std::make_unique<std::uint8_t[]>(pageSize);
  frame->size = pageSize;
  frames.push_back(std::move(frame));
  return frames.back().get();
}

Frame* Pager::State::enter(Frame* frame, PageNumber page) {
  byNumber.emplace(page, frame);
  frame->number = page;
  quick[page & 0xFF] = frame;
  return frame;
}

void Pager::State::forget(Frame* frame) {
  byNumber.erase(frame->number);
  frame->number = noPage;
}

Frame* Pager::State::load(PageNumber page) {
  if (Frame* frame = find(page)) {
    frame->recentlyUsed = true;
    return frame;
  }
  if (page >= pages || broken) {
    error = "a page behind the end of the file";
    return nullptr;
  }
  Frame* frame = freeFrame();
  const auto got = file->readAt(offsetOf(page), frame->all());
  if (!got) {
    error = "the file cannot be read";
    return nullptr;
  }
  // The last page of a file that was cut off.
  std::fill(frame->bytes.get() + *got, frame->bytes.get() + pageSize, std::uint8_t{0});
  codec.apply(page, frame->all());
  frame->recentlyUsed = true;
  return enter(frame, page);
}

std::unique_ptr<std::uint8_t[]> Pager::State::buffer() {
  if (spareBuffers.empty()) {
    return std::make_unique<std::uint8_t[]>(pageSize);
  }
  auto last = std::move(spareBuffers.back());
  spareBuffers.pop_back();
  return last;
}

// The page as it lies in the file.
Bytes Pager::State::coded(PageNumber page, Bytes bytes, std::vector<std::uint8_t>& space) const {
  if (!codec.encodes()) {
    return bytes;
  }
  space.assign(bytes.begin(), bytes.end());
  codec.apply(page, space);
  return space;
}

void Pager::State::journalRanges() {
  journal->startRecord(offsetOf(pagesInFile), identity);
  for (const Frame* frame : changed) {
    if (!frame->before) {
      continue;
    }
    const Bytes before = coded(frame->number, frame->old(), codedBefore);
    const Bytes after = coded(frame->number, frame->all(), codedAfter);
    forEachDifference(before, after, [&](std::size_t begin, std::size_t end) {
      journal->addRange(offsetOf(frame->number) + begin, before.subspan(begin, end - begin),
                        after.subspan(begin, end - begin));
    });
  }
}

bool Pager::State::writeNewPages() {
  for (const Frame* frame : changed) {
    if (!frame->before &&
        !file->writeAt(offsetOf(frame->number), coded(frame->number, frame->all(), codedAfter))) {
      return false;
    }
  }
  return true;
}

// One write for each page, from the first difference to the last: the equal bytes between do no harm.
bool Pager::State::writeChangedRanges() {
  for (const Frame* frame : changed) {
    if (!frame->before) {
      continue;
    }
    std::size_t first = pageSize;
    std::size_t last = 0;
    forEachDifference(frame->old(), frame->all(), [&](std::size_t begin, std::size_t end) {
      first = std::min(first, begin);
      last = end;
    });
    if (first < last &&
        !file->writeAt(offsetOf(frame->number) + first,
                       coded(frame->number, frame->all(), codedAfter).subspan(first, last - first))) {
      return false;
    }
  }
  return true;
}

bool Pager::State::writeChanges() {
  // New pages first: a full disk then shows before an old page has changed.
  std::sort(changed.begin(), changed.end(),
            [](const Frame* a, const Frame* b) { return a->number < b->number; });
  journalRanges();
  if (!journal->writeRecord()) {
    return fail("the journal cannot be written");
  }
  unsynced = true;
  if (writeNewPages() && writeChangedRanges() && journal->voidRecord()) {
    return true;
  }
  if (!journal->undo(*file)) {
    broken = true;
    journal->keep();
    return fail("the file cannot be written, nor put back as it was; the next open does that");
  }
  return fail("the file cannot be written");
}

void Pager::State::endTransaction() {
  for (Frame* frame : changed) {
    frame->changed = false;
    if (frame->before) {
      spareBuffers.push_back(std::move(frame->before));
    }
  }
  constexpr std::size_t spareLimit = 64;
  if (spareBuffers.size() > spareLimit) {
    spareBuffers.resize(spareLimit);
  }
  changed.clear();
  transaction = false;
  // A large transaction may have made the cache grow.
  while (frames.size() > cachePages && frames.back()->pins == 0) {
    Frame* frame = frames.back().get();
    if (frame->number != noPage) {
      if (quick[frame->number & 0xFF] == frame) {
        quick[frame->number & 0xFF] = nullptr;
      }
      byNumber.erase(frame->number);
    }
    for (Frame*& slot : quick) {
      if (slot == frame) {
        slot = nullptr;
      }
    }
    frames.pop_back();
  }
  clockHand = frames.empty() ? 0 : clockHand % frames.size();
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
  auto state = std::make_unique<State>();
  state->files = options.files != nullptr ? options.files : &systemFiles();
  // The journal lies beside the file itself, whatever link leads there.
  std::error_code error;
  std::filesystem::path file = std::filesystem::canonical(given, error);
  if (error) {
    file = given;
  }
  OpenFailure failure = OpenFailure::notWritable;
  if (!options.readOnly) {
    state->file = state->files->open(file, OpenMode::write, failure);
  }
  if (!state->file && failure == OpenFailure::notWritable) {
    state->readOnly = true;
    state->file = state->files->open(file, OpenMode::read, failure);
  }
  if (!state->file) {
    reason = reasonOf(failure);
    return nullptr;
  }
  if (otherProgramUses(*state->files, file)) {
    reason = "another program's lock file says that the file is in use";
    return nullptr;
  }
  std::array<std::uint8_t, headerSize> first = {};
  const auto got = state->file->readAt(0, first);
  if (!got) {
    reason = "the file cannot be read";
    return nullptr;
  }
  const auto header = readHeader(Bytes(first).first(*got), options.password, reason);
  if (!header) {
    return nullptr;
  }
  state->header = *header;
  state->codec = PageCodec(header->pageKey);
  state->pageSize = pageSizeOf(header->version);
  state->identity = hashBytes(Bytes(first).first(state->pageSize));
  state->cachePages = std::max<std::uint32_t>(options.cachePages, 16);
  state->journal = std::make_unique<Journal>(*state->files, file);
  if (!state->journal->recover(file, state->readOnly ? nullptr : state->file.get(), state->identity)) {
    reason = "a process that ended while writing left the file half written, and it cannot be put right";
    return nullptr;
  }
  const auto size = state->file->size();
  if (!size || *size > maximumFileSize(header->version)) {
    reason = "the file is larger than the format allows";
    return nullptr;
  }
  // P4. Jet 3 is read only: nobody can check what would be written.
  state->readOnly = state->readOnly || *size % state->pageSize != 0 || isJet3(header->version) ||
                    !state->journal->canBeMade();
  state->pages = static_cast<PageNumber>((*size + state->pageSize - 1) / state->pageSize);
  state->pagesInFile = state->pages;
  return std::unique_ptr<Pager>(new Pager(std::move(state)));
}

Pager::Pager(std::unique_ptr<State> state) : state_(std::move(state)) {}

Pager::~Pager() {
  rollback();
  if (sync()) {
    state_->journal->remove();
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
  Frame* frame = state_->transaction && page != 0 ? state_->load(page) : nullptr;
  if (frame == nullptr) {
    return {};
  }
  if (!frame->changed) {
    frame->before = state_->buffer();
    std::memcpy(frame->before.get(), frame->bytes.get(), frame->size);
    state_->changed.push_back(frame);
    frame->changed = true;
  }
  return frame->all();
}

PageNumber Pager::append() {
  if (!state_->transaction || state_->offsetOf(state_->pages + 1) > maximumFileSize(version())) {
    state_->fail("the file has its full size");
    return noPage;
  }
  Frame* frame = state_->freeFrame();
  std::memset(frame->bytes.get(), 0, frame->size);
  state_->enter(frame, state_->pages);
  frame->changed = true;
  frame->recentlyUsed = true;
  state_->changed.push_back(frame);
  return state_->pages++;
}

bool Pager::commit() {
  if (!state_->transaction) {
    return state_->fail("no transaction");
  }
  if (!state_->changed.empty() && !state_->writeChanges()) {
    rollback();
    return false;
  }
  state_->pagesInFile = state_->pages;
  state_->endTransaction();
  return true;
}

void Pager::rollback() {
  if (!state_->transaction) {
    return;
  }
  for (Frame* frame : state_->changed) {
    if (frame->before) {
      std::memcpy(frame->bytes.get(), frame->before.get(), frame->size);
    } else {
      state_->forget(frame);
    }
  }
  state_->pages = state_->pagesInFile;
  state_->endTransaction();
}

bool Pager::sync() {
  if (state_->broken) {
    return state_->fail("the file is broken");
  }
  if (!state_->unsynced) {
    return true;
  }
  // The journal after the database: should its record come back to life, it only undoes a transaction that
  // was not yet promised.
  if (!state_->file->sync() || !state_->journal->sync()) {
    return state_->fail("the disk does not confirm the writing");
  }
  state_->unsynced = false;
  return true;
}

}  // namespace veltrano::access
