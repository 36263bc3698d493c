#ifndef VELTRANO_DATABASE_SHARED_ENGINE_H
#define VELTRANO_DATABASE_SHARED_ENGINE_H

#include "database/database_engine.h"

namespace veltrano {

/// The engine of this process, made at the first call and kept: the DAO engine where the machine has one,
/// otherwise the embedded one. Callable from any thread.
DatabaseEngine& sharedDatabaseEngine();

/// Gives back what the shared engine holds of other libraries, for tests that count it; otherwise it lives as
/// long as the process. Nothing may be using it; the next use makes it anew.
void releaseSharedDatabaseEngine();

}  // namespace veltrano

#endif
