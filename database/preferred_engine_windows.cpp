#include "database/access/engine.h"
#include "database/dao/engine_windows.h"
#include "database/preferred_engine.h"

namespace veltrano {

std::unique_ptr<DatabaseEngine> makePreferredEngine() {
  auto engine = makeDaoEngine();
  return engine ? std::move(engine) : makeAccessEngine();
}

}  // namespace veltrano
