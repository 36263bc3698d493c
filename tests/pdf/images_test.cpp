#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "pdf/images/jpeg_scan.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using Lengths = std::pair<double, double>;

class Images : public PdfTest {
 protected:
  std::filesystem::path photo(const char* name, const std::string& content) {
    replaceFile(folder / name, content);
    return folder / name;
  }

  const std::string picture = jpeg({frame(0xC0, 400, 300, 3)});
};

TEST_F(Images, NamesAreTakenByTheirLastLetters) {
  const std::string unknown = "Error format not supported|Image format not supported.|Format not supported|";
  const std::string none = "Unable to include this image|Unable to include this image|Format not supported|";
  pdf.PDFBeginDoc();
  const std::pair<const char*, std::string> rows[] = {{"a.jpg", ""},      {"a.jpeg", ""},      {"a.xjpg", ""},
                                                      {"a.JPG", unknown}, {"a.jpg ", unknown}, {"jpg", none}};
  for (const auto& [name, messages] : rows) {
    const auto file = name == std::string("jpg") ? name : photo(name, picture);
    EXPECT_EQ(pdf.PDFImageWidth(file), messages.empty() ? 400 : 0) << name;
    EXPECT_EQ(pdf.PDFImageHeight(file), messages.empty() ? 300 : 0) << name;
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

TEST_F(Images, PlacedInTheUnitWithTheMissingSizes) {
  const auto whole = photo("a.jpg", picture), frameless = photo("frameless.jpg", jpeg({app0(1)}));
  const std::tuple<std::filesystem::path, Lengths, Lengths> rows[] = {
      {whole, {0, 0}, {400, 300}},  {whole, {100, 0}, {100, 75}}, {whole, {0, 75}, {100, 75}},
      {whole, {10, 10}, {10, 10}},  {whole, {-8, 0}, {-8, -6}},   {frameless, {10, 0}, {10, 0}},
      {frameless, {0, 10}, {0, 10}}};
  for (const auto& [file, given, completed] : rows) {
    Lengths size = given;
    pdf.PDFImage(file, 1, 1, size.first, size.second);
    EXPECT_EQ(size, completed) << given.first << ' ' << given.second;
  }
  pdf.PDFInit();
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFBeginDoc();
  double width = 80, height = 0;
  pdf.PDFImage(whole, 10, 20, width, height, 5);
  EXPECT_EQ(takeErrors(), "Unable to include this link|");
  EXPECT_EQ(pdf.PDFGetX(), 255);  // (10 + 80) * 72 / 25.4
  EXPECT_EQ(pdf.PDFGetY(), 227);
  pdf.PDFImage(whole, std::numeric_limits<double>::infinity(), 1);  // no half of a placement
  EXPECT_EQ(pageContent(finish(), 1), lines({"q", "226.77 0 0 170.08 28.35 615.12 cm /ImgJPEG1 Do Q"}));
}

TEST_F(Images, EachPlacementIsAnObjectWithTheWholeFile) {
  pdf.PDFBeginDoc();
  const auto rgb = photo("a.jpg", picture);
  pdf.PDFImage(rgb, 1, 1);
  pdf.PDFImage(rgb, 1, 1);
  pdf.PDFImage(photo("odd.jpg", jpeg({frame(0xC1, 7, 5, 2)})), 1, 1);
  photo("a.jpg", "replaced meanwhile");
  const std::string file = finish();
  const int first = objectWith(file, "/ImgJPEG1>>");
  const std::string stream = "stream\r\n" + picture + "\r\nendstream\r\n";
  EXPECT_TRUE(objectText(file, first).ends_with("/Name /ImgJPEG1>>\r\n" + stream));
  EXPECT_TRUE(objectText(file, first + 1).ends_with("/Name /ImgJPEG2>>\r\n" + stream));
  EXPECT_TRUE(holds(objectText(file, first + 2),
                    "/Width 7\r\n/Height 5\r\n/ColorSpace /\r\n/BitsPerComponent 16\r\n"));
}

TEST(JpegScan, WalksWhereverTheLengthsLeadAndGivesTheHostATurnAtEachMarker) {
  const std::string wide = frame(0xC0, 640, 480, 3), narrow = frame(0xC2, 33, 44, 1);
  // A scan header of 8 bytes, then data whose first word happens to lead to what looks like another frame.
  const std::string scanned = bytes({0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 63, 0, 0x12, 0x34, 0, 3, 0x55});
  const std::string start = bytes({0xFF, 0xD8}), end = bytes({0xFF, 0xD9});
  // The marker and the length of a segment, the last bytes before the end.
  const auto cut = [&](std::initializer_list<int> tail) {
    return start + bytes({0xFF, 0xE1, 0, 242}) + std::string(240, '\0') + bytes(tail) + end;
  };
  const std::pair<std::string, std::string> rows[] = {
      {jpeg({}), "0x0  8, 1 turns"},  // the comment that fills it
      {jpeg({app0(1), narrow, wide}), "640x480 DeviceRGB 8, 4 turns"},
      {jpeg({wide, scanned, narrow}), "33x44 DeviceGray 8, 5 turns"},
      {jpeg({frame(0xC7, 1, 1, 4)}), "1x1 DeviceCMYK 8, 2 turns"},
      {jpeg({frame(0xC0, 1, 1, 2), wide}), "640x480 DeviceRGB 16, 3 turns"},  // the bits of an odd frame stay
      // A frame after fill bytes is stepped over, the one after that is read.
      {jpeg({bytes({0xFF}), wide, narrow}), "33x44 DeviceGray 8, 3 turns"},
      {start + std::string(300, '\0') + end, "0x0  8, 150 turns"},
      {start + std::string(1 << 22, '\xFF') + end, "0x0  8, 1025 turns"},
      {cut({0xFF, 0xC0, 0, 17}), "0x0  8, 2 turns"},
      {cut({0xFF, 0xC0}), "0x0  8, 2 turns"},
      {cut({0xFF, 0xFF, 0xFF, 0xFF}), "0x0  8, 2 turns"}};
  const auto outcome = [](const std::string& file) {
    int turns = 0;
    const auto header = scanJpeg(file, [&turns] { ++turns; }).header.value();
    return std::to_string(header.width) + "x" + std::to_string(header.height) + " " +
           std::string(header.colourSpace) + " " + std::to_string(header.bitsPerComponent) + ", " +
           std::to_string(turns) + " turns";
  };
  for (const auto& [file, expected] : rows) EXPECT_EQ(outcome(file), expected);
  for (const int marker : {0xC4, 0xC8, 0xCF})
    EXPECT_EQ(outcome(jpeg({frame(marker, 640, 480, 3)})), "0x0  8, 2 turns") << marker;
}

}  // namespace
}  // namespace veltrano::tests
