#ifndef VELTRANO_SERVER_CLASSES_PNG_OBJECT_H
#define VELTRANO_SERVER_CLASSES_PNG_OBJECT_H

#include "server/com/automation_object.h"
#include "veltrano/png.h"

namespace veltrano::server {

/// VeltranoPNG as hosts see it.
class PngObject final : public AutomationObject<_VeltranoPNG> {
 public:
  using AutomationObject::AutomationObject;

  // The members of _VeltranoPNG, in interface order.
  STDMETHODIMP Init(BSTR* xInitString) override;
  STDMETHODIMP SavePNG(IPictureDisp** pct, BSTR* sPNGFileName, VARIANT_BOOL* result) override;

 private:
  VeltranoPNG png_;
};

}  // namespace veltrano::server

#endif
