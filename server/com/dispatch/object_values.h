#ifndef VELTRANO_SERVER_COM_DISPATCH_OBJECT_VALUES_H
#define VELTRANO_SERVER_COM_DISPATCH_OBJECT_VALUES_H

// What an automation object means where a value is expected.

#include "server/com/automation.h"

namespace veltrano::server {

enum class DateObjects {
  texts,  ///< their default property: a text in the script engine's own form
  dates,
};

/// Puts into `result` (initialised, empty) what the object stands for: the elements of a list object as
/// script languages have it (a "length" and elements named "0", "1", ...) as an array of variants, if asked
/// for the local time of a script's date object, otherwise the value of the default property. False when it
/// has neither, or is null.
bool objectValue(IUnknown* object, VARIANT* result, DateObjects dates = DateObjects::texts);

}  // namespace veltrano::server

#endif
