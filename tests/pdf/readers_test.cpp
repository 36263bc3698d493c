#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "base/text/code_page.h"
#include "tests/pdf/pdf_testing.h"

// What readers that others wrote make of our files: native only, where they are programs of the system.

namespace veltrano {
namespace {

using tests::Document;
using tests::holds;

bool installed(const char* program) {
  const std::string command = std::string("command -v ") + program + " >/dev/null";
  return std::system(command.c_str()) == 0;  // NOLINT(cert-env33-c)
}

/// What `command` prints; it is run on `file`, followed by `after`.
std::string outputOf(const std::string& command, const std::filesystem::path& file,
                     const std::string& after = "2>/dev/null") {
  const std::string whole = command + " '" + file.string() + "' " + after;
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(whole.c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
    output.append(buffer.data(), count);
  }
  return output;
}

constexpr std::string_view white = "\xFF\xFF\xFF";

/// The first page at one pixel a point, as poppler paints it without smoothing.
class Picture {
 public:
  explicit Picture(const std::filesystem::path& file)
      : data_(outputOf("pdftoppm -r 72 -f 1 -l 1 -aa no -aaVector no", file)) {
    std::istringstream header(data_);
    std::string magic;
    int most = 0;
    header >> magic >> width_ >> height_ >> most;
    start_ = static_cast<std::size_t>(header.tellg()) + 1;
    EXPECT_EQ(data_.size(), start_ + static_cast<std::size_t>(width_ * height_) * 3);
  }
  /// Pixels of `color` within the box (right and bottom left out).
  [[nodiscard]] int count(std::string_view color, int left, int top, int right, int bottom) const {
    int found = 0;
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) {
        const auto at = start_ + static_cast<std::size_t>(y * width_ + x) * 3;
        found += data_.substr(at, 3) == color ? 1 : 0;
      }
    }
    return found;
  }

 private:
  std::string data_;
  int width_ = 0;
  int height_ = 0;
  std::size_t start_ = 0;
};

class Readers : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* program : {"pdfinfo", "pdftoppm", "pdftotext", "mutool", "qpdf", "convert"}) {
      if (!installed(program)) GTEST_SKIP() << program << " is not installed";
    }
    pdf.PDFBeginDoc();
    pdf.PDFSetFont(FONT_ARIAL, 10);
  }

  Document document;
  VeltranoPDF& pdf = document.pdf;
};

TEST_F(Readers, SeePagesInformationAndOutline) {
  pdf.PDFTitle("Journal d'\xE9t\xE9");
  pdf.PDFFileName(document.file());
  pdf.PDFUseOutlines(true);
  pdf.PDFBeginDoc();
  pdf.PDFSetBookmark("First", 0, 0);
  pdf.PDFSetBookmark("Below", 1, 200);
  pdf.PDFEndPage();
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  pdf.PDFNewPage();
  pdf.PDFSetBookmark("Second", 0, 0);
  document.finish();
  const std::string info = outputOf("pdfinfo -l 3", document.file());
  for (const char* line :
       {"Title:           Journal d'\xC3\xA9t\xC3\xA9\n", "Pages:           2\n",
        "Page    1 size:  595.28 x 841.89 pts (A4)\n", "Page    2 size:  842 x 595 pts (A4)\n"}) {
    EXPECT_TRUE(holds(info, line));
  }
  const std::string outline = outputOf("mutool show -b", document.file(), "outline 2>/dev/null");
  const auto below = outline.find("\t\"Below\"\t#page=1", outline.find("\"First\"\t#page=1"));
  EXPECT_NE(outline.find("\"Second\"\t#page=2", below), std::string::npos) << outline;
  EXPECT_EQ(outputOf("qpdf --no-warn --show-npages", document.file()), "2\n");
}

