#ifndef VELTRANO_TESTS_TRACE_TRACE_LINES_H
#define VELTRANO_TESTS_TRACE_TRACE_LINES_H

// The trace of this test program.

#include <filesystem>
#include <string>
#include <vector>

namespace veltrano::tests {

const std::filesystem::path& traceFile();

/// The lines since the last call, without what differs from run to run; the form of that is checked.
std::vector<std::string> newTraceLines();

/// The first line of the process.
const std::string& traceIntroduction();

}  // namespace veltrano::tests

#endif
