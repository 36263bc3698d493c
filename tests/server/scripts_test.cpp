// Script hosts: what a script makes must equal what the portable library makes, byte for byte.

#include <gmock/gmock.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "database/access/authoring/create_database.h"
#include "host.h"
#include "veltrano/pdf.h"

namespace veltrano::tests {

namespace {

using testing::AllOf;
using testing::HasSubstr;

class Scripts : public testing::Test {
 protected:
  /// The last line that a script prints under cscript. A script that fails prints none.
  [[nodiscard]] std::string run(const wchar_t* script) const {
    std::filesystem::path file = projectFolder / "tests" / "server" / script;
    const std::wstring command = L"cscript.exe //nologo \"" + file.make_preferred().wstring() + L"\" \"" +
                                 folder_.path().wstring() + L"\"";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(_wpopen(command.c_str(), L"rt"), _pclose);
    std::string last;
    for (char line[1000]; std::fgets(line, sizeof line, pipe.get()) != nullptr;)
      if (const std::string_view text(line, std::strcspn(line, "\r\n")); !text.empty()) last = text;
    return last;
  }
  /// Without the moment of its making.
  [[nodiscard]] std::string document(const wchar_t* name) const {
    std::string file = readFile(folder_ / name);
    return file.replace(file.find("/CreationDate (D:") + 17, 14, "");
  }

  TemporaryFolder folder_;
};

// The second script is traced, where the registry says.
TEST_F(Scripts, MakeTheDocumentOfTheLibrary) {
  VeltranoPDF pdf;
  pdf.PDFPathConfiguration(dllFile.parent_path());
  pdf.PDFInit();
  pdf.PDFTitle("Quarterly report");
  pdf.PDFAuthor("Jos\xE9");
  pdf.PDFFileName(folder_ / "native.pdf");
  pdf.PDFUseOutlines(true);
  pdf.PDFBeginDoc();
  pdf.PDFFormatPage(Value::List{300.5, 400});
  pdf.PDFTextOut("Quarterly report", 3, 4.5);
  pdf.PDFTextOut(" (draft)");
  pdf.PDFSetBookmark("First", 0, 5);
  pdf.PDFSetTextColor(Value::List{255, 128, 0});
  pdf.PDFCell("cell", 3, 6, 5, 1, "http://localhost/");
  pdf.PDFSetLineColor("#0000FF");
  pdf.PDFDrawEllipse(10, 8, 3);
  pdf.PDFDrawPolygon({Value::List{1, 20}, Value::List{3, 22}, Value::List{5, "20"}});
  pdf.PDFEndDoc();
  EXPECT_EQ("made 1 page, x is Integer", run(L"document.vbs"));
  EXPECT_EQ(document(L"native.pdf"), document(L"script.pdf"));

  const std::filesystem::path trace = folder_ / u"trace \u4E2D.txt";
  constexpr const wchar_t* key = L"Software\\VeltranoFrameWork";
  RegSetKeyValueW(HKEY_CURRENT_USER, key, L"Trace", REG_SZ, trace.c_str(),
                  static_cast<DWORD>((trace.native().size() + 1) * sizeof(wchar_t)));
  EXPECT_EQ("caught 1, end of file: false", run(L"document.js"));
  EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CURRENT_USER, key));
  EXPECT_EQ(document(L"native.pdf"), document(L"script.pdf"));
  EXPECT_THAT(readFile(trace),
              AllOf(HasSubstr("cscript.exe VeltranoFrameWorkDLL: Version "),
                    HasSubstr("cscript.exe VeltranoPDF.PDFSetUnit: An argument is rejected (\"Incorrect "
                              "Unit\"): centimetres are used.\r\n"),
                    HasSubstr("cscript.exe VeltranoPDF.PDFSetFont: The host gets the error 0x80020005: "
                              "argument 1 cannot be what the member takes there.\r\n")));
}

TEST_F(Scripts, StoreTheirDatesAndTextsAsTheyAre) {
  using access::ColumnType;
  ASSERT_TRUE(access::createDatabase(folder_ / "kinds.mdb",
                                     {{.name = "Kinds",
                                       .columns = {{.name = "Moment", .type = ColumnType::dateTime},
                                                   {.name = "Words", .type = ColumnType::text},
                                                   {.name = "Number", .type = ColumnType::single}}}}));
  EXPECT_EQ("true 2026-11-21 14:05:00 true 0.1 true", run(L"database.js"));
}

TEST_F(Scripts, SeeListsOfSettings) {
  EXPECT_EQ("[Display][Empty][] array, [Width][Height][] array, Empty,  array, 800", run(L"lists.vbs"));
}

}  // namespace

}  // namespace veltrano::tests