TEST_F(Readers, PaintAllLinesOfAFilledCellAndItsBorder) {
  // A box is stroked with the line that was stroked last: 4 points wide.
  pdf.PDFSetLineWidth(4);
  pdf.PDFDrawLine(500, 500, 510, 500);
  pdf.PDFSetLineWidth(0.1);
  pdf.PDFSetFill(true);
  pdf.PDFSetDrawColor("#FFFF00");
  pdf.PDFSetBorder(BORDER_ALL);
  pdf.PDFCell("gjpq\r\ngjpq\r\ngjpq", 100, 100, 100, 60);
  document.finish();
  const Picture picture(document.file());
  const std::string black(3, '\0');
  // Strips of 12 points from 112 on; each has ink of its letters and, below the baseline, of their tails.
  for (int top = 112; top < 148; top += 12) {
    EXPECT_GT(picture.count(black, 106, top, 130, top + 9), 10);
    EXPECT_GT(picture.count(black, 106, top + 9, 130, top + 12), 3);
  }
  EXPECT_EQ(picture.count(white, 102, 102, 198, 158), 0) << "filled";
  for (const int x : {98, 198}) EXPECT_EQ(picture.count(black, x, 98, x + 4, 162), 4 * 64) << "border";
  EXPECT_EQ(picture.count(white, 205, 90, 300, 170), 95 * 80);
}

TEST_F(Readers, PaintEveryLineWholeHoweverCloseTheLinesAre) {
  constexpr double heights[] = {0, 20, 30, 33, 45};
  const auto draw = [&](bool fill) {
    pdf.PDFFileName(document.file());
    pdf.PDFBeginDoc();
    pdf.PDFSetFill(fill);
    pdf.PDFSetDrawColor("#FFFF00");
    double x = 50;
    for (const std::int32_t alignment : {ALIGN_LEFT, ALIGN_CENTER, ALIGN_RIGHT, ALIGN_FJUSTIFY}) {
      pdf.PDFSetAlignement(alignment);
      double y = 50;
      for (const double height : heights) {
        pdf.PDFCell("gj(\xC7,y|pq gjpq gjpq\r\n\xC7gjpq", x, y, 50, height);
        y += 150;
      }
      x += 100;
    }
    document.finish();
    return Picture(document.file()).count(std::string(3, '\0'), 0, 0, 595, 841);
  };
  EXPECT_EQ(draw(true), draw(false)) << "no fill hides any of the ink";
}

TEST_F(Readers, ReadTextBackWithItsAccents) {
  const std::string accented = "Éléphant à l'œuvre";
  pdf.PDFTextOut(utf8ToAnsi(accented), 50, 50);
  pdf.PDFSetFont(FONT_TIMES, 12, 1);
  pdf.PDFTextOut(utf8ToAnsi("Prix : 12 € (été)"), 50, 80);
  pdf.PDFSetAlignement(ALIGN_FJUSTIFY);
  const std::string pangram = "Portez ce vieux whisky au juge blond qui fume, été comme hiver.";
  pdf.PDFCell(utf8ToAnsi(pangram), 50, 100, 100, 100);
  document.finish();
  std::string text = outputOf("pdftotext -raw", document.file(), "- 2>/dev/null");
  for (char& c : text) c = c == '\n' ? ' ' : c;
  EXPECT_EQ(text, accented + " Prix : 12 € (été) " + pangram + " \f");
}

TEST_F(Readers, PaintPhotosOfARealEncoder) {
  constexpr std::pair<const char*, const char*> encodings[] = {{"", "DeviceRGB"},
                                                               {"-interlace JPEG", "DeviceRGB"},
                                                               {"-colorspace Gray", "DeviceGray"},
                                                               {"-colorspace CMYK", "DeviceCMYK"}};
  int y = 100;
  for (const auto& [options, colourSpace] : encodings) {
    const auto file = document.folder / ("photo" + std::to_string(y) + ".jpg");
    outputOf(std::string("convert -size 64x48 gradient:red-blue -quality 100 ") + options, file);
    pdf.PDFImage(file, 100, y);
    y += 100;
  }
  const std::string content = document.finish();
  const Picture picture(document.file());
  std::size_t at = 0;
  for (const auto& [options, colourSpace] : encodings) {
    at = content.find("/Width 64\r\n/Height 48\r\n/ColorSpace /" + std::string(colourSpace), at + 1);
    EXPECT_NE(at, std::string::npos) << colourSpace;
  }
  for (int row = 100; row < y; row += 100) {
    EXPECT_EQ(picture.count(white, 100, row, 164, row + 48), 0) << row;
    EXPECT_EQ(picture.count(white, 166, row, 266, row + 98), 9800) << row;
  }
}

}  // namespace
}  // namespace veltrano
