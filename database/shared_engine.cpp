#include "database/shared_engine.h"

#include <cstddef>
#include <mutex>
#include <new>

#include "database/preferred_engine.h"

namespace veltrano {

namespace {

/// The lock is recursive because making a COM object may run the host's messages, which may call this library
/// again. Never destroyed: destructors of static objects run while the system unloads the library, when no call
/// into another library is allowed. It lies in the library's own data, so nothing is left when that goes.
struct Shared {
  std::recursive_mutex mutex;
  std::unique_ptr<DatabaseEngine> engine;
};

Shared& shared() {
  alignas(Shared) static std::byte place[sizeof(Shared)];
  static auto* const instance = new (place) Shared;
  return *instance;
}

}  // namespace

DatabaseEngine& sharedDatabaseEngine() {
  Shared& holder = shared();
  const std::lock_guard lock(holder.mutex);
  if (!holder.engine) {
    holder.engine = makePreferredEngine();
  }
  return *holder.engine;
}

void releaseSharedDatabaseEngine() {
  Shared& holder = shared();
  const std::lock_guard lock(holder.mutex);
  holder.engine.reset();
}

}  // namespace veltrano
