#include "tests/trace/trace_lines.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <sstream>

#include "base/files/whole.h"
#include "tests/temporary_folder.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace veltrano::tests {

namespace {

/// Before anything asks: the environment is read once. The name lies outside every ANSI code page.
std::filesystem::path switchTraceOn() {
  static const TemporaryFolder folder;
  auto file = folder / std::filesystem::path(u"trace \u00E9 \u4E2D.txt");
#ifdef _WIN32
  SetEnvironmentVariableW(L"VELTRANO_TRACE", file.c_str());
#else
  ::setenv("VELTRANO_TRACE", file.c_str(), 1);
#endif
  return file;
}

const std::filesystem::path file = switchTraceOn();
std::string introduction;

}  // namespace

const std::filesystem::path& traceFile() {
  return file;
}

std::vector<std::string> newTraceLines() {
  static const std::regex form(
      R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \d+/\d+ [^ ]*trace_test[^ ]* ([A-Za-z_.]+: [^\r\n]*)\r?)");
  std::vector<std::string> lines;
  if (!std::filesystem::exists(file)) return lines;
  std::istringstream text(readWholeFile(file).value_or(""));
  std::filesystem::remove(file);
  for (std::string line; std::getline(text, line);) {
    std::smatch parts;
    EXPECT_TRUE(std::regex_match(line, parts, form)) << line;
    lines.push_back(parts[1]);
  }
  if (introduction.empty() && !lines.empty()) {
    introduction = lines.front();
    lines.erase(lines.begin());
  }
  return lines;
}

const std::string& traceIntroduction() {
  return introduction;
}

}  // namespace veltrano::tests
