#ifndef VELTRANO_SERVER_COM_REGISTRATION_H
#define VELTRANO_SERVER_COM_REGISTRATION_H

// The server's entries in the registry: classes, program ids, interfaces and type library.

#include "server/com/automation.h"

namespace veltrano::server {

enum class Scope {
  machineOrUser,  ///< for all users; for this one alone where the rights for that are missing
  user,           ///< for this user alone
};

/// Points the registry to the DLL where it is now. Doing it again, also from another folder, renews the
/// entries.
HRESULT registerServer(Scope scope);

/// Removes every entry of this DLL's bitness. What the 32-bit and the 64-bit DLL share goes with the last of
/// them.
HRESULT unregisterServer(Scope scope);

}  // namespace veltrano::server

#endif
