#include "database/access/engine.h"
#include "database/preferred_engine.h"

namespace veltrano {

std::unique_ptr<DatabaseEngine> makePreferredEngine() {
  return makeAccessEngine();
}

}  // namespace veltrano
