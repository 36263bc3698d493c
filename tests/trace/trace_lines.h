#ifndef VELTRANO_TESTS_TRACE_TRACE_LINES_H
#define VELTRANO_TESTS_TRACE_TRACE_LINES_H

// The trace of this test program.

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>

#include "base/files/whole.h"
#include "tests/split.h"
#include "tests/temporary_folder.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace veltrano::tests {

/// Before anything asks: the environment is read once. The name lies outside every ANSI code page.
inline std::filesystem::path switchTraceOn() {
  static const TemporaryFolder folder;
  auto file = folder / std::filesystem::path(u"trace \u00E9 \u4E2D.txt");
#ifdef _WIN32
  SetEnvironmentVariableW(L"VELTRANO_TRACE", file.c_str());
#else
  ::setenv("VELTRANO_TRACE", file.c_str(), 1);
#endif
  return file;
}

inline const std::filesystem::path traceFile = switchTraceOn();
/// The first line of the process, after the first call of newTraceLines.
inline std::string traceIntroduction;

/// The lines since the last call, without what differs from run to run; the form of that is checked.
inline std::vector<std::string> newTraceLines() {
  static const std::regex form(
      R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \d+/\d+ [^ ]*trace_test[^ ]* ([A-Za-z_.]+: [^\r\n]*)\r?)");
  std::vector<std::string> lines;
  if (!std::filesystem::exists(traceFile)) return lines;  // reading a missing file would be traced
  const std::string text = readWholeFile(traceFile).value_or("");
  std::filesystem::remove(traceFile);
  for (const std::string& line : split(text, '\n')) {
    std::smatch parts;
    EXPECT_TRUE(line.empty() || std::regex_match(line, parts, form)) << line;
    if (!line.empty()) lines.push_back(parts[1]);
  }
  if (traceIntroduction.empty() && !lines.empty()) {
    traceIntroduction = lines.front();
    lines.erase(lines.begin());
  }
  return lines;
}

}  // namespace veltrano::tests

#endif
