#include "base/trace.h"
#include "database/access/engine.h"
#include "database/dao/engine_windows.h"
#include "database/preferred_engine.h"

namespace veltrano {

std::unique_ptr<DatabaseEngine> makePreferredEngine() {
  if (auto engine = makeDaoEngine()) {
    trace("Databases are opened by the DAO of this machine.");
    return engine;
  }
  trace("Databases are opened by the embedded engine, since this machine has no DAO of this word size.");
  return makeAccessEngine();
}

}  // namespace veltrano
