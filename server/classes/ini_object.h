#ifndef VELTRANO_SERVER_CLASSES_INI_OBJECT_H
#define VELTRANO_SERVER_CLASSES_INI_OBJECT_H

#include "server/com/automation_object.h"
#include "veltrano/ini.h"

namespace veltrano::server {

/// VeltranoINI as hosts see it.
class IniObject final : public AutomationObject<_VeltranoINI> {
 public:
  using AutomationObject::AutomationObject;

  // The members of _VeltranoINI, in interface order.
  STDMETHODIMP GetIniValue(BSTR* filename, BSTR* Key, BSTR* Default, BSTR* result) override;
  STDMETHODIMP SetIniValue(BSTR* filename, BSTR* Key, BSTR* Value) override;
  STDMETHODIMP ChangeValue(BSTR* xFileBuffer, BSTR* Key, BSTR* Value, BSTR* result) override;
  STDMETHODIMP GetValue(BSTR* xFileBuffer, BSTR* Key, BSTR* Default, BSTR* result) override;
  STDMETHODIMP OpenFile(BSTR* xFilename, BSTR* result) override;
  STDMETHODIMP CloseFile(BSTR* filename, BSTR* xText) override;

 private:
  VeltranoINI ini_;
};

}  // namespace veltrano::server

#endif
