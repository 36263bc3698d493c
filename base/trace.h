#ifndef VELTRANO_BASE_TRACE_H
#define VELTRANO_BASE_TRACE_H

// The developer's trace. Hosts never see an error, so this says which member skipped which step and why.
//
// VELTRANO_TRACE=<file> appends to that file, VELTRANO_TRACE=stderr writes to the standard error. Off, it
// costs one test of a flag. Traces name the member and the reason, never document content.

#include <filesystem>
#include <string_view>

#include "base/status.h"

namespace veltrano {

/// True when tracing is on; read from the environment once.
bool traceEnabled();

/// "member: reason (detail)", one line. Callable at any time, from any thread, also when tracing is off.
void traceSkipped(std::string_view member, std::string_view reason, std::string_view detail = {});

/// The same with the reason of a failure and the file that it befell.
void traceFailure(std::string_view member, const Status& failure, const std::filesystem::path& file = {});

}  // namespace veltrano

#endif
