#include "pdf/fonts/metrics_folder.h"

#include <algorithm>
#include <utility>

#include "base/files/paths.h"
#include "base/trace.h"
#include "pdf/fonts/afm_file.h"

namespace veltrano {

void MetricsFolder::setPath(const std::filesystem::path& folder) {
  if (path_.native() != folder.native()) {
    entries_.clear();
    path_ = folder;
  }
}

MetricsFolder::Entry& MetricsFolder::entry(std::string_view fontName) {
  const auto known = std::find_if(entries_.begin(), entries_.end(),
                                  [fontName](const Entry& entry) { return entry.fontName == fontName; });
  if (known != entries_.end()) {
    return *known;
  }
  // Hosts may ask for any name: those they made up must not pile up.
  constexpr std::size_t mostEntries = 64;
  if (entries_.size() == mostEntries) {
    entries_.clear();
  }
  Entry& font = entries_.emplace_back();
  font.fontName = fontName;
  font.metrics = FontMetrics::none();
  const auto name = pathFromAnsi(std::string(fontName) + ".afm");
  if (!fontName.empty() && !name.empty()) {
    // Joined as text: a made-up name that looks like an absolute path stays below the folder.
    font.file = path_;
    font.file += std::filesystem::path::preferred_separator;
    font.file += name;
  }
  return font;
}

std::shared_ptr<const FontMetrics> MetricsFolder::readEntry(Entry& font) {
  // A longer file is not a metrics file, and need not fill the memory.
  constexpr std::size_t greatestLength = std::size_t{1} << 20;
  while (auto start = readIdentified(font.file, font.limit)) {
    // The identity is from before the reading: a change meanwhile is seen at the next look.
    const bool sameText = font.identity && font.text == start->text;
    font.identity = start->identity;
    if (sameText) {
      return font.metrics;
    }
    if (auto metrics = parseAfm(start->text, start->text.size() < font.limit)) {
      font.text = std::move(start->text);
      font.metrics = std::make_shared<const FontMetrics>(*metrics);
      return font.metrics;
    }
    if (font.limit == greatestLength) {
      break;
    }
    font.limit = greatestLength;
  }
  if (!font.fontName.empty()) {
    trace("There are no metrics of the font \"", font.fontName, "\": ", font.file,
          " cannot be used; its text has no width.");
  }
  font.identity.reset();
  font.text.clear();
  font.metrics = FontMetrics::none();
  return font.metrics;
}

std::shared_ptr<const FontMetrics> MetricsFolder::read(std::string_view fontName) {
  return readEntry(entry(fontName));
}

std::shared_ptr<const FontMetrics> MetricsFolder::look(std::string_view fontName) {
  Entry& font = entry(fontName);
  const auto identity = fileIdentity(font.file);
  return identity == font.identity ? font.metrics : readEntry(font);
}

}  // namespace veltrano
