#include "base/files/calls.h"

namespace veltrano {

namespace {
FileCallWatcher* currentWatcher = nullptr;
}

void watchFileCalls(FileCallWatcher* watcher) {
  currentWatcher = watcher;
}

Status beforeFileCall(FileCall call, const std::filesystem::path& file) {
  const Failure failure = currentWatcher == nullptr ? Failure::none : currentWatcher->before(call, file);
  return failure == Failure::none ? Status() : Status(failure, "refused by the watcher of file calls");
}

}  // namespace veltrano
