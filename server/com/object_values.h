#ifndef VELTRANO_SERVER_COM_OBJECT_VALUES_H
#define VELTRANO_SERVER_COM_OBJECT_VALUES_H

// What an automation object means where a value is expected.

#include "server/com/automation.h"

namespace veltrano::server {

/// Puts into `result` (initialised, empty) what the object stands for: the elements of a script language's list (with a
/// "length" and elements named "0", "1", ...) as an array of variants, otherwise the value of the default property.
/// False if it has neither, or is null.
bool objectValue(IUnknown* object, VARIANT* result);

}  // namespace veltrano::server

#endif
