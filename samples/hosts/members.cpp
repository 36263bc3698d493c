// Lists the members of a club who get the newsletter: reads a database, draws a PDF page, keeps settings.
//   members CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER
// On Linux, with the portable library:
//   g++ -std=c++20 members.cpp $(pkg-config --cflags --libs veltranoframework) -o members
#include <veltrano/mdb.h>
#include <veltrano/pdf.h>
#include <veltrano/text.h>
#include <veltrano/xml.h>

#include <cstdio>
#include <filesystem>
#include <string>

using namespace veltrano;

namespace {

/// The number of members printed below `y`, or -1 with a message.
int printMembers(VeltranoPDF& pdf, const char* database, double y) {
  VeltranoMDB mdb;
  if (!mdb.OpenDB(database) || !mdb.OpenTable("Contacts")) {
    std::fputs("members: the database or its table Contacts does not open\n", stderr);
    return -1;
  }
  int count = 0;
  for (; !mdb.Eof(); mdb.MoveNext()) {
    if (mdb.ReadRecord_String("Newsletter") == "True") {
      // The database answers UTF-8, pages take the ANSI code page.
      pdf.PDFTextOut(utf8ToAnsi(mdb.ReadRecord_String("LastName") + ", " + mdb.ReadRecord_String("City")), 20,
                     y);
      y += 7;
      ++count;
    }
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: members CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER\n", stderr);
    return 2;
  }
  const std::filesystem::path folder = argv[3];

  VeltranoXML settings;
  settings.XML_Open(folder / "members.xml");
  const std::string title = settings.XML_GetSetting("List", "Title", "Members");
  const int runs = std::stoi(settings.XML_GetSetting("List", "Runs", "0")) + 1;
  settings.XML_SaveSetting("List", "Title", title);
  settings.XML_SaveSetting("List", "Runs", std::to_string(runs));
  settings.XML_Save();

  VeltranoPDF pdf;
  pdf.onError = [](std::string_view message) {
    std::printf("PDF: %.*s\n", static_cast<int>(message.size()), message.data());
  };
  pdf.PDFTitle(utf8ToAnsi(title));
  pdf.PDFFileName(folder / "members.pdf");
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFBeginDoc();
  pdf.PDFSetFont(FONT_ARIAL, 20, FONT_BOLD);
  pdf.PDFTextOut(utf8ToAnsi(title), 20, 25);
  double width = 60;
  double height = 0;  // the member computes it and writes it back
  pdf.PDFImage(argv[2], 20, 30, width, height);
  std::printf("picture: %g mm high\n", height);
  pdf.PDFSetFont(FONT_ARIAL, 11, FONT_NORMAL);
  const int count = printMembers(pdf, argv[1], 30 + height + 10);
  pdf.PDFEndDoc();
  if (count < 0) {
    return 1;
  }
  std::printf("members.pdf: %d members\ndone\n", count);
  return 0;
}
