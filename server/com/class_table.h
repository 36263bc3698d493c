#ifndef VELTRANO_SERVER_COM_CLASS_TABLE_H
#define VELTRANO_SERVER_COM_CLASS_TABLE_H

// The public classes: the one table for the factory, the dispatcher and the registration. Each server has its own,
// which its classes fill (server/classes/class_table.cpp).

#include <span>
#include <string_view>

#include "server/com/automation.h"

namespace veltrano::server {

/// A parameter whose kind matters to its member, whatever its declared type: the dispatcher hands over the host's own
/// variant besides the coerced arguments.
struct KeptKind {
  std::wstring_view member;
  std::wstring_view parameter;  ///< empty for the value of a property
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

/// Null if there is no such class.
const ClassEntry* findClass(REFCLSID clsid);

}  // namespace veltrano::server

#endif
