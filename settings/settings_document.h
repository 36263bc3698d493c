#ifndef VELTRANO_SETTINGS_SETTINGS_DOCUMENT_H
#define VELTRANO_SETTINGS_SETTINGS_DOCUMENT_H

// A settings file in memory: its document and how it was encoded.

#include <filesystem>
#include <string>

#include <pugixml.hpp>

#include "settings/child_index.h"
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
    unreadable,  ///< the file is missing, or is there and cannot be read
    malformed,   ///< or in an unknown encoding
    outOfMemory
  };
  /// Replaces the document by the file's; by an empty one in all cases but the first.
  LoadResult load(const std::filesystem::path& file);
  /// Replaces the file, whole or not at all. False also when there is nothing to save, and when the last load
  /// found a file that it could not read (another program had locked it, the memory was not enough): what
  /// that holds would be lost.
  bool save(const std::filesystem::path& file) const;

  /// The element "XML" at the top, or an empty node.
  [[nodiscard]] pugi::xml_node root() const;
  /// Of the children of elements in this document.
  ChildIndex& index() { return index_; }
  /// Appends a root to a document that has no element. An empty node when it has one.
  pugi::xml_node createRoot();

 private:
  LoadResult read(const std::filesystem::path& file);
  LoadResult parse(std::string bytes);
  void clear();

  /// The document points into it.
  std::string buffer_;
  pugi::xml_document document_;
  ChildIndex index_;
  XmlForm form_;
  bool outOfReach_ = false;
};

}  // namespace veltrano

#endif
