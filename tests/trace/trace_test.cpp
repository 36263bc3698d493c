#include "base/trace.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "base/files/whole.h"
#include "base/text/code_page.h"
#include "database/access/authoring/create_database.h"
#include "tests/short_memory.h"
#include "tests/temporary_folder.h"
#include "tests/trace/trace_lines.h"
#include "veltrano/mdb.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace veltrano {
namespace {

const tests::TemporaryFolder folderUntilExit;
VeltranoMDB closedAtExit;

using tests::newTraceLines;
using Lines = std::vector<std::string>;

TEST(Trace, BeginsWithWhatRunsWhere) {
  trace("A sentence.");
  EXPECT_EQ(newTraceLines(), (Lines{"VeltranoFrameWorkDLL: A sentence."}));
  EXPECT_TRUE(tests::traceIntroduction.starts_with("VeltranoFrameWorkDLL: Version 1.0.0, "))
      << tests::traceIntroduction;
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
  EXPECT_EQ(newTraceLines(), (Lines{"VeltranoMDB.OpenDB: in the handler",
                                    "VeltranoPDF.PDFEndDoc: The disk is full: "
                                    "\"\xC3\xA9 \xE4\xB8\xAD.pdf\", page 7",
                                    "VeltranoFrameWorkDLL: after"}));
}

TEST(Trace, KeepsToALineWhateverNamesHold) {
  trace("a\r\nb\tc\x7F", std::u16string_view(u"\u0085 \u2028\u2029"));
  trace("ansi \xE9, utf-8 \xC3\xA9, ", std::u16string_view(u"utf-16 \u4E2D"));
  trace(std::string(5000, 'x'));
  const auto lines = newTraceLines();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], "VeltranoFrameWorkDLL: a  b c     ");
  EXPECT_TRUE(lines[2].ends_with("xxx ...")) << lines[2];
  EXPECT_LT(lines[2].size(), 4100U);
}

TEST(Trace, LinesOfSeveralWritersNeverMix) {
  // Each line opens the file by itself, so threads stand for processes.
  std::vector<std::thread> writers;
  for (char c = 'a'; c < 'e'; ++c) {
    writers.emplace_back([c] {
      for (int i = 0; i < 200; ++i) trace(std::string(300, c));
    });
  }
  for (auto& writer : writers) writer.join();
  const auto lines = newTraceLines();
  EXPECT_EQ(lines.size(), 800U);
  for (const auto& line : lines) EXPECT_EQ(line, "VeltranoFrameWorkDLL: " + std::string(300, line.back()));
}

TEST(Trace, SaysWhichCharactersAreLost) {
  EXPECT_EQ(utf8ToAnsi("\xC3\xA9"), "\xE9");
  EXPECT_TRUE(newTraceLines().empty());
  utf8ToAnsi("\xE4\xB8\xAD");
  EXPECT_EQ(newTraceLines(), (Lines{"VeltranoFrameWorkDLL: The code page windows-1252 lacks "
                                    "characters of a text; others stand in their place."}));
}

TEST(Trace, AShortMemoryLosesTheLineAndNotTheCall) {
  const std::string longName(100, 'n');
  tests::largestBlock = 0;
  {
    const TracedMember member("VeltranoMDB", "AMemberOfALongName");
    trace("There is no table \"", longName, "\".");
  }
  tests::largestBlock = tests::memoryEnough;
  trace("after");
  EXPECT_EQ(newTraceLines(), (Lines{"VeltranoFrameWorkDLL: after"}));
}

// The program's end is a part of it: then the object closes, and something is said, after all that the library has made.
TEST(Trace, OutlivesTheGlobalObjectsOfTheHost) {
  const auto file = folderUntilExit / "a.mdb";
  ASSERT_TRUE(access::createDatabase(file, {{.name = "T", .columns = {{.name = "Number"}}}}));
  EXPECT_TRUE(closedAtExit.OpenDB(file.string(), "", "") && closedAtExit.OpenTable("T"));
  closedAtExit.AddNew();
  closedAtExit.WriteRecord("Number", Value(1));
  closedAtExit.Update();
  closedAtExit.AddNew();
  newTraceLines();
}

#ifndef _WIN32
TEST(Trace, DoesNotWaitForThePipeItIsSentTo) {
  const int pipe = ::mkfifo(tests::traceFile.c_str(), 0600);
  ASSERT_EQ(pipe, 0);
  const int reader = ::open(tests::traceFile.c_str(), O_RDONLY | O_NONBLOCK);
  for (int i = 0; i < 1000; ++i) {
    trace(std::string(1000, 'x'));  // more than a pipe holds
  }
  ::close(reader);
  trace("Nobody reads this either.");
  EXPECT_TRUE(std::filesystem::remove(tests::traceFile));
}
#endif

TEST(Trace, AnUnwritableFileIsNoErrorForTheHost) {
  std::filesystem::create_directory(tests::traceFile);
  trace("lost");
  EXPECT_TRUE(std::filesystem::remove(tests::traceFile));
}

}  // namespace
}  // namespace veltrano
