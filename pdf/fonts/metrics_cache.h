#ifndef VELTRANO_PDF_FONTS_METRICS_CACHE_H
#define VELTRANO_PDF_FONTS_METRICS_CACHE_H

// The metrics of fonts, kept for as long as their files stay as they are.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/os/files.h"
#include "pdf/fonts/afm_file.h"

namespace veltrano {

/// The metrics of the fonts of a folder. A file is read again when it has changed, so that every call answers
/// as if it read the file.
///
/// A look at the file is left out only where the host cannot have changed it since the last one: when it
/// calls again at once, without the time for a call of the system in between, as loops over the cells of a
/// table do.
class MetricsCache {
 public:
  /// None at first, which has no fonts.
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  void setFolder(const std::filesystem::path& folder);

  /// Metrics of `fontName`, as of now. Valid until the next call.
  const FontMetrics& metrics(std::string_view fontName);

  /// To be called where a member that has used metrics() returns to the host. Without it the next look comes
  /// sooner than it need be, nothing worse.
  void callEnds() { lastUsed_ = Clock::now(); }

  /// What is known of a font without looking at its file, when a look could only say whether the file has
  /// changed since; otherwise a null pointer. Valid until the next call.
  const FontMetrics* knownMetrics(std::string_view fontName);
  /// Whether the font's file has changed after `time` (clock of FileIdentity). When a missing file went is
  /// unknown; that counts as no change.
  bool changedAfter(std::string_view fontName, std::int64_t time);

 private:
  using Clock = std::chrono::steady_clock;

  struct Entry {
    std::string fontName;
    std::filesystem::path file;
    FileIdentity identity;
    bool trusted = false;  ///< an equal identity means equal content
    Clock::time_point lookedAt;
    FontMetrics metrics;
  };

  /// False when the host has had the time to change the file since the entry's last look.
  bool stillHolds(const Entry& font, Clock::time_point now);
  void read(Entry& font);
  Entry& entry(std::string_view fontName);

  std::filesystem::path folder_;
  std::vector<std::unique_ptr<Entry>> entries_;
  Entry* latest_ = nullptr;
  Clock::time_point lastUsed_;
  Clock::time_point unbrokenSince_;  ///< since then the calls have followed each other at once
};

}  // namespace veltrano

#endif
