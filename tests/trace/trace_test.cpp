#include "base/trace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <sstream>
#include <thread>
#include <vector>

#include "base/files/whole.h"
#include "base/text/code_page.h"
#include "tests/temporary_folder.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace veltrano {
namespace {

/// Before anything asks: the environment is read once. The name lies outside every ANSI code page.
std::filesystem::path switchTraceOn() {
  static const tests::TemporaryFolder folder;
  const auto file = folder / std::filesystem::path(u"trace \u00E9 \u4E2D.txt");
#ifdef _WIN32
  SetEnvironmentVariableW(L"VELTRANO_TRACE", file.c_str());
#else
  ::setenv("VELTRANO_TRACE", file.c_str(), 1);
#endif
  return file;
}

const std::filesystem::path traceFile = switchTraceOn();

/// The first line of the process.
std::string introduction;

/// The lines since the last call without what differs from run to run, whose form is checked.
std::vector<std::string> newLines() {
  static const std::regex form(
      R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \d+/\d+ [^ ]*trace_test[^ ]* ([A-Za-z.]+: [^\r\n]*)\r?)");
  std::istringstream text(readWholeFile(traceFile).value_or(""));
  std::filesystem::remove(traceFile);
  std::vector<std::string> lines;
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

TEST(Trace, BeginsWithWhatRunsWhere) {
  trace("A sentence.");
  EXPECT_EQ(newLines(), (std::vector<std::string>{"VeltranoFrameWorkDLL: A sentence."}));
  EXPECT_TRUE(introduction.starts_with("VeltranoFrameWorkDLL: Version 1.0.0, ")) << introduction;
}

TEST(Trace, NamesTheInnermostMember) {
  {
    const TracedMember outer("VeltranoPDF", "PDFEndDoc");
    {
      const TracedMember inner("VeltranoMDB", "OpenDB");
      trace("in the handler");
    }
    trace(Status(Failure::full, "The disk is full"), ": ", std::filesystem::path(u"\u00E9 \u4E2D.pdf"),
          ", page ", 7);
  }
  trace("after");
  EXPECT_EQ(newLines(), (std::vector<std::string>{"VeltranoMDB.OpenDB: in the handler",
                                                  "VeltranoPDF.PDFEndDoc: The disk is full: "
                                                  "\"\xC3\xA9 \xE4\xB8\xAD.pdf\", page 7",
                                                  "VeltranoFrameWorkDLL: after"}));
}

TEST(Trace, KeepsToALineWhateverNamesHold) {
  trace("a\r\nb\tc\x7F");
  trace("ansi \xE9, utf-8 \xC3\xA9, ", std::u16string_view(u"utf-16 \u4E2D"));
  trace(std::string(3999, 'x') + "\xC3\xA9" + std::string(5000, 'y'));
  const auto lines = newLines();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], "VeltranoFrameWorkDLL: a  b c ");
  EXPECT_EQ(lines[2], "VeltranoFrameWorkDLL: " + std::string(3999, 'x') + " ...");
}

TEST(Trace, LinesOfSeveralWritersNeverMix) {
  // Each line opens the file by itself, so threads stand for processes.
  std::vector<std::thread> writers;
  for (char c = 'a'; c < 'e'; ++c) {
    writers.emplace_back([c] {
      for (int i = 0; i < 200; ++i) {
        trace(std::string(300, c));
      }
    });
  }
  for (auto& writer : writers) {
    writer.join();
  }
  const auto lines = newLines();
  EXPECT_EQ(lines.size(), 800U);
  for (const auto& line : lines) {
    EXPECT_EQ(line, "VeltranoFrameWorkDLL: " + std::string(300, line.back()));
  }
}

TEST(Trace, SaysWhichCharactersAreLost) {
  EXPECT_EQ(utf8ToAnsi("\xC3\xA9"), "\xE9");
  EXPECT_TRUE(newLines().empty());
  utf8ToAnsi("\xE4\xB8\xAD");
  EXPECT_EQ(newLines(), (std::vector<std::string>{"VeltranoFrameWorkDLL: The code page windows-1252 lacks "
                                                  "characters of a text; others stand in their place."}));
}

TEST(Trace, AnUnwritableFileIsNoErrorForTheHost) {
  std::filesystem::create_directory(traceFile);
  trace("lost");
  EXPECT_TRUE(std::filesystem::remove(traceFile));
}

}  // namespace
}  // namespace veltrano
