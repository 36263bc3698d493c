#ifndef VELTRANO_SETTINGS_DOCUMENT_H
#define VELTRANO_SETTINGS_DOCUMENT_H

// A settings file in memory: its document and how it was encoded.

#include <filesystem>
#include <string>

#include <pugixml.hpp>

#include "settings/name_tables.h"
#include "settings/xml_encoding.h"

namespace veltrano {

class SettingsDocument {
 public:
  SettingsDocument() = default;
  SettingsDocument(const SettingsDocument&) = delete;
  SettingsDocument& operator=(const SettingsDocument&) = delete;
  ~SettingsDocument() = default;

  enum class LoadResult {
    loaded,
    missing,
    unreadable,  ///< the file is there, and the system does not hand it out
    malformed,   ///< or in an unknown encoding
    outOfMemory
  };
  /// Replaces the document by the file's; by an empty one in all cases but the first.
  LoadResult load(const std::filesystem::path& file);
  /// Replaces the file. Keeps one that was malformed as NAME.bak. False also if the document has no root, and
  /// if the last load was `unreadable` or `outOfMemory`: what that file holds would be lost.
  bool save(const std::filesystem::path& file);

  /// The element "XML" at the top, or an empty node.
  [[nodiscard]] pugi::xml_node root() const;
  /// Appends a root to a document that has no element. An empty node if it has one.
  pugi::xml_node createRoot();
  /// Of the elements in this document.
  NameTables& names() { return names_; }

 private:
  LoadResult read(const std::filesystem::path& file);
  [[nodiscard]] std::string bytes() const;

  std::string text_;  ///< the document points into it
  pugi::xml_document document_;
  NameTables names_;
  XmlForm form_;
  LoadResult lastLoad_ = LoadResult::missing;
};

}  // namespace veltrano

#endif
