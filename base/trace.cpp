#include "base/trace.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include "base/files/paths.h"

namespace veltrano {

namespace {

const std::string& target() {
  // Read once: the environment of a running host does not change under us.
  static const std::string name = [] {
    const char* value = std::getenv("VELTRANO_TRACE");
    return std::string(value == nullptr ? "" : value);
  }();
  return name;
}

}  // namespace

bool traceEnabled() {
  static const bool enabled = !target().empty();
  return enabled;
}

void traceSkipped(std::string_view member, std::string_view reason, std::string_view detail) {
  if (!traceEnabled()) {
    return;
  }
  std::string line(member);
  line.append(": ").append(reason);
  if (!detail.empty()) {
    line.append(" (").append(detail).append(")");
  }
  line += '\n';

  static std::mutex lock;
  const std::scoped_lock guard(lock);
  std::FILE* file = target() == "stderr" ? stderr : std::fopen(target().c_str(), "ab");
  if (file == nullptr) {
    return;
  }
  std::fwrite(line.data(), 1, line.size(), file);
  if (file == stderr) {
    std::fflush(file);
  } else {
    std::fclose(file);
  }
}

void traceFailure(std::string_view member, const Status& failure, const std::filesystem::path& file) {
  if (traceEnabled()) {
    traceSkipped(member, failure.reason(), pathToUtf8(file));
  }
}

}  // namespace veltrano
