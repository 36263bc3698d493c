#ifndef VELTRANO_BASE_FILES_CALLS_H
#define VELTRANO_BASE_FILES_CALLS_H

// Lets a test see which calls reach the file system, in which order, and have some of them fail.

#include <filesystem>

#include "base/status.h"

namespace veltrano {

/// For a rename the file is the one that gets the name; syncFolder names the file whose folder it is.
enum class FileCall { open, create, read, write, resize, sync, syncFolder, rename, remove };

class FileCallWatcher {
 public:
  FileCallWatcher() = default;
  FileCallWatcher(const FileCallWatcher&) = delete;
  FileCallWatcher& operator=(const FileCallWatcher&) = delete;
  virtual ~FileCallWatcher() = default;

  /// Told before each call. Anything but Failure::none is what the call answers instead of being made.
  virtual Failure before(FileCall call, const std::filesystem::path& file) = 0;
};

/// Null ends the watch. For one thread: no other one may use files meanwhile.
void watchFileCalls(FileCallWatcher* watcher);

/// Asks the watcher, if there is one; success means that the call is to be made.
Status beforeFileCall(FileCall call, const std::filesystem::path& file);

}  // namespace veltrano

#endif
