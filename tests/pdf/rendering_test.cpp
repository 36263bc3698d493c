#include <gtest/gtest.h>

#include "base/code_page.h"
#include "tests/pdf/outside_readers.h"
#include "tests/pdf/pdf_testing.h"

// Text, cells and links as poppler paints and reads them. Boxes are in points from the top left, so in
// pixels.

namespace veltrano {
namespace {

using tests::Document;
using tests::installed;
using tests::outputOf;
using tests::Picture;

class Rendering : public testing::Test {
 protected:
  void SetUp() override {
    if (!installed("pdftoppm") || !installed("pdftotext"))
      GTEST_SKIP() << "poppler's programs are not installed";
    pdf.PDFBeginDoc();
    pdf.PDFSetFont(FONT_ARIAL, 10);
  }
  Picture painted() {
    document.finish();
    Picture picture(document.file());
    EXPECT_TRUE(picture.valid());
    return picture;
  }

  Document document;
  VeltranoPDF& pdf = document.pdf;
};

const char* const accented = "Éléphant à l'œuvre";

struct Box {
  int left, top, right, bottom;
  bool ink;
};

TEST_F(Rendering, AlignedTextLiesInItsCellAtItsSide) {
  constexpr Box boxes[] = {
      {0, 0, 595, 100, false},     {0, 120, 595, 150, false},
      {0, 170, 595, 200, false},   {0, 220, 595, 250, false},  // nothing above, between and below the cells
      {100, 100, 106, 120, false}, {106, 100, 113, 120, true},
      {200, 100, 400, 120, false},  // from 106 to 190
      {100, 150, 203, 170, false}, {205, 150, 230, 170, true},
      {297, 150, 400, 170, false},  // from 208 to 292
      {100, 200, 308, 220, false}, {390, 200, 398, 220, true},
      {398, 200, 410, 220, false},  // from 313 to 397
  };
  const std::string text = utf8ToAnsi(accented);  // 84 points wide
  for (const double unit : {1.0, 72 / 25.4, 72 / 2.54}) {
    Document other;
    VeltranoPDF& page = other.pdf;
    page.PDFSetUnit(unit == 1 ? UNIT_PT : unit < 3 ? UNIT_MM : UNIT_CM);
    page.PDFBeginDoc();
    page.PDFSetFont(FONT_ARIAL, 10);
    int y = 100;
    for (const std::int32_t alignment : {ALIGN_LEFT, ALIGN_CENTER, ALIGN_RIGHT}) {
      page.PDFSetAlignement(alignment);
      page.PDFCell(text, 100 / unit, y / unit, 300 / unit, 20 / unit);
      y += 50;
    }
    other.finish();
    const Picture picture(other.file());
    ASSERT_TRUE(picture.valid());
    for (const Box& box : boxes) {
      EXPECT_EQ(picture.hasInk(box.left, box.top, box.right, box.bottom), box.ink)
          << box.left << ' ' << box.top;
    }
  }
}

TEST_F(Rendering, FilledCellOfSeveralLinesShowsThemAll) {
  // A box is stroked with the line that was stroked last: 4 points wide.
  pdf.PDFSetLineWidth(4);
  pdf.PDFDrawLine(500, 500, 510, 500);
  pdf.PDFSetLineWidth(0.1);
  pdf.PDFSetFill(true);
  pdf.PDFSetDrawColor("#FFFF00");
  pdf.PDFSetAlignement(ALIGN_LEFT);
  pdf.PDFSetBorder(BORDER_ALL);
  pdf.PDFCell("gjpq\r\ngjpq\r\ngjpq", 100, 100, 100, 60);
  const Picture picture = painted();
  const std::string black(3, '\0');
  // Strips of 12 points from 112 on; each has ink of its letters and, below the baseline, of their tails.
  for (int line = 0; line < 3; ++line) {
    int letters = 0;
    int tails = 0;
    for (int x = 106; x < 130; ++x) {
      for (int y = 112 + 12 * line; y < 121 + 12 * line; ++y) letters += picture.pixel(x, y) == black ? 1 : 0;
      for (int y = 121 + 12 * line; y < 124 + 12 * line; ++y) tails += picture.pixel(x, y) == black ? 1 : 0;
    }
    EXPECT_GT(letters, 10) << line;
    EXPECT_GT(tails, 3) << line;
  }
  for (const int y : {103, 130, 157}) EXPECT_EQ(picture.pixel(190, y), std::string("\xFF\xFF\0", 3)) << y;
  for (const int y : {110, 130, 150}) {
    for (const int x : {100, 199})
      EXPECT_EQ(picture.pixel(x, y), black) << "the border is filled over at " << y;
  }
  EXPECT_FALSE(picture.hasInk(205, 90, 300, 170));
  EXPECT_FALSE(picture.hasInk(90, 165, 300, 250));
}

TEST_F(Rendering, ThickEdgesAreSquareAtTheCorners) {
  pdf.PDFSetLineWidth(8);
  pdf.PDFSetBorder(2345);
  pdf.PDFCell("", 100, 100, 100, 50);
  const Picture picture = painted();
  for (const int x : {97, 202}) {
    for (const int y : {97, 152}) EXPECT_EQ(picture.pixel(x, y), std::string(3, '\0')) << x << ' ' << y;
  }
  EXPECT_FALSE(picture.hasInk(105, 105, 195, 145));
  EXPECT_FALSE(picture.hasInk(80, 80, 220, 95));
}

TEST_F(Rendering, TurnedTextRunsFromItsStart) {
  pdf.PDFSetRotation(90);
  pdf.PDFTextOut("HHHHHHHH", 300, 300);  // up the page
  pdf.PDFSetRotation(0);
  const Picture picture = painted();
  EXPECT_TRUE(picture.hasInk(291, 245, 300, 260));
  EXPECT_TRUE(picture.hasInk(291, 285, 300, 300));
  EXPECT_FALSE(picture.hasInk(302, 200, 400, 400));
  EXPECT_FALSE(picture.hasInk(200, 302, 400, 400));
}

TEST_F(Rendering, UnderlineLiesBelowTheTextAndSpansIt) {
  pdf.PDFSetFont(FONT_COURIER, 40, 3);
  pdf.PDFTextOut("HHHH", 100, 200);  // 96 points; the bar is 2 thick, 4 below the baseline
  const Picture picture = painted();
  for (int x = 102; x < 195; ++x) EXPECT_TRUE(picture.hasInk(x, 203, x + 1, 206)) << x;
  EXPECT_FALSE(picture.hasInk(98, 201, 200, 202));
  EXPECT_FALSE(picture.hasInk(90, 190, 99, 210));
  EXPECT_FALSE(picture.hasInk(198, 202, 220, 210));
}

TEST_F(Rendering, TextIsReadBackWithItsAccents) {
  pdf.PDFTextOut(utf8ToAnsi(accented), 50, 50);
  pdf.PDFSetFont(FONT_TIMES, 12, 1);
  pdf.PDFTextOut(utf8ToAnsi("Prix : 12 € (été)"), 50, 80);
  pdf.PDFSetAlignement(ALIGN_FJUSTIFY);
  pdf.PDFCell(utf8ToAnsi("Portez ce vieux whisky au juge blond qui fume, été comme hiver."), 50, 100, 100,
              100);
  document.finish();
  std::string text = outputOf("pdftotext -raw", document.file(), "- 2>/dev/null");
  for (char& c : text) c = c == '\n' ? ' ' : c;
  EXPECT_EQ(text,
            std::string(accented) +
                " Prix : 12 € (été) Portez ce vieux whisky au juge blond qui fume, été comme hiver. \f");
}

struct Encoding {
  const char* options;
  const char* colourSpace;
};

TEST_F(Rendering, PhotosOfARealEncoder) {
  if (!installed("convert")) GTEST_SKIP() << "ImageMagick is not installed";
  constexpr Encoding encodings[] = {{"", "DeviceRGB"},
                                    {"-interlace JPEG", "DeviceRGB"},
                                    {"-colorspace Gray", "DeviceGray"},
                                    {"-colorspace CMYK", "DeviceCMYK"}};
  int y = 100;
  for (const Encoding& encoding : encodings) {
    const auto file = document.folder / ("photo" + std::to_string(y) + ".jpg");
    outputOf(std::string("convert -size 64x48 gradient:red-blue -quality 100 ") + encoding.options, file);
    EXPECT_EQ(pdf.PDFImageWidth(file), 64) << encoding.options;
    EXPECT_EQ(pdf.PDFImageHeight(file), 48) << encoding.options;
    pdf.PDFImage(file, 100, y);
    y += 100;
  }
  const Picture picture = painted();
  for (int row = 100; row < y; row += 100) {
    EXPECT_TRUE(picture.hasInk(132, row + 24, 133, row + 25)) << row;
    EXPECT_TRUE(picture.hasInk(101, row + 1, 102, row + 2)) << row;
    EXPECT_FALSE(picture.hasInk(166, row, 300, row + 50)) << row;
    EXPECT_FALSE(picture.hasInk(100, row + 50, 164, row + 98)) << row;
  }
  const std::string content = readWholeFile(document.file()).value_or("");
  std::size_t at = 0;
  for (const Encoding& encoding : encodings) {
    at = content.find("/ColorSpace /", at + 1);
    EXPECT_EQ(content.substr(at + 13, std::string_view(encoding.colourSpace).size()), encoding.colourSpace);
  }
}

TEST_F(Rendering, LinksCoverTheWordsThatPopplerSees) {
  if (!installed("qpdf")) GTEST_SKIP() << "qpdf is not installed";
  pdf.PDFLink(100, 200, "Hello", "http://example.com/");
  document.finish();
  const std::string json = outputOf("qpdf --no-warn --json", document.file(), "2>/dev/null");
  const auto rectangle = json.find("\"/Rect\": [");
  ASSERT_NE(rectangle, std::string::npos);
  std::istringstream numbers(json.substr(rectangle + 10));
  std::array<double, 4> edges{};
  for (double& edge : edges) {
    numbers >> edge;
    numbers.ignore(1);
  }
  const std::string box = outputOf("pdftotext -bbox", document.file(), "- 2>/dev/null");
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  const auto word = box.find("<word");
  ASSERT_NE(word, std::string::npos);
  ASSERT_EQ(std::sscanf(box.c_str() + word, "<word xMin=\"%lf\" yMin=\"%lf\" xMax=\"%lf\" yMax=\"%lf\">",
                        &left, &top, &right, &bottom),
            4);
  EXPECT_NEAR(edges[0], left, 1);
  EXPECT_NEAR(edges[1], 841.89 - bottom, 1);
  EXPECT_NEAR(edges[2], right, 1);
  EXPECT_NEAR(edges[3], 841.89 - top, 1);
}

}  // namespace
}  // namespace veltrano
