#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "pdf/images/jpeg_scan.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

class Images : public PdfTest {
 protected:
  std::filesystem::path photo(const char* name, const std::string& content) {
    replaceFile(folder / name, content);
    return folder / name;
  }

  const std::string picture = jpeg({frame(0xC0, 400, 300, 3)});
};

TEST_F(Images, NamesAreTakenByTheirLastLetters) {
  for (const char* name : {"a.jpg", "a.jpeg", "a.b.jpg", "a.xjpg"}) {
    EXPECT_EQ(pdf.PDFImageWidth(photo(name, picture)), 400) << name;
    EXPECT_EQ(pdf.PDFImageHeight(photo(name, picture)), 300) << name;
  }
  EXPECT_EQ(takeErrors(), "");
  const std::string unknown = "Error format not supported|Image format not supported.|Format not supported|";
  const std::string none = "Unable to include this image|Unable to include this image|Format not supported|";
  const std::pair<const char*, std::string> rows[] = {
      {"a.JPG", unknown}, {"a.png", unknown}, {"a.jpg.txt", unknown}, {"a.jpg ", unknown}, {"jpg", none}};
  for (const auto& [name, messages] : rows) {
    const auto file = name == std::string("jpg") ? name : photo(name, picture);
    EXPECT_EQ(pdf.PDFImageWidth(file), 0);
    EXPECT_EQ(pdf.PDFImageHeight(file), 0);
    pdf.PDFImage(file, 1, 1);
    EXPECT_EQ(takeErrors(), messages) << name;
  }
}

TEST_F(Images, RefusedFilesPlaceNothing) {
  pdf.PDFBeginDoc();
  std::filesystem::create_directory(folder / "folder.jpg");
  for (const auto& file :
       {folder / "folder.jpg", folder / "missing.jpg", photo("short.jpg", jpeg({frame(0xC0, 1, 1, 1)}, 249)),
        photo("leading.jpg", "x" + picture), photo("trailing.jpg", picture + "\n"),
        photo("unit.jpg", jpeg({app0(3)}))})
    pdf.PDFImage(file, 1, 1);
  EXPECT_EQ(takeErrors(),
            "JPEG format invalid|JPEG format invalid|JPEG format invalid|JPEG format invalid. Pass 2|"
            "JPEG format invalid. Pass 2|JPEG format invalid. Pass 3|");
  EXPECT_FALSE(holds(finish(), "/ImgJPEG"));
}

TEST_F(Images, PlacedInTheUnitWithTheMissingHeight) {
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFBeginDoc();
  double width = 80, height = 0;
  pdf.PDFImage(photo("a.jpg", picture), 10, 20, width, height, 5);
  EXPECT_EQ(takeErrors(), "Unable to include this link|");
  EXPECT_DOUBLE_EQ(height, 60);
  EXPECT_EQ(pdf.PDFGetX(), 255);  // (10 + 80) * 72 / 25.4
  EXPECT_EQ(pdf.PDFGetY(), 227);
  pdf.PDFImage(photo("a.jpg", picture), std::numeric_limits<double>::infinity(),
               1);  // no half of a placement
  EXPECT_EQ(pageContent(finish(), 1), lines({"q", "226.77 0 0 170.08 28.35 615.12 cm /ImgJPEG1 Do Q"}));
}

TEST_F(Images, MissingSizes) {
  const auto whole = photo("a.jpg", picture);
  const auto frameless = photo("frameless.jpg", jpeg({app0(1)}));
  const struct {
    std::filesystem::path file;
    std::pair<double, double> given, size;
  } rows[] = {{whole, {0, 0}, {400, 300}},  {whole, {100, 0}, {100, 75}}, {whole, {0, 75}, {100, 75}},
              {whole, {10, 10}, {10, 10}},  {whole, {-8, 0}, {-8, -6}},   {frameless, {10, 0}, {10, 0}},
              {frameless, {0, 10}, {0, 10}}};
  for (const auto& row : rows) {
    auto size = row.given;
    pdf.PDFImage(row.file, 1, 1, size.first, size.second);
    EXPECT_EQ(size, row.size) << row.given.first << ' ' << row.given.second;
  }
}

