// Script hosts: what a script makes must equal what the portable library makes, byte for byte.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "database/access/authoring/create_database.h"
#include "host.h"
#include "veltrano/pdf.h"

namespace veltrano::tests {

namespace {

/// The last line that a script prints under cscript. A script that fails prints none.
std::string runScript(const std::string& script, const TemporaryFolder& folder) {
  // Wine's drive Z is the root of the machine that the sources lie on.
  std::filesystem::path file = std::filesystem::path(L"Z:" SCRIPTS_FOLDER) / script;
  const std::wstring command = L"cscript.exe //nologo \"" + file.make_preferred().wstring() + L"\" \"" +
                               folder.path().wstring() + L"\"";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(_wpopen(command.c_str(), L"rt"), _pclose);
  std::string last;
  for (char line[1000]; std::fgets(line, sizeof line, pipe.get()) != nullptr;) {
    const std::string_view text(line, std::strcspn(line, "\r\n"));
    if (!text.empty()) last = text;
  }
  return last;
}

/// The file with the moment of its making blanked out.
std::string withoutDate(std::string file) {
  const std::size_t date = file.find("/CreationDate (D:");
  if (date != std::string::npos) file.replace(date + 17, 14, "YYYYMMDDHHmmSS");
  return file;
}

class Scripts : public testing::Test {
 protected:
  Scripts() {
    pdf_.PDFPathConfiguration(dllFile().parent_path());
    pdf_.PDFInit();
    pdf_.PDFAuthor("Jos\xE9");
    pdf_.PDFFileName(folder_ / "native.pdf");
  }
  /// The script's document is the one that the portable class has made.
  void expectSameDocument() const {
    const std::string native = withoutDate(readFile(folder_ / "native.pdf"));
    EXPECT_LT(1000U, native.size());
    EXPECT_EQ(native, withoutDate(readFile(folder_ / "script.pdf")));
  }

  TemporaryFolder folder_;
  VeltranoPDF pdf_;
};

TEST_F(Scripts, VBScriptMakesTheDocumentOfTheLibrary) {
  pdf_.PDFSetUnit(UNIT_MM);
  pdf_.PDFTitle("Quarterly report");
  pdf_.PDFSetMargins(20, 25);
  pdf_.PDFUseOutlines(true);
  pdf_.PDFBeginDoc();
  pdf_.PDFSetFont(FONT_ARIAL, 14, 12);
  pdf_.PDFTextOut("Quarterly report", 30, 40.5);
  pdf_.PDFTextOut(" (draft)");
  pdf_.PDFSetBookmark("First");
  pdf_.PDFSetTextColor(Value::List{255, 128, 0});
  pdf_.PDFSetBorder(BORDER_ALL);
  pdf_.PDFCell("cell", 30, 60, 50, 10, "http://localhost/");
  pdf_.PDFSetLineColor("#0000FF");
  pdf_.PDFDrawRectangle(30, 80, 40, 20);
  pdf_.PDFDrawEllipse(100, 80, 60);
  pdf_.PDFDrawPolygon({Value::List{10, 200}, Value::List{30, 220}, Value::List{50, 200}});
  pdf_.PDFEndPage();
  pdf_.PDFOrientation(ORIENT_PAYSAGE);
  pdf_.PDFFormatPage(Value::List{300.5, 400});
  pdf_.PDFNewPage();
  pdf_.PDFTextOut("second page", 20, 20);
  pdf_.PDFSetBookmark("Second", 0, 5);
  pdf_.PDFEndDoc();
  EXPECT_EQ("made 2 pages, margin 20, x is Integer", runScript("document.vbs", folder_));
  expectSameDocument();
}

TEST_F(Scripts, JScriptPassesListsAndReadsFunctions) {
  pdf_.PDFBeginDoc();
  pdf_.PDFFormatPage(Value::List{300.5, 400});
  pdf_.PDFSetTextColor(Value::List{255, 128, 0});
  pdf_.PDFTextOut("text", 3, 4.5);
  pdf_.PDFDrawPolygon({Value::List{1, 2}, Value::List{3, 4}, Value::List{5, "6"}});
  pdf_.PDFEndDoc();
  EXPECT_EQ("end of file: false, number", runScript("arrays.js", folder_));
  expectSameDocument();
}

TEST_F(Scripts, StoreTheirDatesAndTextsAsTheyAre) {
  using access::ColumnType;
  const std::filesystem::path file = folder_ / "kinds.mdb";
  const Status made =
      access::createDatabase(file, {{.name = "Kinds",
                                     .columns = {{.name = "Moment", .type = ColumnType::dateTime},
                                                 {.name = "Words", .type = ColumnType::text},
                                                 {.name = "Number", .type = ColumnType::single}}}});
  ASSERT_TRUE(made) << made.reason();
  EXPECT_EQ("true 2026-11-21 14:05:00 true 0.1 true", runScript("database.js", folder_));
}

TEST_F(Scripts, TraceWhereTheRegistrySays) {
  const std::filesystem::path trace = folder_ / u"trace \u4E2D.txt";
  const std::wstring name = trace.wstring();
  constexpr const wchar_t* key = L"Software\\VeltranoFrameWork";
  ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueW(HKEY_CURRENT_USER, key, L"Trace", REG_SZ, name.c_str(),
                                           static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t))));
  EXPECT_EQ("rejected", runScript("rejected.js", folder_));
  EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CURRENT_USER, key));
  const std::string lines = readFile(trace);
  for (const char* line :
       {"cscript.exe VeltranoFrameWorkDLL: Version ",
        "cscript.exe VeltranoPDF.PDFSetUnit: An argument is rejected (\"Incorrect Unit\"): "
        "centimetres are used.\r\n",
        "cscript.exe VeltranoPDF.PDFTitle: The code page windows-1252 lacks characters of a text; "
        "others stand in their place.\r\n",
        "cscript.exe VeltranoPDF.PDFEndDoc: No document is open; nothing is done.\r\n",
        "cscript.exe VeltranoPDF.PDFSetFont: The host gets the error 0x80020005: argument 1 "
        "cannot be what the member takes there.\r\n"})
    EXPECT_NE(std::string::npos, lines.find(line)) << lines;
}

TEST_F(Scripts, UseEveryClass) {
  EXPECT_EQ("new array -1; keys array 2 last []; missing array -1; emptied Empty; Value False 2,1,3",
            runScript("classes.vbs", folder_));
  EXPECT_NE(std::string::npos, readFile(folder_ / "places.kml").find("0.125,51.5,10"));
  EXPECT_NE(
      std::string::npos,
      readFile(folder_ / "settings.xml").find("<Display><Width>800</Width><Height>600</Height></Display>"));
}

}  // namespace

}  // namespace veltrano::tests
