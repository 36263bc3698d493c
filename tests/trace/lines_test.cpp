// What the classes say in the trace: one row for each way in which a call does less than it was asked for.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <tuple>

#include "base/files/whole.h"
#include "database/access/authoring/create_database.h"
#include "tests/split.h"
#include "tests/temporary_folder.h"
#include "tests/trace/trace_lines.h"
#include "veltrano/ini.h"
#include "veltrano/jpg.h"
#include "veltrano/kml.h"
#include "veltrano/mdb.h"
#include "veltrano/pdf.h"
#include "veltrano/png.h"
#include "veltrano/xml.h"

namespace veltrano {
namespace {

using tests::newTraceLines;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// A part of the last line that a call writes, and the call.
using Row = std::pair<const char*, std::function<void()>>;

/// What the trace says since the last call; the last line of it.
std::string lastLine() {
  const auto lines = newTraceLines();
  return lines.empty() ? "(nothing)" : lines.back();
}

void check(const std::vector<Row>& rows) {
  for (const auto& [expected, call] : rows) {
    newTraceLines();
    call();
    const std::string line = lastLine();
    EXPECT_NE(line.find(expected), std::string::npos) << line << "\ninstead of\n" << expected;
  }
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
      {"PDFImageWidth", "Error format not supported|the name does not end in",
       [&] { size = pdf.PDFImageWidth("a.png"); }},
      {"PDFImage", "JPEG format invalid|there is no file \"none.jpg\".",
       [&] { pdf.PDFImage("none.jpg", 1, 1, size, size); }}};
  for (const auto& [member, messages, call] : rows) {
    raised.clear();
    newTraceLines();
    call();
    const auto parts = tests::split(messages, '|');
    EXPECT_EQ(raised, parts[0]);
    const auto expected =
        std::string("VeltranoPDF.") + member + ": An argument is rejected (\"" + parts[0] + "\"): ";
    EXPECT_TRUE(lastLine().starts_with(expected + (parts.size() > 1 ? parts[1] : ""))) << expected;
  }
}

TEST(TraceLines, OfPdf) {
  VeltranoPDF pdf;
  double width = 0;
  check({
      {"PDFEndDoc: No document is open; nothing is done.", [&] { pdf.PDFEndDoc(); }},
      {"PDFNewPage: No document is open", [&] { pdf.PDFNewPage(); }},
      {"PDFSetLeftMargin: The margin does not fit 16 bits", [&] { pdf.PDFSetLeftMargin(1e6); }},
      {"PDFGetStringWidth: There are no metrics of the font \"None\": ",
       [&] { width = pdf.PDFGetStringWidth("a", "None", 10); }},
      {"PDFLoadAfm: The folder \"", [&] { pdf.PDFLoadAfm("no such folder"); }},
      {"PDFDrawLine: A number is not finite; the operator that needs it is left out",
       [&] { pdf.PDFDrawLine(nan, 1, 2, 3); }},
      {"PDFDrawPolygon: Point 2 is not a pair of numbers",
       [&] {
         pdf.PDFDrawPolygon({Value::List{1, 2}, "x"});
       }},
      {"PDFEndDoc: The file \"no such folder/a.pdf\" was not written: ",
       [&] {
         pdf.PDFFileName("no such folder/a.pdf");
         pdf.PDFBeginDoc();
         pdf.PDFEndDoc();
       }},
  });
}

TEST(TraceLines, OfFiles) {
  const tests::TemporaryFolder folder;
  ASSERT_TRUE(replaceFile(folder / "bad.xml", "<XML><a></XML>"));
  VeltranoKML kml;
  VeltranoXML xml;
  VeltranoINI ini;
  check({
      {"VeltranoKML.CreatePlaceMark: No file is open; nothing is written.",
       [&] { kml.CreatePlaceMark(1, 2, 3, "name", "", "", ""); }},
      {"VeltranoKML.CreateKML: No file is open",
       [&] { kml.CreateKML(folder / "none" / "a.kml", "", "", 0); }},
      {"VeltranoKML.CreatePathPoint: A coordinate is not finite; the point is left out of the path.",
       [&] { kml.CreatePathPoint(nan, 1, 2); }},
      {"VeltranoXML.XML_Open: The settings start empty: there is no such file: \"",
       [&] { xml.XML_Open(folder / "none.xml"); }},
      {"VeltranoXML.XML_Open: The settings start empty: the file is not well-formed XML",
       [&] { xml.XML_Open(folder / "bad.xml"); }},
      {"VeltranoXML.XML_SaveSetting: The key \"1\" in the folder \"a\" cannot be made: a name is not allowed",
       [&] { xml.XML_SaveSetting("a", "1", "x"); }},
      {"VeltranoXML.XML_SaveSetting: Characters that XML cannot hold are left out of the value of \"Key\".",
       [&] { xml.XML_SaveSetting("Folder", "Key", "a\x01z"); }},
      {"VeltranoXML.XML_Save: Nothing is saved to \"",
       [&] {
         VeltranoXML empty;
         empty.XML_Save();
       }},
      {"VeltranoINI.GetIniValue: The file \"", [&] { ini.GetIniValue(folder / "none.ini", u"key", u""); }},
      {"VeltranoINI.SetIniValue: The file \"",
       [&] { ini.SetIniValue(folder / "none" / "a.ini", u"key", u""); }},
  });
}

TEST(TraceLines, OfPicturesAndDatabases) {
  const tests::TemporaryFolder folder;
  ASSERT_TRUE(replaceFile(folder / "bad.jpg", "no picture"));
  VeltranoJPG jpg;
  VeltranoPNG png;
  VeltranoMDB mdb;
  check({
      {"VeltranoJPG.SaveJPEGResampled: There is no picture, or a side of it is longer than a JPEG can have. "
       "No file is "
       "written.",
       [&] { jpg.SaveJPEGResampled(folder / "bad.jpg", folder / "b.jpg", 90, 0, 0); }},
      {"VeltranoPNG.SavePNG: The picture is not a bitmap", [&] { png.SavePNG({}, folder / "a.png"); }},
      {"VeltranoMDB.OpenDB: Refused for \"", [&] { mdb.OpenDB((folder / "none.mdb").string(), "", ""); }},
      {"VeltranoMDB.OpenTable: Refused for \"Orders\": no database is open.",
       [&] { mdb.OpenTable("Orders"); }},
      {"VeltranoMDB.AddNew: Refused: no table is open.", [&] { mdb.AddNew(); }},
      {"VeltranoMDB.EOF: Refused: no table is open.", [&] { mdb.Eof(); }},
      {"VeltranoMDB.FindRecord: Refused: no table is open.", [&] { mdb.FindRecord("Name", "x", 0); }},
      {"VeltranoMDB.CloseDatabase: Refused: no database is open.", [&] { mdb.CloseDatabase(); }},
  });
}

TEST(TraceLines, OfTheEmbeddedEngine) {
  const tests::TemporaryFolder folder;
  const auto file = folder / "orders.mdb";
  ASSERT_TRUE(access::createDatabase(
      file, {{.name = "Orders", .columns = {{.name = "Number", .type = access::ColumnType::longInteger}}}}));
  VeltranoMDB mdb;
  check({
      {"VeltranoMDB.MoveFirst: What AddNew began is dropped: Update was not called.",
       [&] {
         mdb.OpenDB(file.string(), "", "");
         mdb.OpenTable("Orders");
         mdb.AddNew();
         mdb.WriteRecord("Number", Value(1));
         mdb.Update();
         mdb.AddNew();
         mdb.MoveFirst();
       }},
      {"VeltranoMDB.FindRecord: There is no field \"Numbr\" to look in.",
       [&] { mdb.FindRecord("Numbr", "x", 0); }},
      {"VeltranoMDB.OpenTable: The table \"Orders\" can only be read: the last page of the file is not "
       "whole.",
       [&] {
         mdb.CloseDatabase();
         std::filesystem::resize_file(file, std::filesystem::file_size(file) + 1);
         mdb.OpenDB(file.string(), "", "");
         mdb.OpenTable("Orders");
       }},
  });
}

}  // namespace
}  // namespace veltrano
