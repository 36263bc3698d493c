#ifndef VELTRANO_XML_H
#define VELTRANO_XML_H

// Keeps settings, values in keys in folders, in an XML file:
//   <XML><Display><Width>800</Width></Display></XML>
// docs/settings.md describes the file and what of it survives a change.
//
// Texts are UTF-8. Folder and key names are XPath expressions when they are looked up and element names when
// they are created; what is not a valid element name creates nothing. Changes live in memory until XML_Save.
// Members never report a failure; only memory exhaustion leaves them as an exception (std::bad_alloc).

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veltrano/export.h"

namespace veltrano {

/// Result of the enumerations:
///   empty (nullopt)   the root or folder has no child nodes; hosts get an empty variant
///   no elements       there is no such root or folder; hosts get an array without elements
///   n + 1 elements    the names of the n child nodes, then one empty string, kept because hosts rely on it
using SettingNames = std::optional<std::vector<std::string>>;

class VELTRANO_API VeltranoXML {
 public:
  VeltranoXML();
  VeltranoXML(VeltranoXML&&) noexcept;
  VeltranoXML& operator=(VeltranoXML&&) noexcept;
  VeltranoXML(const VeltranoXML&) = delete;
  VeltranoXML& operator=(const VeltranoXML&) = delete;
  ~VeltranoXML();

  /// Loads the settings from the file, in place of those held, and remembers its name. A missing or malformed
  /// file loads as empty; that is not a load error. After one (memory ran out) all reading members behave as
  /// if there were no settings, until XML_SaveSetting.
  void XML_Open(const std::filesystem::path& xFilename);
  /// Replaces the opened file by the settings. No-op if no file was opened or there is no root element, so
  /// that a malformed file stays as it is until a setting is saved; it is then kept as NAME.bak. A file that
  /// was there and could not be read at XML_Open (another program had locked it, memory ran out) stays in any
  /// case.
  void XML_Save();
  /// Stores the value; makes folder and key if they are missing.
  void XML_SaveSetting(std::string_view Folder, std::string_view Key, std::string_view Value);
  /// The text in the key and below it; Default if there is no such key.
  std::string XML_GetSetting(std::string_view Folder, std::string_view Key, std::string_view Default = {});
  /// Local names of the root's child nodes; empty for comments and other nodes without a name.
  SettingNames XML_EnumFolders();
  /// The same for a folder.
  SettingNames XML_EnumKeys(std::string_view Folder);
  /// Removes the key, or the whole folder if Key is empty. xFilename is not used.
  void XML_DeleteSetting(const std::filesystem::path& xFilename, std::string_view Folder,
                         std::string_view Key = {});

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace veltrano

#endif
