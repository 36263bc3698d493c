// The trace: its form, what it survives, and what the classes say when a call does less than it was asked for.

#include "base/trace.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <regex>
#include <thread>

#include "base/files/whole.h"
#include "base/text/code_page.h"
#include "database/access/authoring/create_database.h"
#include "tests/short_memory.h"
#include "tests/split.h"
#include "tests/temporary_folder.h"
#include "veltrano/kml.h"
#include "veltrano/mdb.h"
#include "veltrano/pdf.h"
#include "veltrano/xml.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace veltrano {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

const tests::TemporaryFolder folder;
VeltranoMDB closedAtExit;

/// Before anything asks: the environment is read once. The name lies outside every ANSI code page.
const std::filesystem::path traceFile = [] {
  auto file = folder / std::filesystem::path(u"trace \u00E9 \u4E2D.txt");
#ifdef _WIN32
  SetEnvironmentVariableW(L"VELTRANO_TRACE", file.c_str());
#else
  ::setenv("VELTRANO_TRACE", file.c_str(), 1);
#endif
  return file;
}();

/// The lines since the last call, without what differs from run to run; the form of that is checked.
std::vector<std::string> newLines() {
  static const std::regex form(
      R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \d+/\d+ [^ ]*trace_test[^ ]* ([A-Za-z_.]+: [^\r\n]*)\r?)");
  std::vector<std::string> lines;
  if (!std::filesystem::exists(traceFile)) return lines;  // reading a missing file would be traced
  const std::string text = readWholeFile(traceFile).value_or("");
  std::filesystem::remove(traceFile);
  for (const std::string& line : tests::split(text, '\n')) {
    std::smatch parts;
    EXPECT_TRUE(line.empty() || std::regex_match(line, parts, form)) << line;
    if (!line.empty()) lines.push_back(parts[1]);
  }
  return lines;
}

// The first of all: the first line of a process says what runs.
TEST(Trace, NamesTheInnermostMemberAndKeepsToALine) {
  {
    const TracedMember outer("VeltranoPDF", "PDFEndDoc");
    {
      const TracedMember inner("VeltranoMDB", "OpenDB");
      trace("in the handler");
    }
    trace(Status(Failure::full, "The disk is full"), ": ", std::filesystem::path(u"\u00E9 \u4E2D.pdf"),
          ", page ", 7);
  }
  trace("a\r\nb\tc\x7F", std::u16string_view(u"\u0085 \u2028\u2029"));
  trace(std::string(5000, 'x'));
  EXPECT_THAT(
      newLines(),
      ElementsAre(StartsWith("VeltranoFrameWorkDLL: Version 1.0.0, "), "VeltranoMDB.OpenDB: in the handler",
                  "VeltranoPDF.PDFEndDoc: The disk is full: \"\xC3\xA9 \xE4\xB8\xAD.pdf\", page 7",
                  "VeltranoFrameWorkDLL: a  b c     ",
                  testing::AllOf(testing::EndsWith("xxx ..."), testing::SizeIs(testing::Lt(4100U)))));
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
  const auto lines = newLines();
  EXPECT_EQ(lines.size(), 800U);
  for (const auto& line : lines) EXPECT_EQ(line, "VeltranoFrameWorkDLL: " + std::string(300, line.back()));
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
  EXPECT_THAT(newLines(), ElementsAre("VeltranoFrameWorkDLL: after"));
}

TEST(Trace, AnUnwritableFileIsNoErrorForTheHost) {
  std::filesystem::create_directory(traceFile);
  trace("lost");
  EXPECT_TRUE(std::filesystem::remove(traceFile));
}

