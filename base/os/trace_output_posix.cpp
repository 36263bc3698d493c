#include <sys/syscall.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdlib>

#include "base/os/trace_output.h"

namespace veltrano {

std::filesystem::path traceSetting() {
  const char* value = std::getenv("VELTRANO_TRACE");
  return value == nullptr ? "" : value;
}

void writeDebugOutput(const std::string& line) {
  syslog(LOG_USER | LOG_DEBUG, "%s", line.c_str());
}

ProcessAndThread processAndThread() {
  return {static_cast<unsigned long>(getpid()), static_cast<unsigned long>(syscall(SYS_gettid))};
}

void writeInTurn(const std::function<void()>& write) {
  write();
}

const char* const systemLineEnd = "\n";

}  // namespace veltrano
