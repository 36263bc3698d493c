#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "base/text/code_page.h"
#include "tests/pdf/pdf_testing.h"

// What readers that others wrote make of our files: native only, where they are programs of the system.

namespace veltrano::tests {
namespace {

/// What a command prints.
std::string outputOf(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen((command + " 2>/dev/null").c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get()))
    output.append(buffer.data(), count);
  return output;
}

class Readers : public PdfTest {
 protected:
  void SetUp() override {
    for (const std::string program : {"pdfinfo", "pdftoppm", "pdftotext", "mutool", "qpdf", "convert"})
      if (outputOf("command -v " + program).empty()) GTEST_SKIP() << program << " is not installed";
    pdf.PDFBeginDoc();
    pdf.PDFSetFont(FONT_ARIAL, 10);
  }
  /// What a reader prints of the document.
  std::string read(const std::string& program, const std::string& options = "") {
    return outputOf(program + " '" + file().string() + "' " + options);
  }
  /// The pixels that are not white in a box of the first page ("WxH+X+Y") at one pixel a point, without smoothing.
  int inkIn(const std::string& box) {
    return std::stoi(
        "0" + read("pdftoppm -r 72 -f 1 -l 1 -aa no -aaVector no",
                   "| convert - -crop " + box +
                       " +repage -fill black +opaque white -negate -format '%[fx:round(mean*w*h)]' info:"));
  }
};

TEST_F(Readers, SeePagesInformationAndOutline) {
  pdf.PDFTitle("Journal d'\xE9t\xE9");
  pdf.PDFUseOutlines(true);
  begin();
  pdf.PDFSetBookmark("First", 0, 0);
  pdf.PDFSetBookmark("Below", 1, 200);
  pdf.PDFEndPage();
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  pdf.PDFNewPage();
  pdf.PDFSetBookmark("Second", 0, 0);
  finish();
  const std::string info = read("pdfinfo -l 3");
  for (const char* line :
       {"Title:           Journal d'\xC3\xA9t\xC3\xA9\n", "Pages:           2\n",
        "Page    1 size:  595.28 x 841.89 pts (A4)\n", "Page    2 size:  842 x 595 pts (A4)\n"})
    EXPECT_TRUE(holds(info, line));
  const std::string outline = read("mutool show -b", "outline");
  const auto below = outline.find("\t\"Below\"\t#page=1", outline.find("\"First\"\t#page=1"));
  EXPECT_NE(outline.find("\"Second\"\t#page=2", below), std::string::npos) << outline;
  EXPECT_EQ(read("qpdf --no-warn --show-npages"), "2\n");
}

TEST_F(Readers, PaintEveryLineWholeHoweverCloseTheLinesAre) {
  const auto drawn = [&](bool fill) {
    begin();
    pdf.PDFSetFill(fill);
    pdf.PDFSetDrawColor("#FFFFFF");
    for (const std::int32_t alignment : {ALIGN_CENTER, ALIGN_LEFT, ALIGN_RIGHT, ALIGN_FJUSTIFY}) {
      pdf.PDFSetAlignement(alignment);
      double y = 50;
      for (const double height : {0, 20, 30, 33, 45}) {
        pdf.PDFCell("gj(\xC7,y|pq gjpq gjpq\r\n\xC7gjpq", 50 + 100 * alignment, y, 50, height);
        y += 150;
      }
    }
    finish();
    return inkIn("595x841+0+0");
  };
  const int ink = drawn(false);
  EXPECT_GT(ink, 1000);
  EXPECT_EQ(drawn(true), ink) << "no fill hides any of the ink";
}

TEST_F(Readers, PaintTheFillOfACellAndItsBorder) {
  // A box is stroked with the line that was stroked last: 4 points wide.
  pdf.PDFSetLineWidth(4);
  pdf.PDFDrawLine(500, 500, 510, 500);
  pdf.PDFSetFill(true);
  pdf.PDFSetDrawColor("#FFFF00");
  pdf.PDFSetBorder(BORDER_ALL);
  pdf.PDFCell("gjpq\r\ngjpq\r\ngjpq", 100, 100, 100, 60);
  finish();
  EXPECT_EQ(inkIn("104x64+98+98"), 104 * 64);
  EXPECT_EQ(inkIn("124x84+88+88"), 104 * 64) << "nothing beside it";
}

TEST_F(Readers, ReadTextBackWithItsAccents) {
  const std::string accented = "Éléphant à l'œuvre";
  pdf.PDFTextOut(utf8ToAnsi(accented), 50, 50);
  pdf.PDFSetFont(FONT_TIMES, 12, 1);
  pdf.PDFTextOut(utf8ToAnsi("Prix : 12 € (été)"), 50, 80);
  pdf.PDFSetAlignement(ALIGN_FJUSTIFY);
  const std::string pangram = "Portez ce vieux whisky au juge blond qui fume, été comme hiver.";
  pdf.PDFCell(utf8ToAnsi(pangram), 50, 100, 100, 100);
  finish();
  std::string text = read("pdftotext -raw", "-");
  for (char& c : text) c = c == '\n' ? ' ' : c;
  EXPECT_EQ(text, accented + " Prix : 12 € (été) " + pangram + " \f");
}

TEST_F(Readers, PaintPhotosOfARealEncoder) {
  constexpr std::pair<const char*, const char*> encodings[] = {
      {"", "RGB"}, {"-interlace JPEG", "RGB"}, {"-colorspace Gray", "Gray"}, {"-colorspace CMYK", "CMYK"}};
  int y = 100;
  for (const auto& [options, colourSpace] : encodings) {
    const auto photo = folder / ("photo" + std::to_string(y) + ".jpg");
    outputOf(std::string("convert -size 64x48 gradient:red-blue -quality 100 ") + options + " '" +
             photo.string() + "'");
    pdf.PDFImage(photo, 100, y);
    y += 100;
  }
  const std::string content = finish();
  std::size_t at = 0;
  y = 100;
  for (const auto& [options, colourSpace] : encodings) {
    at = content.find("/Width 64\r\n/Height 48\r\n/ColorSpace /Device" + std::string(colourSpace), at + 1);
    EXPECT_NE(at, std::string::npos) << colourSpace;
    EXPECT_EQ(inkIn("64x48+100+" + std::to_string(y)), 64 * 48) << options;
    EXPECT_EQ(inkIn("100x98+166+" + std::to_string(y)), 0) << options;
    y += 100;
  }
}

}  // namespace
}  // namespace veltrano::tests
