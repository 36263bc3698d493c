#ifndef VELTRANO_SERVER_CLASSES_WEV_OBJECT_H
#define VELTRANO_SERVER_CLASSES_WEV_OBJECT_H

#include "server/com/automation_object.h"
#include "veltrano/wev.h"

namespace veltrano::server {

/// VeltranoWEV as hosts see it.
class WevObject final : public AutomationObject<_VeltranoWEV> {
 public:
  using AutomationObject::AutomationObject;

  // The members of _VeltranoWEV, in interface order.
  STDMETHODIMP LogNTEvent(BSTR* sString, ::EventTypes* iLogType, long* iEventID, BSTR* AppSource) override;

 private:
  VeltranoWEV wev_;
};

}  // namespace veltrano::server

#endif
