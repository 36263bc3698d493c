#include "settings/veltrano_xml.h"

#include "base/trace.h"
#include "settings/settings_document.h"
#include "settings/settings_nodes.h"

namespace veltrano {

namespace {

SettingNames unallocatedArray() {
  return std::vector<std::string>();
}

SettingNames namesOfChildren(const pugi::xml_node& node) {
  std::vector<std::string> names = childNames(node);
  if (names.empty()) {
    return std::nullopt;
  }
  // One more than there are children: hosts rely on the empty text at the end.
  names.emplace_back();
  return names;
}

}  // namespace

VeltranoXML::VeltranoXML() : document_(std::make_unique<SettingsDocument>()) {}
VeltranoXML::VeltranoXML(VeltranoXML&&) noexcept = default;
VeltranoXML& VeltranoXML::operator=(VeltranoXML&&) noexcept = default;
VeltranoXML::~VeltranoXML() = default;

void VeltranoXML::XML_Open(const std::filesystem::path& xFilename) {
  fileName_ = xFilename;
  // A later success does not reset the flag: only a saved setting does.
  loadFailed_ |= document_->load(xFilename) == SettingsDocument::LoadResult::outOfMemory;
}

void VeltranoXML::XML_Save() {
  if (fileName_.empty() || !document_->save(fileName_)) {
    traceSkipped("XML_Save", "nothing was saved");
  }
}

void VeltranoXML::XML_SaveSetting(std::string_view Folder, std::string_view Key, std::string_view Value) {
  loadFailed_ = false;
  pugi::xml_node root = document_->root();
  const pugi::xpath_node folder = root ? lookUp(root, Folder, document_->index()) : pugi::xpath_node();
  const pugi::xpath_node key = folder ? lookUp(folder.node(), Key, document_->index()) : pugi::xpath_node();
  if (key) {
    if (hasChildElements(key.node())) {
      document_->index().forget();
    }
    setText(key, Value);
    return;
  }
  // All or nothing: a key that cannot be made leaves no empty folder behind.
  const bool canCreate =
      folder ? folder.node().type() == pugi::node_element && canCreateElement(folder.node(), Key)
             : canCreateElement(root, Folder) && canCreateElement(root, Key);
  if (!root && canCreate) {
    root = document_->createRoot();
  }
  if (!root || !canCreate) {
    traceSkipped("XML_SaveSetting", "no such element can be made");
    return;
  }
  const auto create = [this](pugi::xml_node parent, std::string_view name) {
    const pugi::xml_node element = createElement(parent, name);
    document_->index().added(element);
    return element;
  };
  const pugi::xml_node parent = folder ? folder.node() : create(root, Folder);
  setText(create(parent, Key), Value);
}

std::string VeltranoXML::XML_GetSetting(std::string_view Folder, std::string_view Key,
                                        std::string_view Default) {
  const pugi::xml_node root = document_->root();
  const pugi::xpath_node folder =
      loadFailed_ || !root ? pugi::xpath_node() : lookUp(root, Folder, document_->index());
  const pugi::xpath_node key = folder ? lookUp(folder.node(), Key, document_->index()) : pugi::xpath_node();
  return key ? textOf(key) : std::string(Default);
}

SettingNames VeltranoXML::XML_EnumFolders() {
  const pugi::xml_node root = document_->root();
  return loadFailed_ || !root ? unallocatedArray() : namesOfChildren(root);
}

SettingNames VeltranoXML::XML_EnumKeys(std::string_view Folder) {
  const pugi::xml_node root = document_->root();
  const pugi::xpath_node folder =
      loadFailed_ || !root ? pugi::xpath_node() : lookUp(root, Folder, document_->index());
  return folder ? namesOfChildren(folder.node()) : unallocatedArray();
}

void VeltranoXML::XML_DeleteSetting(const std::filesystem::path& /*xFilename*/, std::string_view Folder,
                                    std::string_view Key) {
  const pugi::xml_node root = document_->root();
  if (loadFailed_ || !root) {
    return;
  }
  const pugi::xpath_node folder = lookUp(root, Folder, document_->index());
  if (Key.empty()) {
    removeChild(root, folder, document_->index());
  } else if (folder) {
    removeChild(folder.node(), lookUp(folder.node(), Key, document_->index()), document_->index());
  }
}

}  // namespace veltrano
