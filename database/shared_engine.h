#ifndef VELTRANO_DATABASE_SHARED_ENGINE_H
#define VELTRANO_DATABASE_SHARED_ENGINE_H

#include "database/database_engine.h"

namespace veltrano {

/// The engine of this process, made at the first call and kept: the DAO engine where the machine has one,
/// otherwise the embedded one. Callable from any thread.
DatabaseEngine& sharedDatabaseEngine();

/// Gives back what the shared engine holds of other libraries; the next use makes it anew. Only while no
/// object uses it, and never while the system's loader is unloading this library. At the end of a process it
/// is not needed.
void releaseSharedDatabaseEngine();

}  // namespace veltrano

#endif
