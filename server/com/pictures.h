#ifndef VELTRANO_SERVER_COM_PICTURES_H
#define VELTRANO_SERVER_COM_PICTURES_H

#include "server/com/automation.h"
#include "veltrano/picture.h"

namespace veltrano::server {

/// The bitmap of an automation picture, which stays alive as long as a copy of the result does. Nothing for a
/// null pointer, no picture, or an icon or metafile.
Picture picture(IPictureDisp* const* object);

}  // namespace veltrano::server

#endif
