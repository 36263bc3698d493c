#ifndef VELTRANO_BASE_OS_TRACE_OUTPUT_H
#define VELTRANO_BASE_OS_TRACE_OUTPUT_H

// What the trace asks of the system.

#include <filesystem>
#include <functional>
#include <string>

namespace veltrano {

/// Where the user wants the trace: the environment variable VELTRANO_TRACE; on Windows, if that is not set, the
/// value Trace under HKCU\Software\VeltranoFrameWork, for hosts whose environment cannot be set. A file name,
/// "stderr", "debug" or "off"; empty if the user has not said.
std::filesystem::path traceSetting();

/// What debug viewers show: the system's debug output on Windows, its log elsewhere. `line` is UTF-8 without a
/// line end.
void writeDebugOutput(const std::string& line);

struct ProcessAndThread {
  unsigned long process;
  unsigned long thread;
};
ProcessAndThread processAndThread();

/// Calls `write`, which appends a line to a file, so that lines of several processes, and threads, do not mix. Linux
/// appends a line in one step anyway; Windows need not, and Wine does not.
void writeInTurn(const std::function<void()>& write);

/// As the system's own text files end their lines.
extern const char* const systemLineEnd;

}  // namespace veltrano

#endif
