// Script hosts: what a script makes must equal what the portable library makes, byte for byte.

#include <gtest/gtest.h>

#include "database/access/authoring/create_database.h"
#include "host.h"
#include "veltrano/pdf.h"

namespace veltrano::tests {

namespace {

/// The last line that a script prints under cscript. A script that fails prints none.
std::string runScript(const std::string& script, const Folder& folder) {
  // Of this program's own bitness: Windows sends a 32-bit program to the 32-bit one.
  // Wine's drive Z is the root of the machine that the sources lie on.
  const std::filesystem::path file = std::filesystem::path(L"Z:" SCRIPTS_FOLDER) / script;
  std::wstring command = L"cscript.exe //nologo \"" + std::filesystem::path(file).make_preferred().wstring() +
                         L"\" \"" + folder.path().wstring() + L"\"";
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  const std::filesystem::path output = folder / L"output.txt";
  const HANDLE handle =
      CreateFileW(output.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = handle;
  startup.hStdError = handle;
  PROCESS_INFORMATION process = {};
  const BOOL started = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                      &startup, &process);
  EXPECT_TRUE(started);
  if (started) {
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process.hProcess, 60000));
    TerminateProcess(process.hProcess, 1);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(handle);
  std::string text = readFile(output);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
    text.pop_back();
  }
  return text.substr(text.find_last_of('\n') + 1);
}

/// The file with the moment of its making blanked out.
std::string withoutDate(std::string file) {
  const std::size_t date = file.find("/CreationDate (D:");
  if (date != std::string::npos) {
    file.replace(date + 17, 14, "YYYYMMDDHHmmSS");
  }
  return file;
}

/// The scripts' document, made by the portable class.
std::string nativeDocument(const Folder& folder) {
  VeltranoPDF pdf;
  pdf.PDFPathConfiguration(dllFile().parent_path());
  pdf.PDFInit();
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFTitle("Quarterly report");
  pdf.PDFAuthor("Jos\xE9");
  pdf.PDFSetMargins(20, 25);
  pdf.PDFFileName(folder / L"native.pdf");
  pdf.PDFUseOutlines(true);
  pdf.PDFBeginDoc();
  pdf.PDFSetFont(FONT_ARIAL, 14, 12);
  pdf.PDFTextOut("Quarterly report", 30, 40.5);
  pdf.PDFTextOut(" (draft)");
  pdf.PDFSetBookmark("First");
  pdf.PDFSetTextColor(Value::List{255, 128, 0});
  pdf.PDFSetBorder(BORDER_ALL);
  pdf.PDFCell("cell", 30, 60, 50, 10, "http://localhost/");
  pdf.PDFSetLineColor("#0000FF");
  pdf.PDFDrawRectangle(30, 80, 40, 20);
  pdf.PDFDrawEllipse(100, 80, 60);
  pdf.PDFDrawPolygon({Value::List{10, 200}, Value::List{30, 220}, Value::List{50, 200}});
  pdf.PDFEndPage();
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  pdf.PDFFormatPage(Value::List{300.5, 400});
  pdf.PDFNewPage();
  pdf.PDFTextOut("second page", 20, 20);
  pdf.PDFSetBookmark("Second", 0, 5);
  pdf.PDFEndDoc();
  return withoutDate(readFile(folder / L"native.pdf"));
}

TEST(Scripts, VBScriptMakesTheDocumentOfTheLibrary) {
  const Folder folder(L"with a blank");
  EXPECT_EQ("made 2 pages, margin 20, x is Integer", runScript("document.vbs", folder));
  const std::string native = nativeDocument(folder);
  EXPECT_LT(3000U, native.size());
  EXPECT_EQ(native, withoutDate(readFile(folder / L"script.pdf")));
}

TEST(Scripts, JScriptMakesTheDocumentOfTheLibrary) {
  const Folder folder(L"with a blank");
  EXPECT_EQ("made 2 pages, margin 20, x is number", runScript("document.js", folder));
  EXPECT_EQ(nativeDocument(folder), withoutDate(readFile(folder / L"script.pdf")));
}

// A list has one element more than names, an empty folder gives no list at all, what is missing a list of
// none.
TEST(Scripts, TellListsFromEmptyValues) {
  const Folder folder(L"with a blank");
  EXPECT_EQ("new array -1; folders array 1 last []; keys array 1 last []; missing array -1; emptied empty",
            runScript("lists.vbs", folder));
}

TEST(Scripts, StoreTheirDatesAndTextsAsTheyAre) {
  using access::ColumnType;
  const Folder folder(L"with a blank");
  const std::filesystem::path file = folder / L"kinds.mdb";
  std::string reason;
  ASSERT_TRUE(access::createDatabase(file, {}, reason) &&
              access::createTable(file,
                                  {.name = "Kinds",
                                   .columns = {{.name = "Moment", .type = ColumnType::dateTime},
                                               {.name = "Words", .type = ColumnType::text},
                                               {.name = "Number", .type = ColumnType::single}}},
                                  reason))
      << reason;
  EXPECT_EQ("true 2026-11-21 14:05:00 true 0.1 true", runScript("database.js", folder));
}

TEST(Scripts, UseEveryClass) {
  const Folder folder(L"with a blank");
  EXPECT_EQ("Width Height 2 -1 Value False 2,1,3", runScript("classes.vbs", folder));
  EXPECT_NE(std::string::npos, readFile(folder / L"places.kml").find("0.125,51.5,10"));
  EXPECT_NE(
      std::string::npos,
      readFile(folder / L"settings.xml").find("<Display><Width>800</Width><Height>600</Height></Display>"));
}

}  // namespace

}  // namespace veltrano::tests
