#include "pdf/fonts/table.h"

#include <algorithm>
#include <system_error>

#include "base/files/whole.h"
#include "base/text/lower_case.h"
#include "base/trace.h"

namespace veltrano {

namespace {

constexpr std::string_view extension = ".afm";

bool namesMetrics(const std::string& path) {
  const auto sameLetter = [](char a, char b) { return lowerAscii(a) == b; };
  return std::search(path.begin(), path.end(), extension.begin(), extension.end(), sameLetter) != path.end();
}

}  // namespace

std::size_t FontTable::load(const std::filesystem::path& folder) {
  const auto files = listFiles(folder);
  if (!files) {
    return 0;
  }
  // The whole path counts: in a folder "fonts.afm" every file is a font. Kept because hosts rely on it.
  std::error_code ignored;
  const bool anyFile = namesMetrics(pathToUtf8(std::filesystem::absolute(folder, ignored)));
  std::size_t count = 0;
  for (const std::filesystem::path& file : *files) {
    if (!anyFile && !namesMetrics(pathToUtf8(file))) {
      continue;
    }
    const std::string name = pathToAnsi(file);
    ++count;
    if (names_.size() < count) {
      names_.resize(count);
    }
    // The last four characters go, whatever they are.
    if (name.size() >= extension.size()) {
      names_[count - 1] = name.substr(0, name.size() - extension.size());
    }
  }
  return count;
}

int FontTable::numberOf(std::string_view name) const {
  if (name.empty()) {
    return 1;
  }
  const auto found = std::find(names_.begin(), names_.end(), name);
  return found == names_.end() ? 0 : static_cast<int>(found - names_.begin()) + 1;
}

}  // namespace veltrano