// Each has its message, which the host gets as an event, too. What is used instead may follow after "|".
TEST(TraceLines, OfArgumentsThatThePdfRejects) {
  VeltranoPDF pdf;
  std::string raised;
  pdf.onError = [&](std::string_view message) { raised = message; };
  double size = 0;
  const Value word = "red";
  const std::tuple<const char*, const char*, std::function<void()>> rows[] = {
      {"PDFSetUnit", "Incorrect Unit|centimetres are used.", [&] { pdf.PDFSetUnit(9); }},
      {"PDFOrientation", "Incorrect Page Orientation", [&] { pdf.PDFOrientation(2); }},
      {"PDFFormatPage", "Invalid Page Code Format", [&] { pdf.PDFFormatPage(99); }},
      {"PDFSetZoomMode", "Zoom mode incorrect.", [&] { pdf.PDFSetZoomMode(word); }},
      {"PDFSetLayoutMode", "Incorrect Layout", [&] { pdf.PDFSetLayoutMode(9); }},
      {"PDFSetTextColor", "Invalid Text Color|the colour is black.", [&] { pdf.PDFSetTextColor("FF0000"); }},
      {"PDFSetLineColor", "Invalid Line Color", [&] { pdf.PDFSetLineColor(""); }},
      {"PDFSetDrawColor", "Invalide Draw Color", [&] { pdf.PDFSetDrawColor("255"); }},
      {"PDFSetLineStyle", "Incorrect Line Style", [&] { pdf.PDFSetLineStyle(4); }},
      {"PDFSetDrawMode", "Incorrect Draw line", [&] { pdf.PDFSetDrawMode(3); }},
      {"PDFSetAlignement", "Invalid Alignment Code", [&] { pdf.PDFSetAlignement(4); }},
      {"PDFSetFont", "Invalid Fort |the font is TimesRoman.", [&] { pdf.PDFSetFont(5, 12); }},
      {"PDFDrawRectangle", "Unable to include this link",
       [&] { pdf.PDFDrawRectangle(1, 1, 1, 1, Value(5)); }},
      {"PDFImageWidth", "Error format not supported|the name does not",
       [&] { size = pdf.PDFImageWidth("a.png"); }},
      {"PDFImage", "JPEG format invalid|there is no file \"none.jpg\".",
       [&] { pdf.PDFImage("none.jpg", 1, 1, size, size); }}};
  for (const auto& [member, messages, call] : rows) {
    newLines();
    call();
    const auto parts = tests::split(messages, '|');
    EXPECT_EQ(raised, parts[0]);
    EXPECT_THAT(newLines().back(),
                StartsWith(std::string("VeltranoPDF.") + member + ": An argument is rejected (\"" + parts[0] +
                           "\"): " + (parts.size() > 1 ? parts[1] : "")));
  }
}

// One row for each kind of reason.
TEST(TraceLines, OfCallsThatDoLess) {
  const auto file = folder / "orders.mdb";
  ASSERT_TRUE(access::createDatabase(file, {{.name = "Orders", .columns = {{.name = "Number"}}}}));
  ASSERT_TRUE(replaceFile(folder / "bad.xml", "<XML><a></XML>"));
  VeltranoPDF pdf;
  VeltranoKML kml;
  VeltranoXML xml;
  VeltranoMDB mdb;
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"FrameWorkDLL: The code page windows-1252 lacks characters of a text; others stand in their place.",
       [] { utf8ToAnsi("\xC3\xA9\xE4\xB8\xAD"); }},
      {"PDF.PDFEndDoc: No document is open; nothing is done.", [&] { pdf.PDFEndDoc(); }},
      {"PDF.PDFSetLeftMargin: The margin does not fit 16 bits", [&] { pdf.PDFSetLeftMargin(1e6); }},
      {"PDF.PDFDrawLine: A number is not finite; the operator that needs it is left out",
       [&] { pdf.PDFDrawLine(std::nan(""), 1, 2, 3); }},
      {"PDF.PDFEndDoc: The file \"no such folder/a.pdf\" was not written: ",
       [&] {
         pdf.PDFFileName("no such folder/a.pdf");
         pdf.PDFBeginDoc();
         pdf.PDFEndDoc();
       }},
      {"KML.CreateKML: No file is open", [&] { kml.CreateKML(folder / "none" / "a.kml", "", "", 0); }},
      {"XML.XML_Open: The settings start empty: the file is not well-formed XML",
       [&] { xml.XML_Open(folder / "bad.xml"); }},
      {"XML.XML_SaveSetting: The key \"1\" in the folder \"a\" cannot be made: a name is not allowed",
       [&] { xml.XML_SaveSetting("a", "1", "x"); }},
      {"MDB.FindRecord: There is no field \"Numbr\" to look in.",
       [&] {
         mdb.OpenDB(file.string(), "", "");
         mdb.OpenTable("Orders");
         mdb.AddNew();
         mdb.WriteRecord("Number", Value(1));
         mdb.Update();
         mdb.FindRecord("Numbr", "x", 0);
       }},
      {"MDB.MoveFirst: What AddNew began is dropped: Update was not called.",
       [&] {
         mdb.AddNew();
         mdb.MoveFirst();
       }},
      {"MDB.OpenTable: The table \"Orders\" can only be read: the last page of the file is not whole.", [&] {
         mdb.CloseDatabase();
         std::filesystem::resize_file(file, std::filesystem::file_size(file) + 1);
         mdb.OpenDB(file.string(), "", "");
         mdb.OpenTable("Orders");
       }}};
  for (const auto& [expected, call] : rows) {
    newLines();
    call();
    const auto lines = newLines();
    EXPECT_THAT(lines.empty() ? "(nothing)" : lines.back(), StartsWith(std::string("Veltrano") + expected));
  }
}

// The program's end is a part of it: then the object closes, and something is said, after all that the library has made.
TEST(TraceLines, OutliveTheGlobalObjectsOfTheHost) {
  const auto file = folder / "a.mdb";
  ASSERT_TRUE(access::createDatabase(file, {{.name = "T", .columns = {{.name = "Number"}}}}));
  EXPECT_TRUE(closedAtExit.OpenDB(file.string(), "", "") && closedAtExit.OpenTable("T"));
  closedAtExit.AddNew();
}

}  // namespace
}  // namespace veltrano
