#ifndef VELTRANO_PDF_FONTS_METRICS_FOLDER_H
#define VELTRANO_PDF_FONTS_METRICS_FOLDER_H

// The folder that the metrics files are read from. What was read is an immutable object that the caller holds
// for as long as it draws with it.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files/identity.h"
#include "pdf/fonts/metrics.h"

namespace veltrano {

class MetricsFolder {
 public:
  /// Empty at first: every font then measures 0.
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  void setPath(const std::filesystem::path& folder);

  /// The metrics of `fontName` as its file holds them now; the file is read at each call, and parsed when its
  /// text differs from the last one. Never null: an unreadable or missing file measures 0.
  std::shared_ptr<const FontMetrics> read(std::string_view fontName);
  /// The same without reading a file whose size and times are those of the last reading. Cheap enough for
  /// each page and each change of font; a change in place within one step of the file system's times, to the
  /// same size, is seen by read() only.
  std::shared_ptr<const FontMetrics> look(std::string_view fontName);

 private:
  /// The metrics of most files end within this length.
  static constexpr std::size_t usualLength = std::size_t{12} << 10;

  struct Entry {
    std::string fontName;
    std::filesystem::path file;
    std::size_t limit = usualLength;
    std::optional<FileIdentity> identity;
    std::string text;
    std::shared_ptr<const FontMetrics> metrics;
  };

  Entry& entry(std::string_view fontName);
  static std::shared_ptr<const FontMetrics> readEntry(Entry& font);

  std::filesystem::path path_;
  std::vector<Entry> entries_;
};

}  // namespace veltrano

#endif
