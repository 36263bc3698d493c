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

/// Keeps the DLL in the process for good. To be called before its first object is made: the compiler's runtime keeps
/// records of every thread that an object was used in, and the database engine serves all threads; neither can be taken
/// down while threads of the host may be on their way in. A DLL that was only loaded, asked for its type library or
/// registered goes when the host lets it go.
void pinModule();

/// Full path of the DLL (of the program, where the server is linked into one).
std::wstring modulePath();

/// The type library that is embedded in the DLL.
HRESULT loadTypeLibrary(ComPointer<ITypeLib>& library);

}  // namespace veltrano::server

#endif
