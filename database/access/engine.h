#ifndef VELTRANO_DATABASE_ACCESS_ENGINE_H
#define VELTRANO_DATABASE_ACCESS_ENGINE_H

// The embedded engine for .mdb and .accdb files.

#include <memory>

#include "database/database_engine.h"

namespace veltrano {

std::unique_ptr<DatabaseEngine> makeAccessEngine();

}  // namespace veltrano

#endif
