#ifndef VELTRANO_PDF_AFM_FILE_H
#define VELTRANO_PDF_AFM_FILE_H

// Font metrics as AFM files hold them, and the widths of texts made of them.

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"

namespace veltrano {

/// What text is measured and underlined by, in thousandths of the font size. A default one is that of a
/// missing file: every character is 0 wide.
struct FontMetrics {
  /// By character code; entry 0 is always 0.
  std::array<std::int32_t, 256> widths{};
  /// The lines before the character metrics.
  std::string header;

  /// The number behind `key` in the header.
  [[nodiscard]] std::optional<double> headerNumber(std::string_view key) const;
  /// Distance from the baseline to the middle of an underline, negative below it.
  [[nodiscard]] double underlinePosition() const { return headerNumber("UnderlinePosition").value_or(-100); }
  [[nodiscard]] double underlineThickness() const { return headerNumber("UnderlineThickness").value_or(50); }
  /// How far letters reach below the baseline; negative.
  [[nodiscard]] double descender() const { return headerNumber("Descender").value_or(-212); }

  /// Sum of the widths of the characters. An addition that leaves 32 bits is skipped.
  [[nodiscard]] std::int32_t sum(std::string_view text) const;
  /// In points at `size` points.
  [[nodiscard]] double width(std::string_view text, std::int16_t size) const {
    return static_cast<double>(sum(text)) * size / 1000;
  }
};

/// Reads metrics from the start of a file. Lines end at CR LF, LF or CR. Only the positions of the fields
/// count; a line with a field that cannot be read leaves its width at 0. Nothing when the text ends before
/// the metrics do: `wholeFile` says that nothing follows, and a file without an end of its metrics measures 0
/// everywhere.
std::optional<FontMetrics> parseAfm(std::string_view text, bool wholeFile);

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
