#ifndef VELTRANO_SERVER_COM_MODULE_H
#define VELTRANO_SERVER_COM_MODULE_H

// What the server knows of its own DLL.

#include <string>

#include "server/com/automation.h"

namespace veltrano::server {

/// Counts what keeps the DLL loaded: objects, factories and the hosts' locks.
void lockModule();
void unlockModule();
[[nodiscard]] long moduleLocks();

/// Full path of the DLL (of the program, where the server is linked into one), of any length.
std::wstring modulePath();

/// The type library that is embedded in the DLL.
HRESULT loadTypeLibrary(ComPointer<ITypeLib>& library);

}  // namespace veltrano::server

#endif
