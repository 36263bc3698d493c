#ifndef VELTRANO_SETTINGS_VELTRANO_XML_H
#define VELTRANO_SETTINGS_VELTRANO_XML_H

// Keeps settings, values in keys in folders, in an XML file:
//   <XML><Display><Width>800</Width></Display></XML>
// docs/settings.md describes the file and what of it survives a change.
//
// All texts are UTF-8. Folder and key names are XPath expressions when they are looked up and element names
// when they are created; what is no valid element name creates nothing. Changes live in memory until
// XML_Save.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltrano {

class SettingsDocument;

/// Result of the enumerations:
///   nothing (nullopt)         an empty variant: there is something to list, and it has no child nodes
///   no elements               an unallocated string array: there is nothing to list
///   n + 1 elements            an array: the names of the n child nodes, then one empty text that hosts rely
///   on
using SettingNames = std::optional<std::vector<std::string>>;

class VeltranoXML {
 public:
  VeltranoXML();
  VeltranoXML(VeltranoXML&&) noexcept;
  VeltranoXML& operator=(VeltranoXML&&) noexcept;
  VeltranoXML(const VeltranoXML&) = delete;
  VeltranoXML& operator=(const VeltranoXML&) = delete;
  ~VeltranoXML();

  /// Loads the settings from the file, in place of those held, and remembers its name. A missing or malformed
  /// file loads as empty; that is no load error. After one (the memory is not enough) all reading members
  /// behave as if there were no settings, until XML_SaveSetting.
  void XML_Open(const std::filesystem::path& xFilename);
  /// Puts the settings in place of the opened file, whole or not at all. Does nothing when no file was opened
  /// or there is no root element: a malformed file stays as it is until a setting was saved. One that was
  /// there and could not be read at XML_Open (another program had locked it, the
  /// memory was not enough) stays in any case.
  void XML_Save();
  void XML_SaveSetting(std::string_view Folder, std::string_view Key, std::string_view Value);
  std::string XML_GetSetting(std::string_view Folder, std::string_view Key, std::string_view Default = {});
  SettingNames XML_EnumFolders();
  /// Names of the child nodes of a folder.
  SettingNames XML_EnumKeys(std::string_view Folder);
  /// Removes the key, or the whole folder when Key is empty. xFilename is not used.
  void XML_DeleteSetting(const std::filesystem::path& xFilename, std::string_view Folder,
                         std::string_view Key = {});

 private:
  std::unique_ptr<SettingsDocument> document_;
  bool loadFailed_ = false;
  std::filesystem::path fileName_;
};

}  // namespace veltrano

#endif
