#ifndef VELTRANO_DATABASE_PREFERRED_ENGINE_H
#define VELTRANO_DATABASE_PREFERRED_ENGINE_H

#include <memory>

#include "database/database_engine.h"

namespace veltrano {

/// The best engine that this machine has; never null.
std::unique_ptr<DatabaseEngine> makePreferredEngine();

}  // namespace veltrano

#endif
