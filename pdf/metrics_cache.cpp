#include "pdf/metrics_cache.h"

#include <algorithm>
#include <utility>

#include "base/trace.h"

namespace veltrano {

MetricsCache::Entry& MetricsCache::entry(const std::filesystem::path& folder, std::string_view fontName) {
  // Hosts may ask for any name: what they made up must not pile up.
  constexpr std::size_t mostEntries = 64;
  if (folder_.native() != folder.native() || entries_.size() > mostEntries) {
    entries_.clear();
    latest_ = nullptr;
    folder_ = folder;
  }
  if (latest_ != nullptr && latest_->fontName == fontName) {
    return *latest_;
  }
  const auto known = std::find_if(entries_.begin(), entries_.end(),
                                  [fontName](const auto& entry) { return entry->fontName == fontName; });
  if (known == entries_.end()) {
    entries_.push_back(std::make_unique<Entry>());
    latest_ = entries_.back().get();
    latest_->fontName = fontName;
    const auto name = pathFromAnsi(std::string(fontName) + ".afm");
    if (!name.empty()) {
      // Joined as text: a made-up name that looks like an absolute path stays below the folder.
      latest_->file = folder;
      latest_->file += std::filesystem::path::preferred_separator;
      latest_->file += name;
    }
  } else {
    latest_ = known->get();
  }
  return *latest_;
}

namespace {

FontMetrics readMetrics(const std::filesystem::path& file) {
  // The metrics of most files end here.
  constexpr std::size_t usualLength = std::size_t{12} << 10;
  // A longer file is no metrics file, and need not fill the memory.
  constexpr std::size_t greatestLength = std::size_t{64} << 20;
  for (const std::size_t limit : {usualLength, greatestLength}) {
    const auto text = readFileStart(file, limit);
    if (!text) {
      break;
    }
    if (auto metrics = parseAfm(*text, text->size() < limit)) {
      return *std::move(metrics);
    }
  }
  traceSkipped("metrics", "no metrics can be read", pathToAnsi(file));
  return {};
}

/// A stamp is trusted when a later change is sure to give another one: some file systems count in steps of
/// two seconds. A stamp of the future never is.
bool stampIsOld(const FileIdentity& identity, std::int64_t now) {
  constexpr std::int64_t coarsestStep = 2'000'000'000;
  return now - identity.changed > coarsestStep;
}

}  // namespace

const FontMetrics& MetricsCache::metrics(const std::filesystem::path& folder, std::string_view fontName) {
  // Whoever edits a file opens it first, which takes no less time than looking at it. So what a look has
  // found still holds for as long as the look took, and the cells of a table share a look with their
  // neighbours; where looking is dear, more of them do. The shortest look counts, as any other may have been
  // interrupted.
  using Clock = std::chrono::steady_clock;
  constexpr Clock::duration atLeast = std::chrono::microseconds(2);
  constexpr Clock::duration atMost = std::chrono::microseconds(200);
  Entry& font = entry(folder, fontName);
  const auto now = Clock::now();
  if (font.trusted && now - font.lookedAt < std::clamp(font.shortestLook, atLeast, atMost)) {
    return font.metrics;
  }
  const auto identity = fileIdentity(font.file);
  font.lookedAt = Clock::now();
  font.shortestLook = std::min(font.shortestLook, font.lookedAt - now);
  if (identity && font.trusted && font.identity == identity) {
    return font.metrics;
  }
  font.identity = identity;
  // The stamp and the clock are from before the reading, so a change during it is seen next time.
  font.trusted = identity && stampIsOld(*identity, fileClockNow());
  font.metrics = identity ? readMetrics(font.file) : FontMetrics();
  return font.metrics;
}

const FontMetrics* MetricsCache::knownMetrics(const std::filesystem::path& folder,
                                              std::string_view fontName) {
  const Entry& font = entry(folder, fontName);
  return font.trusted ? &font.metrics : nullptr;
}

bool MetricsCache::changedAfter(const std::filesystem::path& folder, std::string_view fontName,
                                std::int64_t time) {
  const auto identity = fileIdentity(entry(folder, fontName).file);
  return identity && identity->changed > time;
}

}  // namespace veltrano
