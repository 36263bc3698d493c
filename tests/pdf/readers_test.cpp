#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/pdf/pdf_testing.h"

// What readers that others wrote make of our files: native only, where they are programs of the system.

namespace veltrano::tests {
namespace {

/// What a command prints.
std::string outputOf(const std::string& command) {
  const TemporaryFolder folder;
  const std::string output = (folder / "output").string();
  return std::system((command + " >'" + output + "' 2>/dev/null").c_str()) == -1
             ? ""
             : readWholeFile(output).value_or("");
}

class Readers : public PdfTest {
 protected:
  void SetUp() override {
    for (const std::string program : {"pdftoppm", "convert"})
      if (outputOf("command -v " + program).empty()) GTEST_SKIP() << program << " is not installed";
    pdf.PDFBeginDoc();
    pdf.PDFSetFont(FONT_ARIAL, 10);
  }
  /// The pixels that are not white in a box of the first page ("WxH+X+Y") at one pixel a point, without smoothing.
  int inkIn(const std::string& box) {
    return std::stoi(
        "0" +
        outputOf("pdftoppm -r 72 -f 1 -l 1 -aa no -aaVector no '" + file().string() + "' | convert - -crop " +
                 box + " +repage -fill black +opaque white -negate -format '%[fx:round(mean*w*h)]' info:"));
  }
};

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

TEST_F(Readers, PaintPhotosOfARealEncoder) {
  constexpr std::pair<const char*, const char*> encodings[] = {
      {"", "RGB"}, {"-interlace JPEG", "RGB"}, {"-colorspace Gray", "Gray"}, {"-colorspace CMYK", "CMYK"}};
  const auto photo = folder / "photo.jpg";
  for (const auto& [options, colourSpace] : encodings) {
    outputOf(std::string("convert -size 64x48 gradient:red-blue -quality 100 ") + options + " '" +
             photo.string() + "'");
    begin();
    pdf.PDFImage(photo, 100, 200);
    EXPECT_TRUE(holds(finish(), "/Width 64\r\n/Height 48\r\n/ColorSpace /Device" + std::string(colourSpace)));
    EXPECT_EQ(inkIn("64x48+100+200"), 64 * 48) << options;
    EXPECT_EQ(inkIn("429x841+166+0"), 0) << options;
  }
}

}  // namespace
}  // namespace veltrano::tests
