#include "server/classes/xml_object.h"

#include "server/com/conversions.h"

namespace veltrano::server {

namespace {

/// An array of texts, or empty for a folder without keys.
void answer(VARIANT* result, const SettingNames& names) {
  Value list;
  if (names) {
    list = Value::List(names->begin(), names->end());
  }
  server::answer(result, list, TextForm::utf8);
}

}  // namespace

STDMETHODIMP XmlObject::XML_Open(BSTR* xFilename) {
  return run("XML_Open", [&] { xml_.XML_Open(path(xFilename)); });
}

STDMETHODIMP XmlObject::XML_Save() {
  return run("XML_Save", [&] { xml_.XML_Save(); });
}

STDMETHODIMP XmlObject::XML_SaveSetting(BSTR* Folder, BSTR* Key, BSTR* Value) {
  return run("XML_SaveSetting", [&] { xml_.XML_SaveSetting(utf8(Folder), utf8(Key), utf8(Value)); });
}

STDMETHODIMP XmlObject::XML_GetSetting(BSTR* Folder, BSTR* Key, BSTR* Default, BSTR* result) {
  return run("XML_GetSetting", result, [&] {
    server::answer(result, xml_.XML_GetSetting(utf8(Folder), utf8(Key), utf8(Default)), TextForm::utf8);
  });
}

STDMETHODIMP XmlObject::XML_EnumFolders(VARIANT* result) {
  return run("XML_EnumFolders", result, [&] { answer(result, xml_.XML_EnumFolders()); });
}

STDMETHODIMP XmlObject::XML_EnumKeys(BSTR* Folder, VARIANT* result) {
  return run("XML_EnumKeys", result, [&] { answer(result, xml_.XML_EnumKeys(utf8(Folder))); });
}

STDMETHODIMP XmlObject::XML_DeleteSetting(BSTR* xFilename, BSTR* Folder, BSTR* Key) {
  return run("XML_DeleteSetting", [&] { xml_.XML_DeleteSetting(path(xFilename), utf8(Folder), utf8(Key)); });
}

}  // namespace veltrano::server
