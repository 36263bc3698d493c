#ifndef VELTRANO_PDF_METRICS_CACHE_H
#define VELTRANO_PDF_METRICS_CACHE_H

// The metrics of fonts, kept for as long as their files stay as they are.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "pdf/afm_file.h"

namespace veltrano {

/// The metrics of a folder's fonts. A file is read again when it has changed, so that every call answers as
/// if it read the file.
class MetricsCache {
 public:
  /// Metrics of `fontName` in `folder`. Valid until the next call.
  const FontMetrics& metrics(const std::filesystem::path& folder, std::string_view fontName);

  /// What is known of a font without looking at its file, when a look could only say whether the file has
  /// changed since; otherwise a null pointer. Valid until the next call.
  const FontMetrics* knownMetrics(const std::filesystem::path& folder, std::string_view fontName);
  /// Whether the font's file has changed after `time` (clock of FileIdentity). When a missing file went is
  /// unknown; that counts as no change.
  bool changedAfter(const std::filesystem::path& folder, std::string_view fontName, std::int64_t time);

 private:
  struct Entry {
    std::string fontName;
    std::filesystem::path file;
    std::optional<FileIdentity> identity;
    bool trusted = false;  ///< an equal identity means equal content
    std::chrono::steady_clock::time_point lookedAt;
    std::chrono::steady_clock::duration shortestLook = std::chrono::steady_clock::duration::max();
    FontMetrics metrics;
  };

  Entry& entry(const std::filesystem::path& folder, std::string_view fontName);

  std::filesystem::path folder_;
  std::vector<std::unique_ptr<Entry>> entries_;
  Entry* latest_ = nullptr;
};

}  // namespace veltrano

#endif
