#ifndef VELTRANO_SERVER_CLASSES_GIS_OBJECT_H
#define VELTRANO_SERVER_CLASSES_GIS_OBJECT_H

#include "server/com/automation_object.h"

namespace veltrano::server {

/// VeltranoGIS: can be created and has no members.
class GisObject final : public AutomationObject<_VeltranoGIS> {
 public:
  using AutomationObject::AutomationObject;
};

}  // namespace veltrano::server

#endif
