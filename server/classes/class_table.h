#ifndef VELTRANO_SERVER_CLASSES_CLASS_TABLE_H
#define VELTRANO_SERVER_CLASSES_CLASS_TABLE_H

// The public classes: the one table behind the factory, the dispatcher and the registration.

#include <span>

#include "server/com/automation.h"

namespace veltrano::server {

/// A parameter whose kind matters to its member, whatever its declared type: the dispatcher hands the host's
/// own variant over beside the coerced arguments.
struct KeptKind {
  DISPID member;
  unsigned parameter;  ///< from 0
};

struct ClassEntry {
  const CLSID* clsid;
  const IID* dispatchInterface;
  const IID* eventInterface;  ///< null for a class without events
  const wchar_t* name;
  const wchar_t* description;
  std::span<const KeptKind> keptKinds;
  /// A new object with one reference, or null when memory is short.
  IDispatch* (*create)(const ClassEntry& entry);
};

std::span<const ClassEntry> classTable();

/// Null when there is no such class.
const ClassEntry* findClass(REFCLSID clsid);

}  // namespace veltrano::server

#endif
