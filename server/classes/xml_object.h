#ifndef VELTRANO_SERVER_CLASSES_XML_OBJECT_H
#define VELTRANO_SERVER_CLASSES_XML_OBJECT_H

#include "server/com/automation_object.h"
#include "veltrano/xml.h"

namespace veltrano::server {

/// VeltranoXML as hosts see it.
class XmlObject final : public AutomationObject<_VeltranoXML> {
 public:
  using AutomationObject::AutomationObject;

  // The members of _VeltranoXML, in interface order.
  STDMETHODIMP XML_Open(BSTR* xFilename) override;
  STDMETHODIMP XML_Save() override;
  STDMETHODIMP XML_SaveSetting(BSTR* Folder, BSTR* Key, BSTR* Value) override;
  STDMETHODIMP XML_GetSetting(BSTR* Folder, BSTR* Key, BSTR* Default, BSTR* result) override;
  STDMETHODIMP XML_EnumFolders(VARIANT* result) override;
  STDMETHODIMP XML_EnumKeys(BSTR* Folder, VARIANT* result) override;
  STDMETHODIMP XML_DeleteSetting(BSTR* xFilename, BSTR* Folder, BSTR* Key) override;

 private:
  VeltranoXML xml_;
};

}  // namespace veltrano::server

#endif
