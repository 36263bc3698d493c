#ifndef VELTRANO_PDF_FONTS_TABLE_H
#define VELTRANO_PDF_FONTS_TABLE_H

// The fonts that a document offers: base-font names, taken from the metrics files of a folder.

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace veltrano {

class FontTable {
 public:
  /// Overwrites the table from its start with the fonts of `folder`; the entries of a longer folder before
  /// stay. The names are in a fixed order. Returns how many fonts the folder has, 0 if there is no such
  /// folder.
  std::size_t load(const std::filesystem::path& folder);

  /// The resource of entry i is "/F" followed by i + 1.
  [[nodiscard]] const std::vector<std::string>& names() const { return names_; }
  /// Resource number of a font; 1 for an empty name, 0 for an unknown one. Hosts know the "/F0" of that.
  [[nodiscard]] int numberOf(std::string_view name) const;

 private:
  std::vector<std::string> names_;
};

}  // namespace veltrano

#endif
