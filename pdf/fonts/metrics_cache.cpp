#include "pdf/fonts/metrics_cache.h"

#include <algorithm>
#include <utility>

#include "base/trace.h"

namespace veltrano {

void MetricsCache::setFolder(const std::filesystem::path& folder) {
  if (folder_.native() != folder.native()) {
    entries_.clear();
    latest_ = nullptr;
    folder_ = folder;
  }
}

MetricsCache::Entry& MetricsCache::entry(std::string_view fontName) {
  if (latest_ != nullptr && latest_->fontName == fontName) {
    return *latest_;
  }
  const auto known = std::find_if(entries_.begin(), entries_.end(),
                                  [fontName](const auto& entry) { return entry->fontName == fontName; });
  if (known != entries_.end()) {
    latest_ = known->get();
    return *latest_;
  }
  // Hosts may ask for any name: what they made up must not pile up.
  constexpr std::size_t mostEntries = 64;
  if (entries_.size() == mostEntries) {
    entries_.clear();
  }
  entries_.push_back(std::make_unique<Entry>());
  latest_ = entries_.back().get();
  latest_->fontName = fontName;
  const auto name = pathFromAnsi(std::string(fontName) + ".afm");
  if (!name.empty()) {
    // Joined as text: a made-up name that looks like an absolute path stays below the folder.
    latest_->file = folder_;
    latest_->file += std::filesystem::path::preferred_separator;
    latest_->file += name;
  }
  return *latest_;
}

namespace {

/// A stamp is trusted when a later change is sure to give another one: some file systems count in steps of
/// two seconds. A stamp of the future never is.
bool stampIsOld(const FileIdentity& identity, std::int64_t now) {
  constexpr std::int64_t coarsestStep = 2'000'000'000;
  return now - identity.changed > coarsestStep;
}

}  // namespace

bool MetricsCache::stillHolds(const Entry& font, Clock::time_point now) {
  // Less than any call of the system takes that could change a file.
  constexpr Clock::duration noTimeAtAll = std::chrono::nanoseconds(100);
  // Others than the host may change files too. Nothing tells which of the two came first, their writing or
  // this call, unless they are told apart by more than this.
  constexpr Clock::duration longest = std::chrono::microseconds(50);
  if (now - lastUsed_ > noTimeAtAll) {
    unbrokenSince_ = now;
  }
  lastUsed_ = now;
  return font.trusted && font.lookedAt >= unbrokenSince_ && now - font.lookedAt < longest;
}

const FontMetrics& MetricsCache::metrics(std::string_view fontName) {
  Entry& font = entry(fontName);
  const auto now = Clock::now();
  if (stillHolds(font, now)) {
    return font.metrics;
  }
  font.lookedAt = now;
  if (!font.trusted || fileIdentity(font.file) != font.identity) {
    read(font);
  }
  return font.metrics;
}

void MetricsCache::read(Entry& font) {
  // The metrics of most files end here.
  constexpr std::size_t usualLength = std::size_t{12} << 10;
  // A longer file is no metrics file, and need not fill the memory.
  constexpr std::size_t greatestLength = std::size_t{64} << 20;
  font.metrics = {};
  font.trusted = false;
  for (const std::size_t limit : {usualLength, greatestLength}) {
    const auto start = readIdentified(font.file, limit);
    if (!start) {
      break;
    }
    // The stamp is from before the reading, so a change during it is seen next time.
    font.identity = start->identity;
    font.trusted = stampIsOld(start->identity, fileClockNow());
    if (auto metrics = parseAfm(start->text, start->text.size() < limit)) {
      font.metrics = *std::move(metrics);
      return;
    }
  }
  traceSkipped("metrics", "no metrics can be read", pathToAnsi(font.file));
}

const FontMetrics* MetricsCache::knownMetrics(std::string_view fontName) {
  const Entry& font = entry(fontName);
  return font.trusted ? &font.metrics : nullptr;
}

bool MetricsCache::changedAfter(std::string_view fontName, std::int64_t time) {
  const auto identity = fileIdentity(entry(fontName).file);
  return identity && identity->changed > time;
}

}  // namespace veltrano