TEST_F(Images, EachPlacementIsAnObjectWithTheWholeFile) {
  pdf.PDFBeginDoc();
  const auto rgb = photo("a.jpg", picture);
  const std::string odd = jpeg({frame(0xC1, 7, 5, 2)});
  pdf.PDFImage(rgb, 1, 1);
  EXPECT_EQ(pdf.PDFImageWidth(photo("odd.jpg", odd)), 7);
  pdf.PDFImage(rgb, 1, 1);
  pdf.PDFImage(folder / "odd.jpg", 1, 1);
  photo("a.jpg", "replaced meanwhile");
  const std::string file = finish();
  const int first = objectWith(file, "/ImgJPEG1>>");
  const std::string stream = "stream\r\n" + picture + "\r\nendstream\r\n";
  EXPECT_TRUE(objectText(file, first).ends_with("/Name /ImgJPEG1>>\r\n" + stream));
  EXPECT_TRUE(objectText(file, first + 1).ends_with("/Name /ImgJPEG2>>\r\n" + stream));
  EXPECT_TRUE(holds(objectText(file, first + 2),
                    "/Width 7\r\n/Height 5\r\n/ColorSpace /\r\n/BitsPerComponent 16\r\n"));
}

TEST(JpegScanTest, FrameHeaders) {
  for (int marker = 0xC0; marker <= 0xCF; ++marker) {
    const auto header = scanJpeg(jpeg({app0(marker % 3), frame(marker, 640, 480, 3)}, 250), {}).header;
    ASSERT_TRUE(header) << marker;
    const bool known = marker <= 0xC7 && marker != 0xC4;
    EXPECT_EQ(header->width, known ? 640 : 0) << marker;
    EXPECT_EQ(header->height, known ? 480 : 0) << marker;
  }
  const std::tuple<int, const char*, int> rows[] = {
      {1, "DeviceGray", 8}, {2, "", 16}, {3, "DeviceRGB", 8}, {4, "DeviceCMYK", 8}};
  for (const auto& [components, colourSpace, bits] : rows) {
    const auto header = scanJpeg(jpeg({frame(0xC2, 640, 480, components)}), {}).header;
    EXPECT_EQ(header->colourSpace, colourSpace);
    EXPECT_EQ(header->bitsPerComponent, bits);
  }
}

TEST(JpegScanTest, WalksWhereverTheLengthsLead) {
  const std::string wide = frame(0xC0, 640, 480, 3);
  const std::string narrow = frame(0xC0, 33, 44, 1);
  // A scan header of 8 bytes, then data whose first word happens to lead to what looks like another frame.
  const std::string scanned = bytes({0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 63, 0, 0x12, 0x34, 0, 3, 0x55});
  EXPECT_EQ(scanJpeg(jpeg({wide, scanned, narrow}), {}).header->width, 33);
  // A frame after fill bytes is stepped over, the one after that is read.
  EXPECT_EQ(scanJpeg(jpeg({bytes({0xFF, 0xFF}), wide}), {}).header->width, 0);
  EXPECT_EQ(scanJpeg(jpeg({bytes({0xFF}), wide, narrow}), {}).header->width, 33);
  // The bits of an odd frame stay.
  const auto header = scanJpeg(jpeg({frame(0xC0, 1, 1, 2), wide}), {}).header;
  EXPECT_EQ(header->colourSpace, "DeviceRGB");
  EXPECT_EQ(header->bitsPerComponent, 16);
}

TEST(JpegScanTest, ReadsPastTheEndAreSkipped) {
  // The frame's marker and length are the last bytes before the end marker.
  for (const std::string& tail : {bytes({0xFF, 0xC0, 0, 17}), bytes({0xFF, 0xC0}), bytes({0xFF, 0xE0, 0, 4}),
                                  bytes({0xFF, 0xFF, 0xFF, 0xFF})}) {
    std::string file =
        bytes({0xFF, 0xD8, 0xFF, 0xE1, 0, 242}) + std::string(240, '\0') + tail + bytes({0xFF, 0xD9});
    EXPECT_TRUE(scanJpeg(file, {}).header);
  }
}

TEST(JpegScanTest, GivesTheHostATurnAtEveryMarkerAndWithinFillBytes) {
  const std::string short1 = frame(0xC0, 9, 9, 3);
  const std::tuple<std::string, std::size_t> rows[] = {
      {jpeg({}), 1},  // the comment that fills it
      {jpeg({short1}), 2},
      {jpeg({app0(1), short1, short1}), 4},
      {bytes({0xFF, 0xD8}) + std::string(300, '\0') + bytes({0xFF, 0xD9}), 150},
      {bytes({0xFF, 0xD8}) + std::string(1 << 22, '\xFF') + bytes({0xFF, 0xD9}), 1025}};
  for (const auto& [file, expected] : rows) {
    std::size_t turns = 0;
    EXPECT_TRUE(scanJpeg(file, [&turns] { ++turns; }).header);
    EXPECT_EQ(turns, expected) << file.size();
  }
}

}  // namespace
}  // namespace veltrano::tests
