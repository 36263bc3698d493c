// Loads any bytes as a settings file. Saving may change the notation only, so a second round gives the same
// bytes; a setting that is saved can be read afterwards.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>

#include "base/files/whole.h"
#include "veltrano/xml.h"

namespace {

std::filesystem::path workFile() {
  return std::filesystem::temp_directory_path() / ("veltrano-fuzz-" + std::to_string(::getpid()) + ".xml");
}

std::string loadedAndSaved(const std::filesystem::path& file) {
  veltrano::VeltranoXML xml;
  xml.XML_Open(file);
  xml.XML_Save();
  return veltrano::readWholeFile(file).value_or(std::string());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path file = workFile();
  const std::string input(reinterpret_cast<const char*>(data), size);
  // The first line has the names to look up, the rest is the file.
  const std::size_t cut = input.find('\n');
  const std::string name = input.substr(0, cut);
  const std::string content = cut == std::string::npos ? std::string() : input.substr(cut + 1);
  if (!veltrano::replaceFile(file, content)) {
    std::abort();
  }
  const std::string once = loadedAndSaved(file);
  if (loadedAndSaved(file) != once) {
    std::abort();
  }
  veltrano::VeltranoXML xml;
  xml.XML_Open(file);
  const auto folders = xml.XML_EnumFolders();
  xml.XML_EnumKeys(name);
  xml.XML_GetSetting(name, name);
  xml.XML_SaveSetting(name, name, content);
  xml.XML_DeleteSetting(file, name, name);
  xml.XML_SaveSetting("Folder", "Key", name);
  const std::string value = xml.XML_GetSetting("Folder", "Key", "none");
  xml.XML_Save();
  veltrano::VeltranoXML again;
  again.XML_Open(file);
  // "none" is right if the root is another one, which takes no settings.
  if (value != "none" && again.XML_GetSetting("Folder", "Key", "lost") != value) {
    std::abort();
  }
  return 0;
}
