#ifndef VELTRANO_DATABASE_DAO_ENGINE_WINDOWS_H
#define VELTRANO_DATABASE_DAO_ENGINE_WINDOWS_H

// The engine that a Windows machine may have: Data Access Objects 3.6, or their successor 12.0, called late
// bound.

#include <memory>

#include "database/database_engine.h"

namespace veltrano {

/// Null if neither can be created in this process: none is installed, or only one for the other word size, or the
/// thread has not initialised COM.
std::unique_ptr<DatabaseEngine> makeDaoEngine();

}  // namespace veltrano

#endif
