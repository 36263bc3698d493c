#include "veltrano/xml.h"

#include "base/trace.h"
#include "settings/document.h"
#include "settings/nodes.h"

namespace veltrano {

namespace {

/// Names the member in the trace.
struct XmlMember : TracedMember {
  explicit XmlMember(const char* name) : TracedMember("VeltranoXML", name) {}
};

SettingNames unallocatedArray() {
  return std::vector<std::string>();
}

SettingNames namesOfChildren(const pugi::xml_node& node) {
  std::vector<std::string> names = childNames(node);
  if (names.empty()) {
    return std::nullopt;
  }
  // One more than there are children: the empty text at the end is kept because hosts rely on it.
  names.emplace_back();
  return names;
}

}  // namespace

struct VeltranoXML::Impl {
  SettingsDocument document;
  bool loadFailed = false;
  std::filesystem::path fileName;

  pugi::xpath_node folder(std::string_view name) { return find(document.root(), name); }
  pugi::xpath_node key(const pugi::xpath_node& folder, std::string_view name) {
    return find(folder.node(), name);
  }

  pugi::xml_node create(pugi::xml_node parent, std::string_view name) {
    const pugi::xml_node element = createElement(parent, name);
    document.names().added(element);
    return element;
  }

 private:
  pugi::xpath_node find(const pugi::xml_node& from, std::string_view name) {
    return lookUp(from, name, document.names());
  }
};

VeltranoXML::VeltranoXML() : impl_(std::make_unique<Impl>()) {}
VeltranoXML::VeltranoXML(VeltranoXML&&) noexcept = default;
VeltranoXML& VeltranoXML::operator=(VeltranoXML&&) noexcept = default;
VeltranoXML::~VeltranoXML() = default;

void VeltranoXML::XML_Open(const std::filesystem::path& xFilename) {
  const XmlMember member("XML_Open");
  impl_->fileName = xFilename;
  // A later success does not reset the flag: only a saved setting does.
  impl_->loadFailed |= impl_->document.load(xFilename) == SettingsDocument::LoadResult::outOfMemory;
}

void VeltranoXML::XML_Save() {
  const XmlMember member("XML_Save");
  if (impl_->fileName.empty() || !impl_->document.save(impl_->fileName)) {
    trace("Nothing is saved to ", impl_->fileName, ".");
  }
}

void VeltranoXML::XML_SaveSetting(std::string_view Folder, std::string_view Key, std::string_view Value) {
  const XmlMember member("XML_SaveSetting");
  impl_->loadFailed = false;
  pugi::xml_node root = impl_->document.root();
  const pugi::xpath_node folder = impl_->folder(Folder);
  const pugi::xpath_node key = impl_->key(folder, Key);
  if (key) {
    if (hasChildElements(key.node())) {
      impl_->document.names().forget();
    }
    setText(key, Value);
    return;
  }
  // All or nothing: a key that cannot be made leaves no empty folder.
  const bool canCreate =
      folder ? folder.node().type() == pugi::node_element && canCreateElement(folder.node(), Key)
             : canCreateElement(root, Folder) && canCreateElement(root, Key);
  if (!root && canCreate) {
    root = impl_->document.createRoot();
  }
  if (!root || !canCreate) {
    trace("The key \"", Key, "\" in the folder \"", Folder,
          "\" cannot be made: a name is not allowed in XML, or the file's root is "
          "not a settings file's.");
    return;
  }
  const pugi::xml_node parent = folder ? folder.node() : impl_->create(root, Folder);
  setText(impl_->create(parent, Key), Value);
}

std::string VeltranoXML::XML_GetSetting(std::string_view Folder, std::string_view Key,
                                        std::string_view Default) {
  const XmlMember member("XML_GetSetting");
  const pugi::xpath_node key =
      impl_->loadFailed ? pugi::xpath_node() : impl_->key(impl_->folder(Folder), Key);
  return key ? textOf(key) : std::string(Default);
}

SettingNames VeltranoXML::XML_EnumFolders() {
  const XmlMember member("XML_EnumFolders");
  const pugi::xml_node root = impl_->document.root();
  return impl_->loadFailed || !root ? unallocatedArray() : namesOfChildren(root);
}

SettingNames VeltranoXML::XML_EnumKeys(std::string_view Folder) {
  const XmlMember member("XML_EnumKeys");
  const pugi::xpath_node folder = impl_->loadFailed ? pugi::xpath_node() : impl_->folder(Folder);
  return folder ? namesOfChildren(folder.node()) : unallocatedArray();
}

void VeltranoXML::XML_DeleteSetting(const std::filesystem::path& /*xFilename*/, std::string_view Folder,
                                    std::string_view Key) {
  const XmlMember member("XML_DeleteSetting");
  const pugi::xml_node root = impl_->document.root();
  if (impl_->loadFailed || !root) {
    return;
  }
  const pugi::xpath_node folder = impl_->folder(Folder);
  if (Key.empty()) {
    removeChild(root, folder, impl_->document.names());
  } else {
    removeChild(folder.node(), impl_->key(folder, Key), impl_->document.names());
  }
}

}  // namespace veltrano
